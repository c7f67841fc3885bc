// The picture of a static control: one at a time, and the control's own.
#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

#include "ui/dib_picture.h"
#include "ui/gdi.h"

namespace tervan::ui {

class StaticPicture {
 public:
  // Each of these deletes the picture before. What is no bitmap leaves no picture; a block of memory that is none, or
  // none that can be drawn, is freed at once.
  void Clear() { *this = {}; }
  void Take(HBITMAP bitmap);
  void TakeDib(HGLOBAL dib);  // a packed device-independent bitmap

  explicit operator bool() const { return bitmap_ || dib_; }
  // At its own size in the left top corner, or stretched to the area. Answers where it lies.
  Rect Draw(HDC dc, Rect area, bool is_stretched, DibDrawer& drawer) const;

 private:
  struct BlockDeleter {
    void operator()(HGLOBAL block) const noexcept { GlobalFree(block); }
  };

  BitmapHandle bitmap_;
  std::unique_ptr<void, BlockDeleter> dib_;
};

}  // namespace tervan::ui
