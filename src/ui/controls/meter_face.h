// What of a level meter does not change with the level: the well, bars all dark and all lit, ticks and labels.
#pragma once

#include <windows.h>

#include <string>

#include "ui/controls/meter_layout.h"
#include "ui/controls/meter_scale.h"
#include "ui/theme.h"

namespace tervan::ui {

struct MeterLook {
  MeterLayout layout;
  MeterScale scale;
  int dpi;
  bool is_inverted;
  bool is_enabled;
  bool is_focused;
  bool has_plain_bars;  // no segments
  bool has_ticks;
  bool has_unit;  // behind the loudest label
  std::wstring label_format;
};

// The room across the bars that labels need.
int LabelStripThickness(HWND meter, bool is_vertical, bool has_unit, const std::wstring& label_format,
                        std::uint32_t display_range);

// Text of a level or a label, in the user's number format.
std::wstring MeterNumber(const std::wstring& format, double db);

class MeterFace {
 public:
  MeterFace(const MeterLook& look, const Palette& palette, bool has_few_colours)
      : look_(look), palette_(palette), is_shaded_(!has_few_colours && !palette.is_high_contrast) {}

  // Everything, no bar and no clip indicator being lit.
  void DrawDark(HDC dc, Canvas& canvas) const;
  // All bars and clip indicators as they are where they are lit, over the picture without.
  void DrawLit(Canvas& canvas) const;

 private:
  enum class Light { kDark, kLit };

  Colour LevelColour(double db_below) const;
  void DrawWell(Canvas& canvas) const;
  void DrawBars(Canvas& canvas, Light light) const;
  void DrawGradient(Canvas& canvas, const Rect& bar, Light light) const;
  void ShadeBar(Canvas& canvas, const Rect& bar) const;
  void DrawSegmentGaps(Canvas& canvas, const Rect& bar, Light light) const;
  void DrawClipIndicators(Canvas& canvas, Light light) const;
  void DrawTicks(Canvas& canvas, const std::vector<ScaleLabel>& labels) const;
  void DrawLabels(HDC dc, const std::vector<ScaleLabel>& labels) const;

  const MeterLook& look_;
  const Palette& palette_;
  const bool is_shaded_;
};

}  // namespace tervan::ui
