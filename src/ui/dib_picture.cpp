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

void DibDrawer::Draw(HDC dc, const DibPicture& picture, Size part, Rect area) const {
  if (!handle_ || !picture || area.IsEmpty()) return;
  // The library asks for pointers that it may write through, and does not.
  const auto header = reinterpret_cast<LPBITMAPINFOHEADER>(const_cast<std::byte*>(picture.dib()));
  void* const pixels = const_cast<std::byte*>(picture.dib() + picture.format().pixels_at);
  // Without a palette to realise, some platforms would make one for each picture and never free it.
  if ((GetDeviceCaps(dc, RASTERCAPS) & RC_PALETTE) != 0) DrawDibRealize(handle_, dc, FALSE);
  DrawDibDraw(handle_, dc, area.left, area.top, area.Width(), area.Height(), header, pixels, 0, 0, part.width,
              part.height, 0);
}

}  // namespace tervan::ui
