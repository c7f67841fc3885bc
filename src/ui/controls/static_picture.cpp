#include "ui/controls/static_picture.h"

namespace tervan::ui {
namespace {

Rect Placed(Size picture, Rect area, bool is_stretched) {
  return is_stretched ? area : Rect{area.left, area.top, area.left + picture.width, area.top + picture.height};
}

// A block's bytes stay where they are while this lives.
class LockedDib {
 public:
  explicit LockedDib(HGLOBAL block) : block_(block), bytes_(static_cast<const std::byte*>(GlobalLock(block))) {}
  ~LockedDib() {
    if (bytes_) GlobalUnlock(block_);
  }
  LockedDib(const LockedDib&) = delete;
  LockedDib& operator=(const LockedDib&) = delete;
  DibPicture Picture() const { return bytes_ ? DibPicture({bytes_, GlobalSize(block_)}) : DibPicture(); }

 private:
  const HGLOBAL block_;
  const std::byte* const bytes_;
};

Rect DrawBitmap(HDC dc, HBITMAP bitmap, Rect area, bool is_stretched) {
  BITMAP description;
  if (GetObjectW(bitmap, sizeof description, &description) == 0) return {};
  const HDC source = CreateCompatibleDC(dc);
  if (!source) return {};
  const Size size = {description.bmWidth, description.bmHeight};
  const Rect place = Placed(size, area, is_stretched);
  {
    const SelectedObject selected(source, bitmap);
    SetStretchBltMode(dc, HALFTONE);
    SetBrushOrgEx(dc, 0, 0, nullptr);
    StretchBlt(dc, place.left, place.top, place.Width(), place.Height(), source, 0, 0, size.width, size.height,
               SRCCOPY);
  }
  DeleteDC(source);
  return place;
}

}  // namespace

// Given once more, the picture stays as it is.
void StaticPicture::Take(HBITMAP bitmap) {
  if (bitmap && bitmap == bitmap_.get()) return;
  Clear();
  if (GetObjectType(bitmap) == OBJ_BITMAP) bitmap_.reset(bitmap);
}

void StaticPicture::TakeDib(HGLOBAL dib) {
  if (dib && dib == dib_.get()) return;
  Clear();
  if (!dib || GlobalSize(dib) == 0) return;
  dib_.reset(dib);
  const bool can_be_drawn = static_cast<bool>(LockedDib(dib).Picture());
  if (!can_be_drawn) dib_.reset();
}

Rect StaticPicture::Draw(HDC dc, Rect area, bool is_stretched, DibDrawer& drawer) const {
  if (bitmap_) return DrawBitmap(dc, bitmap_.get(), area, is_stretched);
  if (!dib_) return {};
  const LockedDib locked(dib_.get());
  const DibPicture picture = locked.Picture();
  const Rect place = Placed(picture.size(), area, is_stretched);
  drawer.Draw(dc, picture, place);
  return place;
}

}  // namespace tervan::ui
