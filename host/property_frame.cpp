#include "host/property_frame.h"

#include <olectl.h>

#include <exception>

#include "host/failure.h"
#include "host/text.h"

namespace tervan::host {
namespace {

constexpr UINT kTickMs = 50;

// The frame is the thread's only window with a caption that nobody owns.
BOOL CALLBACK KeepFrame(HWND window, LPARAM found) {
  const bool has_caption = (GetWindowLongW(window, GWL_STYLE) & WS_CAPTION) == WS_CAPTION;
  if (!has_caption || !IsWindowVisible(window) || GetWindow(window, GW_OWNER)) return TRUE;
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

// The frame's own message loop runs while it is shown; a timer gives us a turn in it.
class FrameWatch {
 public:
  explicit FrameWatch(const std::function<bool(HWND)>& on_tick)
      : on_tick_(on_tick),
        window_(CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
    if (!window_ || !SetTimer(window_, reinterpret_cast<UINT_PTR>(this), kTickMs, OnTimer)) {
      throw Failure("no timer for the property frame: " + SystemMessage(GetLastError()));
    }
  }
  ~FrameWatch() {
    if (window_) DestroyWindow(window_);
  }
  FrameWatch(const FrameWatch&) = delete;
  FrameWatch& operator=(const FrameWatch&) = delete;

  bool HasSeenFrame() const { return frame_ != nullptr; }
  void RethrowError() const {
    if (error_) std::rethrow_exception(error_);
  }

 private:
  static void CALLBACK OnTimer(HWND, UINT, UINT_PTR id, DWORD) { reinterpret_cast<FrameWatch*>(id)->Tick(); }

  void Tick() noexcept {
    if (!frame_) EnumThreadWindows(GetCurrentThreadId(), KeepFrame, reinterpret_cast<LPARAM>(&frame_));
    if (!frame_ || is_closing_) return;
    try {
      is_closing_ = !on_tick_(frame_);
    } catch (...) {
      error_ = std::current_exception();
      is_closing_ = true;
    }
    if (is_closing_) Close();
  }

  // The frame does not go before the menu or the box over it.
  void Close() const {
    EndMenu();
    const HWND box = GetLastActivePopup(frame_);
    if (box != frame_) PostMessageW(box, WM_CLOSE, 0, 0);
    PostMessageW(frame_, WM_CLOSE, 0, 0);
  }

  const std::function<bool(HWND)>& on_tick_;
  const HWND window_;
  HWND frame_ = nullptr;
  bool is_closing_ = false;
  std::exception_ptr error_;
};

}  // namespace

void ShowPropertyFrame(IUnknown& object, std::span<CLSID> pages, const std::string& title,
                       const std::function<bool(HWND)>& on_tick) {
  FrameWatch watch(on_tick);
  IUnknown* objects[] = {&object};
  const HRESULT result =
      OleCreatePropertyFrame(nullptr, 0, 0, Wide(title).c_str(), 1, objects, static_cast<ULONG>(pages.size()),
                             pages.data(), LOCALE_USER_DEFAULT, 0, nullptr);
  watch.RethrowError();
  if (FAILED(result)) throw Failure("the platform's property frame does not open: " + SystemMessage(result));
  if (!watch.HasSeenFrame()) throw Failure("no property frame appeared; is there a display to show it on?");
}

}  // namespace tervan::host
