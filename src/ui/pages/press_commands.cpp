#include "ui/pages/press_commands.h"

#include <commctrl.h>

namespace tervan::ui {
namespace {

constexpr UINT_PTR kSubclassId = 1;

constexpr bool IsFirstPress(LPARAM key_data) { return (key_data & (1 << 30)) == 0; }

void Send(HWND check_box, WORD code) {
  SendMessageW(GetParent(check_box), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(check_box), code),
               reinterpret_cast<LPARAM>(check_box));
}

void SendPress(HWND check_box, const PressCommands& codes) {
  Send(check_box, codes.begin);
  if (IsWindow(check_box)) Send(check_box, codes.press);
}

LRESULT CALLBACK OnMessage(HWND check_box, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR /*id*/,
                           DWORD_PTR reference) {
  const auto& codes = *reinterpret_cast<const PressCommands*>(reference);
  switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: SendPress(check_box, codes); break;
    case WM_KEYDOWN:
      if (wparam == VK_SPACE && IsFirstPress(lparam)) SendPress(check_box, codes);
      break;
    case WM_KEYUP:
      if (wparam == VK_SPACE) Send(check_box, codes.end);
      break;
    case WM_LBUTTONUP:
    case WM_KILLFOCUS:
    case WM_CANCELMODE: Send(check_box, codes.end); break;
    case WM_NCDESTROY: RemoveWindowSubclass(check_box, OnMessage, kSubclassId); break;
  }
  return IsWindow(check_box) ? DefSubclassProc(check_box, message, wparam, lparam) : 0;
}

}  // namespace

void SendPressCommands(HWND check_box, const PressCommands& codes) {
  if (!check_box) return;
  SetWindowSubclass(check_box, OnMessage, kSubclassId, reinterpret_cast<DWORD_PTR>(&codes));
  const LONG style = GetWindowLongW(check_box, GWL_STYLE);
  SetWindowLongW(check_box, GWL_STYLE, (style & ~BS_TYPEMASK) | BS_CHECKBOX);
}

}  // namespace tervan::ui
