// The marks beside a slider's track.
#pragma once

#include <vector>

#include "ui/controls/slider_scale.h"

namespace tervan::ui {

struct SliderTick {
  int pixel;  // along the track
  bool is_major;
};

// Round numbers of the range, and as many between them as keep this distance everywhere between two of them.
std::vector<SliderTick> TicksOf(const SliderScale& scale, int track_px, int least_gap_px);

}  // namespace tervan::ui
