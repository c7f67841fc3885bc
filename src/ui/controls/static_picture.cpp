#include "ui/controls/static_picture.h"

namespace tervan::ui {
namespace {

Rect Placed(Size picture, Rect area, bool is_stretched) {
  return is_stretched ? area : Rect{area.left, area.top, area.left + picture.width, area.top + picture.height};
}

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
  if (!IS_INTRESOURCE(dib) && GlobalSize(dib) != 0) dib_.reset(dib);
}

Rect StaticPicture::Draw(HDC dc, Rect area, bool is_stretched, DibDrawer& drawer) const {
  if (bitmap_) return DrawBitmap(dc, bitmap_.get(), area, is_stretched);
  const void* const bytes = dib_ ? GlobalLock(dib_.get()) : nullptr;
  if (!bytes) return {};
  const DibPicture picture({static_cast<const std::byte*>(bytes), GlobalSize(dib_.get())});
  const Rect place = Placed(picture.size(), area, is_stretched);
  drawer.Draw(dc, picture, place);
  GlobalUnlock(dib_.get());
  return place;
}

}  // namespace tervan::ui
