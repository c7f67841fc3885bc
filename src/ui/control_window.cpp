#include "ui/control_window.h"

#include <oleacc.h>

#include "ui/accessible_control.h"

namespace tervan::ui {
namespace {

constexpr wchar_t kMnemonicMark = L'&';

ControlWindow* ControlOf(HWND window) { return reinterpret_cast<ControlWindow*>(GetWindowLongPtrW(window, 0)); }

bool IsLabel(HWND window) {
  wchar_t name[8];
  return GetClassNameW(window, name, 8) > 0 && lstrcmpiW(name, L"Static") == 0;
}

}  // namespace

std::wstring WindowText(HWND window) {
  std::wstring text(GetWindowTextLengthW(window), L'\0');
  text.resize(GetWindowTextW(window, text.data(), static_cast<int>(text.size()) + 1));
  return text;
}

std::wstring PlainLabel(const wchar_t* text) {
  std::wstring plain;
  for (; *text; ++text) {
    if (*text == kMnemonicMark && *++text == L'\0') break;
    plain += *text == L'\n' ? L' ' : *text;
  }
  while (!plain.empty() && (plain.back() == L':' || plain.back() == L' ')) plain.pop_back();
  return plain;
}

std::wstring AccessibleParts::PartName(int /*part*/) const {
  const HWND before = GetWindow(window_, GW_HWNDPREV);
  return before && IsLabel(before) ? PlainLabel(WindowText(before).c_str()) : std::wstring();
}

LONG AccessibleParts::PartState(int /*part*/) const {
  LONG state = 0;
  const LONG style = GetWindowLongW(window_, GWL_STYLE);
  if (!IsWindowEnabled(window_)) state |= STATE_SYSTEM_UNAVAILABLE;
  if (!IsWindowVisible(window_)) state |= STATE_SYSTEM_INVISIBLE;
  if ((style & WS_TABSTOP) != 0) state |= STATE_SYSTEM_FOCUSABLE;
  if (GetFocus() == window_) state |= STATE_SYSTEM_FOCUSED;
  return state;
}

Rect AccessibleParts::PartBounds(int /*part*/) const {
  RECT client = {};
  GetClientRect(window_, &client);
  return FromRECT(client);
}

ControlWindow::ControlWindow(HWND window, HWND creation_parent)
    : AccessibleParts(window), creator_(creation_parent != GetParent(window) ? creation_parent : nullptr) {}
ControlWindow::~ControlWindow() { Detach(); }

void ControlWindow::Detach() noexcept {
  is_alive_ = false;
  if (accessible_) accessible_->Detach();
  accessible_.Reset();
}

void ControlWindow::SendNotify(HWND target, UINT code, NMHDR& header) const {
  if (!IsAlive()) return;
  header = {.hwndFrom = window(), .idFrom = static_cast<UINT_PTR>(Id()), .code = code};
  SendMessageW(target, WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
}

void ControlWindow::Announce(DWORD event, int part) const { NotifyWinEvent(event, window(), OBJID_CLIENT, part); }

LRESULT ControlWindow::OnGetObject(WPARAM wparam, LPARAM lparam) {
  if (static_cast<DWORD>(lparam) != static_cast<DWORD>(OBJID_CLIENT)) return Default(WM_GETOBJECT, wparam, lparam);
  if (!accessible_) accessible_ = directshow::ComPtr<AccessibleControl>(new AccessibleControl(window(), *this));
  return LresultFromObject(__uuidof(IAccessible), wparam, static_cast<IAccessible*>(accessible_.Get()));
}

LRESULT ControlProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                    ControlWindow* (*create)(HWND window, const CREATESTRUCTW& creation)) noexcept {
  ControlWindow* control = ControlOf(window);
  try {
    if (message == WM_CREATE) {
      control = create(window, *reinterpret_cast<const CREATESTRUCTW*>(lparam));
      if (!control) return -1;
      SetWindowLongPtrW(window, 0, reinterpret_cast<LONG_PTR>(control));
    }
  } catch (...) {
    return -1;
  }
  if (!control) return DefWindowProcW(window, message, wparam, lparam);

  LRESULT result = 0;
  const ControlWindow::Keep keep(*control);
  try {
    result =
        message == WM_GETOBJECT ? control->OnGetObject(wparam, lparam) : control->OnMessage(message, wparam, lparam);
  } catch (...) {
    result = 0;  // out of memory: the message is as good as not sent
  }
  if (message == WM_DESTROY) {
    SetWindowLongPtrW(window, 0, 0);
    control->Detach();
  }
  return result;
}

ATOM RegisterControlClass(HINSTANCE module, const ControlClass& control) {
  WNDCLASSEXW window_class = {};
  window_class.cbSize = sizeof window_class;
  window_class.style = control.style;
  window_class.lpfnWndProc = control.procedure;
  window_class.cbWndExtra = control.extra_bytes;
  window_class.hInstance = module;
  window_class.hCursor = control.cursor ? LoadCursorW(nullptr, control.cursor) : nullptr;
  window_class.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(control.background + 1));
  window_class.lpszClassName = control.name;
  return RegisterClassExW(&window_class);
}

void UnregisterControlClass(HINSTANCE module, const ControlClass& control) { UnregisterClassW(control.name, module); }

}  // namespace tervan::ui
