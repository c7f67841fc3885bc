#include "ui/controls/logo_items.h"

#include <algorithm>

namespace tervan::ui {

void LogoItems::AddText(int id, std::wstring_view text) {
  items_.push_back({.is_text = true, .id = id, .text = std::wstring(text.substr(0, kLongestText))});
}

int LogoItems::Find(int id) const {
  const auto found = std::ranges::find(items_, id, &LogoItem::id);
  return found != items_.end() ? static_cast<int>(found - items_.begin()) : -1;
}

int LogoItems::FindButton(int id) const {
  const auto is_it = [id](const LogoItem& item) { return !item.is_text && item.id == id; };
  const auto found = std::ranges::find_if(items_, is_it);
  return found != items_.end() ? static_cast<int>(found - items_.begin()) : -1;
}

}  // namespace tervan::ui
