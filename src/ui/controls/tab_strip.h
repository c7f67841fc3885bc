// The window class of tabs that hang below a box, one of them open towards it.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "ui/back_buffer.h"
#include "ui/control_window.h"
#include "ui/controls/tab_strip_layout.h"
#include "ui/controls/tab_strip_messages.h"

namespace tervan::ui {

extern const ControlClass kTabStripClass;

class TabStrip final : public ControlWindow {
 public:
  TabStrip(HWND window, const CREATESTRUCTW& creation);
  LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

  // Each tab is a part.
  int PartCount() const override { return Count(); }
  LONG PartRole(int part) const override;
  std::wstring PartName(int part) const override;
  LONG PartState(int part) const override;
  Rect PartBounds(int part) const override;
  int PartAt(Point client) const override { return TabAt(layout_, client) + 1; }
  std::wstring PartAction(int part) const override;
  void PressPart(int part) override { Choose(part - 1); }

 private:
  struct Tab {
    std::string text;
    DWORD data;
  };

  int Count() const { return static_cast<int>(tabs_.size()); }
  LRESULT OnTabMessage(UINT message, int tab, LPARAM lparam);
  int Select(int tab);
  int GetText(int tab, char* text) const;
  int SetText(int tab, const char* text);
  bool GetItems(TabItems* items) const;
  bool SetItems(const TabItems* items);

  LRESULT OnGetDialogCode(const MSG* asked_for) const;
  void OnPress(Point point);
  void OnKey(WPARAM key);
  void OnFocusChanged(bool has_focus);
  void SetHot(int tab);
  void Choose(int tab);
  void SendCommand() const;

  HFONT Font() const { return font_ ? font_ : static_cast<HFONT>(GetStockObject(SYSTEM_FONT)); }
  std::wstring ShownText(const Tab& tab) const;
  void LayOut();
  void OnPaint();

  std::vector<Tab> tabs_;
  std::vector<Rect> layout_;
  int selected_ = kNoTab;
  int hot_ = kNoTab;
  HFONT font_ = nullptr;  // the page's; null: the system's
  bool has_symbols_ = false;
  BackBuffer buffer_;
};

}  // namespace tervan::ui
