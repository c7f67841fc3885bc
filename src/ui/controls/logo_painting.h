// What a logo strip looks like.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <array>
#include <string>

#include "ui/controls/logo_items.h"
#include "ui/controls/logo_layout.h"
#include "ui/dib_picture.h"
#include "ui/theme.h"

namespace tervan::ui {

// Behind the pictures, and of the image lists.
inline constexpr COLORREF kLogoBackground = RGB(150, 150, 150);

struct LogoPictures {
  DibPicture logo;
  DibPicture background;
};

// Normal, hot, disabled; the page's own, null where it gave none.
using LogoImages = std::array<HIMAGELIST, 3>;

// The width of an image button: 0 without images.
Size LogoImageSize(const LogoImages& images);

struct LogoScene {
  const LogoItems& items;
  const LogoLayout& layout;
  const LogoPictures& pictures;
  const LogoImages& images;
  std::wstring title;
  int hot_item;      // under the mouse, or -1
  int pressed_item;  // held down by it, or -1
  int focused_item;  // of the keyboard, or -1
  bool is_enabled;
  int dpi;
};

// Draws all of the client area. The canvas holds the pixels that dc draws on.
void PaintLogo(HDC dc, Canvas& canvas, Rect client, DibDrawer& drawer, const LogoScene& scene);

}  // namespace tervan::ui
