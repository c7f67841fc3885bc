#include "ui/pages/context_help.h"

#include <oleacc.h>

#include <algorithm>

#include "ui/control_window.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

constexpr int kTextWidth = 260;  // px at 96 dpi, the longest line
constexpr int kMargin = 8;

class HelpPopup final : public ControlWindow {
 public:
  HelpPopup(HWND window, const CREATESTRUCTW&) : ControlWindow(window), previous_focus_(GetFocus()) {}

  LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override {
    switch (message) {
      case WM_PAINT: return OnPaint();
      case WM_KEYDOWN:
      case WM_SYSKEYDOWN:
      case WM_LBUTTONDOWN:
      case WM_RBUTTONDOWN:
      case WM_KILLFOCUS:
      case WM_CAPTURECHANGED: return OnInterrupted();
      case WM_GETDLGCODE: return DLGC_WANTALLKEYS;
    }
    return Default(message, wparam, lparam);
  }

  LONG PartRole(int) const override { return ROLE_SYSTEM_HELPBALLOON; }
  std::wstring PartName(int) const override { return WindowText(window()); }

 private:
  LRESULT OnPaint() {
    const WindowPainting painting(window());
    const HDC dc = painting.Get();
    RECT area;
    GetClientRect(window(), &area);
    FillRect(dc, &area, GetSysColorBrush(COLOR_INFOBK));
    const int margin = AtDpi(kMargin, GetDeviceCaps(dc, LOGPIXELSY));
    InflateRect(&area, -margin, -margin);
    const SelectedObject font(dc, SmallFont());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_INFOTEXT));
    DrawTextW(dc, WindowText(window()).c_str(), -1, &area, DT_WORDBREAK | DT_NOPREFIX);
    return 0;
  }

  LRESULT OnInterrupted() {
    if (is_closing_) return 0;
    is_closing_ = true;
    if (GetCapture() == window()) ReleaseCapture();
    if (GetFocus() == window() && IsWindow(previous_focus_)) SetFocus(previous_focus_);
    DestroyWindow(window());
    return 0;
  }

  const HWND previous_focus_;
  bool is_closing_ = false;
};

const ControlClass kHelpPopupClass = {
    .name = L"TervanHelpPopup",
    .style = CS_SAVEBITS | CS_DROPSHADOW,
    .extra_bytes = sizeof(void*),
    .cursor = IDC_ARROW,
    .background = COLOR_INFOBK,
    .procedure = WindowProcOf<HelpPopup>,
};

SIZE PopupSize(const std::wstring& text) {
  const WindowDc screen(nullptr);
  const int dpi = GetDeviceCaps(screen.Get(), LOGPIXELSY);
  RECT area = {0, 0, AtDpi(kTextWidth, dpi), 0};
  const SelectedObject font(screen.Get(), SmallFont());
  DrawTextW(screen.Get(), text.c_str(), -1, &area, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
  RECT window = {0, 0, area.right + 2 * AtDpi(kMargin, dpi), area.bottom + 2 * AtDpi(kMargin, dpi)};
  AdjustWindowRectEx(&window, WS_POPUP | WS_BORDER, FALSE, 0);
  return {window.right - window.left, window.bottom - window.top};
}

// Below what it explains, above it when there is no room, and always on the monitor.
POINT PopupPlace(const RECT& near_bounds, SIZE size) {
  MONITORINFO monitor = {};
  monitor.cbSize = sizeof monitor;
  GetMonitorInfoW(MonitorFromRect(&near_bounds, MONITOR_DEFAULTTONEAREST), &monitor);
  const RECT& work = monitor.rcWork;
  POINT place = {near_bounds.left, near_bounds.bottom};
  if (place.y + size.cy > work.bottom) place.y = near_bounds.top - size.cy;
  place.x = std::max(work.left, std::min(place.x, work.right - size.cx));
  place.y = std::max(work.top, place.y);
  return place;
}

}  // namespace

HWND ShowHelpPopup(HWND owner, const RECT& near_bounds, const std::wstring& text) {
  if (text.empty()) return nullptr;
  RegisterControlClass(ResourceModule(), kHelpPopupClass);  // fails when it is there already, which is as good
  const SIZE size = PopupSize(text);
  const POINT place = PopupPlace(near_bounds, size);
  const HWND popup =
      CreateWindowExW(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, kHelpPopupClass.name, text.c_str(), WS_POPUP | WS_BORDER,
                      place.x, place.y, size.cx, size.cy, owner, nullptr, ResourceModule(), nullptr);
  if (!popup) return nullptr;
  ShowWindow(popup, SW_SHOW);
  SetFocus(popup);
  SetCapture(popup);  // a click anywhere ends it
  return popup;
}

// The number of a window that is gone may be another's by now: only a popup is destroyed.
void CloseHelpPopup(HWND popup) {
  constexpr int kLength = 32;
  wchar_t name[kLength];
  if (popup && GetClassNameW(popup, name, kLength) && lstrcmpW(name, kHelpPopupClass.name) == 0) DestroyWindow(popup);
}

void UnregisterHelpPopup() { UnregisterControlClass(ResourceModule(), kHelpPopupClass); }

}  // namespace tervan::ui
