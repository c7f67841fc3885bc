#include "ui/controls/logo_painting.h"

#include "ui/back_buffer.h"
#include "ui/gdi.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

constexpr Colour kDisabledText{210, 210, 210};

constexpr int kFrameGap_px = 3;  // above and below a frame
constexpr int kFrameRadius_px = 3;

// Of 256: how much lighter or darker than the strip a frame's parts are.
constexpr int kRaisedTop = 64;
constexpr int kRaisedBottom = 24;
constexpr int kSunkenTop = 112;
constexpr int kSunkenBottom = 64;
constexpr int kRim = 144;

enum ImageListOf { kNormal, kHot, kDisabled };

class Painter {
 public:
  Painter(HDC dc, Canvas& canvas, DibDrawer& drawer, const LogoScene& scene)
      : dc_(dc), canvas_(canvas), drawer_(drawer), scene_(scene), palette_(CurrentPalette()) {}

  void Paint(Rect client) {
    PaintBackground(client);
    GdiFlush();  // the canvas writes over what the pictures have left
    for (int i = 0; i < scene_.items.Count(); ++i) PaintFrame(i);
    SetBkMode(dc_, TRANSPARENT);
    PaintText(scene_.title, scene_.layout.title, TitleFont(), Text(true), DT_END_ELLIPSIS);
    for (int i = 0; i < scene_.items.Count(); ++i) PaintItem(i);
  }

 private:
  bool IsEnabled(int item) const { return scene_.is_enabled && scene_.items[item].is_enabled; }
  bool IsHot(int item) const { return item == scene_.hot_item && IsEnabled(item); }
  bool IsPressed(int item) const { return IsHot(item) && item == scene_.pressed_item; }

  Colour Text(bool is_enabled) const {
    if (palette_.is_high_contrast) return is_enabled ? palette_.text : palette_.disabled_text;
    return is_enabled ? kWhite : kDisabledText;
  }

  void PaintBackground(Rect client) {
    const LogoPictures& pictures = scene_.pictures;
    if (palette_.is_high_contrast) {
      canvas_.Fill(client, palette_.face);
    } else {
      canvas_.Fill(client, FromCOLORREF(kLogoBackground));
      drawer_.Draw(dc_, pictures.background, client);
    }
    const Rect area = scene_.layout.picture;
    const Size logo = {AtDpi(pictures.logo.size().width, scene_.dpi), AtDpi(pictures.logo.size().height, scene_.dpi)};
    const int top = (area.Height() - logo.height) / 2;
    SaveDC(dc_);
    IntersectClipRect(dc_, area.left, area.top, area.right, area.bottom);  // items cut it off
    drawer_.Draw(dc_, pictures.logo, {area.left, top, area.left + logo.width, top + logo.height});
    RestoreDC(dc_, -1);
  }

  // Frames are shades of what the strip has behind them, so that they go with any picture.
  Colour Shade(Point p, Colour towards, int weight) const { return Mixed(canvas_.PixelAt(p), towards, weight); }

  void PaintFrame(int item) {
    const Rect area = scene_.layout.items[item];
    if (area.IsEmpty()) return;
    const bool is_text = scene_.items[item].is_text;
    const int gap_px = AtDpi(kFrameGap_px, scene_.dpi);
    const Rect frame = is_text ? Rect{area.left, gap_px, area.right, area.bottom - gap_px} : area.Inset(-1);
    if (frame.IsEmpty()) return;
    const int radius_px = AtDpi(kFrameRadius_px, scene_.dpi);
    if (is_text && IsHot(item)) PaintButton(frame, radius_px, IsPressed(item));
    if (item == scene_.focused_item) {
      canvas_.StrokeRounded(frame, radius_px, AtDpi(1, scene_.dpi), Text(true));
    }
  }

