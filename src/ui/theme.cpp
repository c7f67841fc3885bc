#include "ui/theme.h"

#include "ui/gdi.h"

namespace tervan::ui {
namespace {

Colour System(int index) { return FromCOLORREF(GetSysColor(index)); }

bool IsHighContrast() {
  HIGHCONTRASTW contrast = {};
  contrast.cbSize = sizeof contrast;
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
         (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

}  // namespace

Palette CurrentPalette() {
  Palette palette = {
      .is_high_contrast = IsHighContrast(),
      .face = System(COLOR_BTNFACE),
      .text = System(COLOR_BTNTEXT),
      .disabled_text = System(COLOR_GRAYTEXT),
      .highlight = System(COLOR_BTNHIGHLIGHT),
      .shadow = System(COLOR_BTNSHADOW),
      .window = System(COLOR_WINDOW),
      .selection = System(COLOR_HIGHLIGHT),
      .channel = {38, 42, 46},
      .channel_edge = {20, 22, 24},
      .accent = {32, 140, 168},
      .accent_dim = {24, 84, 104},
      .level_low = {64, 190, 110},
      .level_high = {232, 190, 64},
      .level_clip = {226, 72, 60},
      .reduction = {236, 150, 52},
  };
  if (!palette.is_high_contrast) return palette;
  palette.channel = palette.window;
  palette.channel_edge = palette.text;
  palette.accent = palette.accent_dim = palette.selection;
  palette.level_low = palette.level_high = palette.level_clip = palette.reduction = palette.selection;
  return palette;
}

bool HasFewColours(HDC dc) { return GetDeviceCaps(dc, BITSPIXEL) * GetDeviceCaps(dc, PLANES) <= 8; }

int ScreenDpi() {
  const WindowDc screen(nullptr);
  return GetDeviceCaps(screen.Get(), LOGPIXELSY);
}

}  // namespace tervan::ui
