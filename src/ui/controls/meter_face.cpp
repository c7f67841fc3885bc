#include "ui/controls/meter_face.h"

#include <algorithm>

#include "ui/controls/meter_label_format.h"
#include "ui/gdi.h"
#include "ui/number_labels.h"
#include "ui/ui_library.h"
#include "ui/user_number_format.h"

namespace tervan::ui {
namespace {

// At 96 dpi.
constexpr int kTickPx = 4;
constexpr int kMinorTickPx = 2;
constexpr int kTickGapPx = 1;
constexpr int kLeastTickDistancePx = 3;
constexpr int kLabelGapPx = 6;
constexpr int kSegmentPx = 4;  // with the gap behind it
constexpr int kCornerPx = 2;

constexpr int kFullWeight = 256;
constexpr int kDarkBar = 44;       // of a bar's colour, where it is not lit
constexpr int kGloss = 70;         // of white, at the brightest line of a lit bar
constexpr int kShade = 70;         // of the well, at a lit bar's edge away from the light
constexpr int kSegmentGap = 120;   // of the well, between segments
constexpr int kClipGloss = 90;     // of white, at the top of a lit clip indicator
constexpr int kDarkClipFoot = 80;  // of the clip colour, at the bottom of a dark one; kDarkBar at its top
constexpr int kQuietText = 48;     // of the background, in labels

// Parts of a bar's thickness, from the edge that light falls on.
constexpr double kGlossPlace = 0.3;  // the brightest line; fades over as much again
constexpr double kShadeStart = 0.5;  // darker from there on

// Where a level's colour is pure, in decibels below full scale; between them it changes gradually.
constexpr int kHighDbBelow = 9;
constexpr int kLowDbBelow = 20;

// What lies between the bars and a label.
int TickStrip(int dpi) { return AtDpi(kTickPx + kTickGapPx, dpi); }

std::wstring Wide(const std::u16string& text) { return {text.begin(), text.end()}; }
std::u16string Utf16(const std::wstring& text) { return {text.begin(), text.end()}; }

std::wstring LabelText(const MeterLook& look, int db_below) {
  const std::wstring number = MeterNumber(look.label_format, db_below == 0 ? 0.0 : -db_below);
  return db_below == 0 && look.has_unit ? number + kDecibelUnit : number;
}

SIZE TextSize(HDC dc, const std::wstring& text) {
  SIZE size = {};
  GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
  return size;
}

std::vector<ScaleLabel> LabelsOf(HDC dc, const MeterLook& look) {
  const MeterLayout& layout = look.layout;
  const Rect& bar = layout.bars[0];
  const LabelRoom room =
      layout.is_vertical
          ? LabelRoom{bar.bottom - layout.labels.bottom, bar.bottom - layout.labels.top, 0}
          : LabelRoom{layout.labels.left - bar.left, layout.labels.right - bar.left, AtDpi(kLabelGapPx, look.dpi)};
  return ChooseLabels(look.scale, layout.BarLength(), room, [&](int db_below) {
    const SIZE size = TextSize(dc, LabelText(look, db_below));
    return static_cast<int>(layout.is_vertical ? size.cy : size.cx);
  });
}

}  // namespace

std::wstring MeterNumber(const std::wstring& format, double db) {
  return Wide(FormatLabel(Utf16(format), db, UserNumberFormat().decimal_sign));
}

int LabelStripThickness(HWND meter, bool is_vertical, bool has_unit, const std::wstring& label_format,
                        std::uint32_t display_range) {
  constexpr std::uint32_t kTwoDigits = 32768;  // the largest ratio whose decibels have two digits
  const WindowDc dc(meter);
  const SelectedObject font(dc.Get(), SmallFont());
  const std::wstring widest = MeterNumber(label_format, display_range <= kTwoDigits ? -90.0 : -138.0);
  const SIZE size = TextSize(dc.Get(), has_unit ? widest + kDecibelUnit : widest);
  return TickStrip(ScreenDpi()) + static_cast<int>(is_vertical ? size.cx : size.cy);
}

void MeterFace::DrawDark(HDC dc, Canvas& canvas) const {
  canvas.Fill(look_.layout.client, palette_.face);
  DrawWell(canvas);
  DrawClipIndicators(canvas, Light::kDark);
  if (look_.layout.labels.IsEmpty()) return;
  const SelectedObject font(dc, SmallFont());
  const std::vector<ScaleLabel> labels = LabelsOf(dc, look_);
  if (look_.has_ticks) DrawTicks(canvas, labels);
  DrawLabels(dc, labels);
}

void MeterFace::DrawLit(Canvas& canvas) const {
  DrawBars(canvas, Light::kLit);
  DrawClipIndicators(canvas, Light::kLit);
}

// Dark bars go before the edge: their colours may reach beyond their quiet ends. Without shades the well shows instead.
void MeterFace::DrawWell(Canvas& canvas) const {
  const Rect& well = look_.layout.well;
  const Colour edge = look_.is_focused ? palette_.accent : palette_.channel_edge;
  if (!is_shaded_) {
    canvas.Fill(well, edge);
    canvas.Fill(well.Inset(1), palette_.channel);
    return;
  }
  const int corner_px = AtDpi(kCornerPx, look_.dpi);
  canvas.FillRounded(well, corner_px, palette_.channel, palette_.channel);
  DrawBars(canvas, Light::kDark);
  canvas.StrokeRounded(well, corner_px, 1, edge);
}

void MeterFace::DrawBars(Canvas& canvas, Light light) const {
  for (int channel = 0; channel < look_.layout.channel_count; ++channel) {
    const Rect& bar = look_.layout.bars[static_cast<std::size_t>(channel)];
    DrawGradient(canvas, bar, light);
    if (light == Light::kLit && is_shaded_) ShadeBar(canvas, bar);
    if (!look_.has_plain_bars) DrawSegmentGaps(canvas, bar, light);
  }
}

Colour MeterFace::LevelColour(double db_below) const {
  if (!look_.is_enabled) return palette_.is_high_contrast ? palette_.disabled_text : palette_.shadow;
  if (look_.is_inverted) return palette_.reduction;
  const auto weight = [](double part) { return static_cast<int>(std::clamp(part, 0.0, 1.0) * kFullWeight); };
  if (db_below > kHighDbBelow) {
    return Mixed(palette_.level_low, palette_.level_high,
                 weight((kLowDbBelow - db_below) / (kLowDbBelow - kHighDbBelow)));
  }
  return Mixed(palette_.level_high, palette_.level_clip, weight(1.0 - db_below / kHighDbBelow));
}

void MeterFace::DrawGradient(Canvas& canvas, const Rect& bar, Light light) const {
  const MeterLayout& layout = look_.layout;
  const int length = layout.BarLength();
  const auto colour_at = [&](double db_below) {
    return light == Light::kLit ? LevelColour(db_below) : Mixed(palette_.channel, LevelColour(db_below), kDarkBar);
  };
  canvas.Fill(bar, colour_at(look_.scale.SpanDb()));
  int quiet_db = kLowDbBelow;
  // Zones that the end of the scale cuts are drawn whole, between pure colours: few-colour screens have no others.
  for (const int loud_db : {kHighDbBelow, 0}) {
    const Rect zone = layout.Slice(bar, look_.scale.PlaceOf(quiet_db, length), look_.scale.PlaceOf(loud_db, length));
    if (layout.is_vertical) {
      canvas.FillGradient(zone, colour_at(loud_db), colour_at(quiet_db), Direction::kDown);
    } else {
      canvas.FillGradient(zone, colour_at(quiet_db), colour_at(loud_db), Direction::kAcross);
    }
    quiet_db = loud_db;
  }
}

// As light falls on a tube from above or from the left.
void MeterFace::ShadeBar(Canvas& canvas, const Rect& bar) const {
  const bool is_vertical = look_.layout.is_vertical;
  const int thickness = is_vertical ? bar.Width() : bar.Height();
  for (int y = bar.top; y < bar.bottom; ++y) {
    for (int x = bar.left; x < bar.right; ++x) {
      const int across = is_vertical ? x - bar.left : y - bar.top;
      const double part = (across + 0.5) / thickness;
      const double gloss = std::max(0.0, 1.0 - std::abs(part - kGlossPlace) / kGlossPlace);
      const double shade = std::max(0.0, (part - kShadeStart) / (1.0 - kShadeStart));
      const Colour glossy = Mixed(canvas.PixelAt({x, y}), kWhite, static_cast<int>(gloss * kGloss));
      canvas.Fill({x, y, x + 1, y + 1}, Mixed(glossy, palette_.channel, static_cast<int>(shade * kShade)));
    }
  }
}

void MeterFace::DrawSegmentGaps(Canvas& canvas, const Rect& bar, Light light) const {
  const MeterLayout& layout = look_.layout;
  const int weight = light == Light::kLit && is_shaded_ ? kSegmentGap : kFullWeight;
  const int segment_px = AtDpi(kSegmentPx, look_.dpi);
  for (int place = segment_px - 1; place < layout.BarLength(); place += segment_px) {
    const Rect gap = layout.Slice(bar, place, place + 1);
    for (int y = gap.top; y < gap.bottom; ++y) {
      for (int x = gap.left; x < gap.right; ++x) {
        canvas.Fill({x, y, x + 1, y + 1}, Mixed(canvas.PixelAt({x, y}), palette_.channel, weight));
      }
    }
  }
}

void MeterFace::DrawClipIndicators(Canvas& canvas, Light light) const {
  const bool is_lit = light == Light::kLit;
  const Colour red = look_.is_enabled ? palette_.level_clip : palette_.shadow;
  for (int channel = 0; channel < look_.layout.channel_count; ++channel) {
    const Rect& clip = look_.layout.clips[static_cast<std::size_t>(channel)];
    if (!is_shaded_) {
      canvas.Fill(clip, is_lit ? red : palette_.channel_edge);
      if (!is_lit) canvas.Fill(clip.Inset(1), palette_.channel);
      continue;
    }
    canvas.Fill(clip, palette_.channel);
    const int corner_px = AtDpi(kCornerPx, look_.dpi);
    if (is_lit) {
      canvas.FillRounded(clip, corner_px, Mixed(red, kWhite, kClipGloss), red);
    } else {
      canvas.FillRounded(clip, corner_px, Mixed(palette_.channel, red, kDarkBar),
                         Mixed(palette_.channel, red, kDarkClipFoot));
    }
  }
}

// A labelled tick is longer.
void MeterFace::DrawTicks(Canvas& canvas, const std::vector<ScaleLabel>& labels) const {
  const MeterLayout& layout = look_.layout;
  const int length = layout.BarLength();
  const int width_px = AtDpi(1, look_.dpi);
  for (const int db_below : MeterTicks(look_.scale, length, AtDpi(kLeastTickDistancePx, look_.dpi))) {
    const bool is_labelled = std::ranges::find(labels, db_below, &ScaleLabel::db_below) != labels.end();
    const int tick_px = AtDpi(is_labelled ? kTickPx : kMinorTickPx, look_.dpi);
    const int end = std::max(look_.scale.PlaceOf(db_below, length), width_px);
    Rect tick = layout.Slice(layout.labels, end - width_px, end);
    (layout.is_vertical ? tick.right : tick.bottom) = (layout.is_vertical ? tick.left : tick.top) + tick_px;
    canvas.Fill(tick, palette_.is_high_contrast ? palette_.text : palette_.shadow);
  }
}

void MeterFace::DrawLabels(HDC dc, const std::vector<ScaleLabel>& labels) const {
  const MeterLayout& layout = look_.layout;
  SetBkMode(dc, TRANSPARENT);
  const Colour ink = !look_.is_enabled ? palette_.disabled_text
                     : is_shaded_      ? Mixed(palette_.text, palette_.face, kQuietText)
                                       : palette_.text;
  SetTextColor(dc, ToCOLORREF(ink));
  const int tick_px = TickStrip(look_.dpi);
  const UINT alignment = layout.is_vertical ? DT_RIGHT | DT_VCENTER : DT_LEFT | DT_TOP;
  for (const ScaleLabel& label : labels) {
    RECT area = ToRECT(layout.Slice(layout.labels, label.start_px, label.end_px));
    (layout.is_vertical ? area.left : area.top) += tick_px;
    const std::wstring text = LabelText(look_, label.db_below);
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &area,
              alignment | DT_SINGLELINE | DT_NOPREFIX | DT_NOCLIP);
  }
}

}  // namespace tervan::ui
