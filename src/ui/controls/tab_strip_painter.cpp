#include "ui/controls/tab_strip_painter.h"

#include "ui/gdi.h"
#include "ui/theme.h"

namespace tervan::ui {
namespace {

// A group box has a groove around it, a dark and a lit pixel at any dpi.
constexpr int kGroove_px = 2;

constexpr int kRadius_px = 4;
constexpr int kLip_px = 2;  // the selected tab's lower edge; the others are as much shorter
constexpr int kFocusInset_px = 3;

// Of 256: from the page's colour towards the shadow's.
constexpr int kBelowBox = 88;  // the box throws its shadow on the tabs behind
constexpr int kAtLowerEdge = 20;
constexpr int kEdge = 176;

class Painter {
 public:
  Painter(HDC dc, Canvas& canvas, const TabStripScene& scene)
      : dc_(dc), canvas_(canvas), scene_(scene), palette_(CurrentPalette()) {}

  void Paint(Rect client) {
    canvas_.Fill(client, palette_.face);
    for (int i = 0; i < Count(); ++i) {
      if (i != scene_.selected) PaintClosed(scene_.tabs[i], i == scene_.hot && scene_.is_enabled);
    }
    PaintBoxLine(client);
    if (scene_.selected >= 0) PaintOpen(scene_.tabs[scene_.selected]);
    PaintTexts();
  }

 private:
  int Count() const { return static_cast<int>(scene_.tabs.size()); }
  int At(int px) const { return AtDpi(px, scene_.dpi); }
  Colour Darker(int weight) const { return Mixed(palette_.face, palette_.shadow, weight); }
  Colour Edge() const { return palette_.is_high_contrast ? palette_.text : Darker(kEdge); }

  // Round below; above, it goes on behind the box.
  Rect Hanging(Rect tab, int shorter_px) const {
    return {tab.left, -At(kRadius_px), tab.right, tab.bottom - shorter_px};
  }

  void PaintClosed(Rect tab, bool is_hot) {
    const Rect outside = Hanging(tab, At(kLip_px));
    const Rect inside = {outside.left + 1, outside.top, outside.right - 1, outside.bottom - 1};
    const int radius_px = At(kRadius_px);
    canvas_.FillRounded(outside, radius_px, Edge(), Edge());
    if (palette_.is_high_contrast) {
      canvas_.FillRounded(inside, radius_px - 1, palette_.face, palette_.face);
      if (is_hot) canvas_.StrokeRounded(inside, radius_px - 1, At(1), palette_.selection);
    } else if (is_hot) {
      canvas_.FillRounded(inside, radius_px - 1, palette_.face, palette_.highlight);
    } else {
      canvas_.FillRounded(inside, radius_px - 1, Darker(kBelowBox), Darker(kAtLowerEdge));
    }
  }

  void PaintBoxLine(Rect client) {
    canvas_.Fill({0, 0, client.right - 1, 1}, palette_.shadow);
    canvas_.Fill({client.right - 1, 0, client.right, 1}, palette_.highlight);
    canvas_.Fill({0, 1, client.right, kGroove_px}, palette_.highlight);
  }

  // The groove turns down at its sides, so that the box's inside goes on in the tab.
  void PaintOpen(Rect tab) {
    const int radius_px = At(kRadius_px);
    const Colour lip = scene_.is_enabled ? palette_.accent : Edge();
    canvas_.FillRounded(Hanging(tab, 0), radius_px, lip, lip);
    const Rect body = Hanging(tab, At(kLip_px));
    canvas_.FillRounded(body, radius_px, palette_.face, palette_.face);
    const int side_bottom = body.bottom - radius_px;
    canvas_.Fill({body.left, 0, body.left + 1, side_bottom}, palette_.shadow);
    canvas_.Fill({body.left + 1, 0, body.left + kGroove_px, side_bottom}, palette_.highlight);
    canvas_.Fill({body.right - kGroove_px, 0, body.right - 1, side_bottom}, palette_.shadow);
    canvas_.Fill({body.right - 1, 1, body.right, side_bottom}, palette_.highlight);
    if (!scene_.is_focused) return;
    const int inset_px = At(kFocusInset_px);
    const Rect ring = {body.left + inset_px, 1, body.right - inset_px, body.bottom - 1};
    canvas_.StrokeRounded(ring, inset_px, At(1), palette_.accent);
  }

  void PaintTexts() const {
    const SelectedObject font(dc_, scene_.font);
    SetBkMode(dc_, TRANSPARENT);
    SetTextColor(dc_, ToCOLORREF(scene_.is_enabled ? palette_.text : palette_.disabled_text));
    for (int i = 0; i < Count(); ++i) {
      RECT area = ToRECT(scene_.tabs[i]);
      area.top += kGroove_px;
      area.bottom -= At(kLip_px);
      const std::wstring& text = scene_.texts[i];
      DrawTextW(dc_, text.c_str(), static_cast<int>(text.size()), &area,
                DT_SINGLELINE | DT_CENTER | DT_VCENTER | DT_NOPREFIX);
    }
  }

  const HDC dc_;
  Canvas& canvas_;
  const TabStripScene& scene_;
  const Palette palette_;
};

}  // namespace

void PaintTabStrip(HDC dc, Canvas& canvas, Rect client, const TabStripScene& scene) {
  Painter(dc, canvas, scene).Paint(client);
}

}  // namespace tervan::ui