  void PaintButton(Rect frame, int radius_px, bool is_pressed) {
    if (palette_.is_high_contrast) {
      canvas_.StrokeRounded(frame, radius_px, AtDpi(is_pressed ? 2 : 1, scene_.dpi), palette_.selection);
      return;
    }
    const Point top = {frame.left, frame.top};
    const Point bottom = {frame.left, frame.bottom - 1};
    const Colour rim = Shade(bottom, kBlack, kRim);
    const Colour towards = is_pressed ? kBlack : kWhite;
    canvas_.FillRounded(frame, radius_px, rim, rim);
    canvas_.FillRounded(frame.Inset(1), radius_px - 1, Shade(top, towards, is_pressed ? kSunkenTop : kRaisedTop),
                        Shade(bottom, towards, is_pressed ? kSunkenBottom : kRaisedBottom));
  }

  void PaintItem(int number) {
    const LogoItem& item = scene_.items[number];
    Rect area = scene_.layout.items[number];
    if (area.IsEmpty()) return;
    if (!item.is_text) return PaintImage(number, area);
    if (IsPressed(number)) area = {area.left + 1, area.top + 1, area.right + 1, area.bottom + 1};
    PaintText(item.text, area, SmallFont(), Text(IsEnabled(number)), DT_CENTER);
  }

  void PaintImage(int number, Rect area) {
    const HIMAGELIST wanted = scene_.images[!IsEnabled(number) ? kDisabled : IsHot(number) ? kHot : kNormal];
    const HIMAGELIST list = wanted ? wanted : scene_.images[kNormal];
    const int image = LogoImage(scene_.items[number], IsPressed(number));
    const int number_in_list = image < ImageList_GetImageCount(list) ? image : 0;
    const Size size = LogoImageSize(scene_.images);
    SaveDC(dc_);
    IntersectClipRect(dc_, area.left, area.top, area.right, area.bottom);
    area.right = area.left + AtDpi(size.width, scene_.dpi);
    if (area.Width() == size.width) {
      ImageList_Draw(list, number_in_list, dc_, area.left, area.top, ILD_TRANSPARENT);
    } else {
      PaintScaled(list, number_in_list, size, area);
    }
    RestoreDC(dc_, -1);
  }

  // On a small copy of what is behind it: the transparent corners of an image do not survive scaling.
  void PaintScaled(HIMAGELIST list, int image, Size size, Rect area) const {
    BackBuffer small;
    if (!small.Prepare(dc_, size)) return;
    SetStretchBltMode(small.dc(), HALFTONE);
    StretchBlt(small.dc(), 0, 0, size.width, size.height, dc_, area.left, area.top, area.Width(), area.Height(),
               SRCCOPY);
    ImageList_Draw(list, image, small.dc(), 0, 0, ILD_TRANSPARENT);
    SetStretchBltMode(dc_, HALFTONE);
    StretchBlt(dc_, area.left, area.top, area.Width(), area.Height(), small.dc(), 0, 0, size.width, size.height,
               SRCCOPY);
  }

  void PaintText(const std::wstring& text, Rect area, HFONT font, Colour colour, UINT alignment) const {
    if (area.IsEmpty()) return;
    const SelectedObject selected(dc_, font);
    SetTextColor(dc_, ToCOLORREF(colour));
    RECT bounds = ToRECT(area);
    DrawTextW(dc_, text.c_str(), static_cast<int>(text.size()), &bounds,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | alignment);
  }

  const HDC dc_;
  Canvas& canvas_;
  DibDrawer& drawer_;
  const LogoScene& scene_;
  const Palette palette_;
};

}  // namespace

Size LogoImageSize(const LogoImages& images) {
  int width = 0;
  int height = 0;
  if (!images[kNormal] || !ImageList_GetIconSize(images[kNormal], &width, &height)) return {};
  return {width, height};
}

void PaintLogo(HDC dc, Canvas& canvas, Rect client, DibDrawer& drawer, const LogoScene& scene) {
  Painter(dc, canvas, drawer, scene).Paint(client);
}

}  // namespace tervan::ui
