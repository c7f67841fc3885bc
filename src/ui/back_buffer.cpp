#include "ui/back_buffer.h"

#include "ui/theme.h"

namespace tervan::ui {

BackBuffer::~BackBuffer() { Release(); }

void BackBuffer::Release() {
  canvas_.reset();
  if (!dc_) return;
  SelectObject(dc_, first_bitmap_);
  bitmap_.reset();
  DeleteDC(dc_);
  dc_ = nullptr;
}

bool BackBuffer::Prepare(HDC screen, Size size) {
  if (size.width <= 0 || size.height <= 0) return false;
  const bool fits = canvas_ && canvas_->size().width == size.width && canvas_->size().height == size.height;
  if (!fits) {
    Release();
    BITMAPINFO info = {};
    // A negative height puts the top row first.
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), size.width, -size.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* pixels = nullptr;
    bitmap_.reset(CreateDIBSection(screen, &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
    dc_ = bitmap_ ? CreateCompatibleDC(screen) : nullptr;
    if (!dc_) {
      bitmap_.reset();
      return false;
    }
    first_bitmap_ = SelectObject(dc_, bitmap_.get());
    canvas_.emplace(static_cast<std::uint32_t*>(pixels), size);
  }
  GdiFlush();  // the last painting's text is drawn before the canvas writes over it
  canvas_->SetFewColours(HasFewColours(screen));
  return true;
}

void BackBuffer::Show(HDC screen) const {
  BitBlt(screen, 0, 0, canvas_->size().width, canvas_->size().height, dc_, 0, 0, SRCCOPY);
}

}  // namespace tervan::ui
