#include "ui/dib_picture.h"

namespace tervan::ui {

DibPicture DibPicture::FromResource(HINSTANCE module, int number) {
  if (number == 0) return {};
  const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(number), RT_BITMAP);
  const HGLOBAL loaded = found ? LoadResource(module, found) : nullptr;
  const void* const bytes = loaded ? LockResource(loaded) : nullptr;
  if (!bytes) return {};
  return DibPicture({static_cast<const std::byte*>(bytes), SizeofResource(module, found)});
}

// The drawing library scales by leaving out and repeating pixels, which tears letters apart.
void DibDrawer::Draw(HDC dc, const DibPicture& picture, Rect area) {
  if (!handle_ || !picture || area.IsEmpty()) return;
  const Size size = picture.size();
  if (area.Width() == size.width && area.Height() == size.height) return DrawAsIs(dc, picture, {area.left, area.top});
  if (!buffer_.Prepare(dc, size)) return;
  DrawAsIs(buffer_.dc(), picture, {0, 0});
  SetStretchBltMode(dc, HALFTONE);
  SetBrushOrgEx(dc, 0, 0, nullptr);
  StretchBlt(dc, area.left, area.top, area.Width(), area.Height(), buffer_.dc(), 0, 0, size.width, size.height,
             SRCCOPY);
}

void DibDrawer::DrawAsIs(HDC dc, const DibPicture& picture, Point at) const {
  // The library asks for pointers that it may write through, and does not.
  const auto header = reinterpret_cast<LPBITMAPINFOHEADER>(const_cast<std::byte*>(picture.dib()));
  void* const pixels = const_cast<std::byte*>(picture.dib() + picture.format().pixels_at);
  const Size size = picture.size();
  // Without a palette to realise, some platforms would make one for each picture and never free it.
  if ((GetDeviceCaps(dc, RASTERCAPS) & RC_PALETTE) != 0) DrawDibRealize(handle_, dc, FALSE);
  DrawDibDraw(handle_, dc, at.x, at.y, size.width, size.height, header, pixels, 0, 0, size.width, size.height, 0);
}

}  // namespace tervan::ui
