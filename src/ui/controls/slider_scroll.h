// What sliders tell, and where it takes their thumbs.
#pragma once

#include <cstdint>

#include "ui/controls/slider_scale.h"

namespace tervan::ui {

inline constexpr int kMaxThumbs = 2;

// What WM_HSCROLL and WM_VSCROLL tell in the low word. The high word is the position, for the thumb codes only.
enum class ScrollCode : std::uint16_t {
  kLineUp = 0,
  kLineDown = 1,
  kPageUp = 2,
  kPageDown = 3,
  kThumbPosition = 4,
  kThumbTrack = 5,
  kTop = 6,
  kBottom = 7,
  kEnd = 8,
  kBegin = 9,  // of a mouse press or a wheel action
};

struct ScrollSteps {
  int line;
  int page;              // 0: a tenth of the range, at least 1
  bool is_ctrl = false;  // makes a page ten times as long
};

// The position after this code, within the range. Codes that are no steps leave it where it is.
int ScrolledTrackbar(const SliderScale& scale, int position, ScrollCode code, ScrollSteps steps, bool is_vertical);
int ScrolledFader(const SliderScale& scale, int position, ScrollCode code, ScrollSteps steps);

}  // namespace tervan::ui
