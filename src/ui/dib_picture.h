// Device-independent bitmaps, drawn with the platform's DrawDib functions.
#pragma once

#include <windows.h>

#include <vfw.h>

#include <optional>
#include <span>

#include "ui/back_buffer.h"
#include "ui/dib_format.h"

namespace tervan::ui {

// A bitmap in memory of somebody else's: a resource, or a block that its owner keeps.
class DibPicture {
 public:
  DibPicture() = default;  // nothing to draw
  explicit DibPicture(std::span<const std::byte> dib) : dib_(dib.data()), format_(FormatOfDib(dib)) {}
  // Number 0 or a resource that cannot be drawn: nothing to draw.
  static DibPicture FromResource(HINSTANCE module, int number);

  // False: nothing to draw; the size is 0 then.
  explicit operator bool() const { return format_.has_value(); }
  Size size() const { return format_ ? format_->size : Size{}; }
  const std::byte* dib() const { return dib_; }
  const DibFormat& format() const { return *format_; }

 private:
  const std::byte* dib_ = nullptr;
  std::optional<DibFormat> format_;
};

// The drawing library's state for one window.
class DibDrawer {
 public:
  DibDrawer() : handle_(DrawDibOpen()) {}
  ~DibDrawer() {
    if (handle_) DrawDibClose(handle_);
  }
  DibDrawer(const DibDrawer&) = delete;
  DibDrawer& operator=(const DibDrawer&) = delete;

  // Scaled smoothly to the area when that has another size.
  void Draw(HDC dc, const DibPicture& picture, Rect area);

 private:
  void DrawAsIs(HDC dc, const DibPicture& picture, Point at) const;

  const HDRAWDIB handle_;
  BackBuffer buffer_;  // of the picture's own size
};

}  // namespace tervan::ui
