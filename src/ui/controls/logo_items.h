// The items of the logo strip, as the page sets them.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tervan::ui {

struct LogoItem {
  bool is_text;  // else an image button
  int id;        // of its command; below 1: none
  std::wstring text;
  bool is_on = false;  // image buttons only
  bool is_enabled = true;
};

class LogoItems {
 public:
  void Clear() { items_.clear(); }
  // Cut after kLongestText characters.
  void AddText(int id, std::wstring_view text);
  void AddButton(int id, bool is_on) { items_.push_back({.is_text = false, .id = id, .text = {}, .is_on = is_on}); }
  // The number of the first item of this id, counted from 0; -1: there is none.
  int Find(int id) const { return Lookup(id, true); }
  int FindButton(int id) const { return Lookup(id, false); }
  // True when it was not so before. Only image buttons are on or off.
  bool SetOn(int number, bool is_on) { return std::exchange(items_[number].is_on, is_on) != is_on; }
  bool SetEnabled(int number, bool is_enabled) {
    return std::exchange(items_[number].is_enabled, is_enabled) != is_enabled;
  }

  int Count() const { return static_cast<int>(items_.size()); }
  const LogoItem& operator[](int number) const { return items_[number]; }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

  static constexpr std::size_t kLongestText = 63;

 private:
  int Lookup(int id, bool with_texts) const;

  std::vector<LogoItem> items_;
};

// The picture for an image button: 0 off, 1 on, 2 pressed.
constexpr int LogoImage(const LogoItem& button, bool is_pressed) { return button.is_on ? 1 : is_pressed ? 2 : 0; }

}  // namespace tervan::ui
