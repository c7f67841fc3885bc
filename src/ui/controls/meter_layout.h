// Where the parts of a level meter lie: bars, clip indicators, labels.
#pragma once

#include <array>
#include <optional>

#include "ui/controls/meter_levels.h"
#include "ui/geometry.h"

namespace tervan::ui {

struct MeterShape {
  Size client;
  int dpi;
  bool is_vertical;  // the loud end is at the top; otherwise at the right
  int channel_count;
  bool has_clip_indicators;
  int label_strip_px;  // below or to the right of the bars, 0: no labels
};

struct MeterLayout {
  bool is_vertical;
  int channel_count;
  Rect client;
  Rect well;  // what the bars are sunk in, with its edge
  std::array<Rect, kMaxMeterChannels> bars;
  std::array<Rect, kMaxMeterChannels> clips;  // empty without clip indicators
  Rect labels;                                // empty where they do not fit

  // Of every bar, along the scale.
  int BarLength() const;
  // What of an area next to the bars lies between two places, in pixels from the quiet end of the bars.
  Rect Slice(const Rect& area, int from_px, int to_px) const;
  // The channel whose clip indicator lies there.
  std::optional<int> ClipAt(Point p) const;
};

MeterLayout ArrangeMeter(const MeterShape& shape);

// How thick a meter is that has room for bars of a good size and this label strip.
int PreferredMeterThickness(int channel_count, int label_strip_px, int dpi);

}  // namespace tervan::ui
