#include "host/page_photographer.h"

#include <iterator>
#include <string_view>
#include <utility>

#include "host/failure.h"
#include "host/window_picture.h"

namespace tervan::host {
namespace {

// Time for the page to paint, and for its meters to have something to show.
constexpr ULONGLONG kBeforePictureMs = 1000;
// Time for what it opens.
constexpr ULONGLONG kOpeningMs = 500;

constexpr WPARAM kAboutCommand = 41001;  // of every page

// Children come after their parents, so the innermost dialog comes last.
BOOL CALLBACK KeepDialog(HWND window, LPARAM found) {
  wchar_t name[16] = {};
  GetClassNameW(window, name, static_cast<int>(std::size(name)));
  if (std::wstring_view(name) == L"#32770" && IsWindowVisible(window)) *reinterpret_cast<HWND*>(found) = window;
  return TRUE;
}

HWND PageIn(HWND frame) {
  HWND page = frame;
  EnumChildWindows(frame, KeepDialog, reinterpret_cast<LPARAM>(&page));
  return page;
}

struct WindowsOnScreen {
  int count = 0;
  RECT bounds{};
};

BOOL CALLBACK AddVisible(HWND window, LPARAM sum) {
  auto& [count, bounds] = *reinterpret_cast<WindowsOnScreen*>(sum);
  RECT area{};
  if (!IsWindowVisible(window) || !GetWindowRect(window, &area)) return TRUE;
  ++count;
  UnionRect(&bounds, &bounds, &area);
  return TRUE;
}

// Those of this thread: the frame, and the boxes and menus over it.
WindowsOnScreen OwnWindows() {
  WindowsOnScreen windows;
  EnumThreadWindows(GetCurrentThreadId(), AddVisible, reinterpret_cast<LPARAM>(&windows));
  return windows;
}

// What is painted now is on the screen when the message loop comes round again.
void BringUpToDate(HWND frame) {
  SetWindowPos(frame, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
  SetForegroundWindow(frame);
  RedrawWindow(frame, nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
}

}  // namespace

// Posted, since box and menu keep their caller until they are closed.
void PagePhotographer::Open(HWND page) const {
  if (opening_ == PageOpening::kAboutBox) PostMessageW(page, WM_COMMAND, kAboutCommand, 0);
  if (opening_ != PageOpening::kMenu) return;
  RECT area{};
  GetWindowRect(page, &area);
  const int x_px = area.left + (area.right - area.left) / 4;
  const int y_px = area.top + (area.bottom - area.top) / 4;
  PostMessageW(page, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(page), MAKELPARAM(x_px, y_px));
  for (const WPARAM key : {VK_DOWN, VK_RIGHT}) PostMessageW(page, WM_KEYDOWN, key, 0);  // into the first submenu
}

bool PagePhotographer::Tick(HWND frame) {
  const ULONGLONG now_ms = GetTickCount64();
  if (due_ms_ == 0) due_ms_ = now_ms + kBeforePictureMs;
  if (now_ms < due_ms_) return true;
  if (!std::exchange(is_ready_, true)) {
    BringUpToDate(frame);
    Open(PageIn(frame));
    if (opening_ != PageOpening::kNothing) due_ms_ = now_ms + kOpeningMs;
    return true;
  }
  const auto [count, bounds] = OwnWindows();
  const int expected = opening_ == PageOpening::kMenu ? 3 : opening_ == PageOpening::kAboutBox ? 2 : 1;
  if (count < expected) throw Failure("the page does not open what --open asks for");
  picture_ = PictureOf(bounds);
  return false;
}

const std::vector<std::uint8_t>& PagePhotographer::Picture() const {
  if (picture_.empty()) throw Failure("the window was closed before its picture was taken");
  return picture_;
}

}  // namespace tervan::host
