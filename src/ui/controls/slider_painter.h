// How trackbars and faders look.
#pragma once

#include "ui/canvas.h"
#include "ui/controls/slider_state.h"
#include "ui/theme.h"

namespace tervan::ui {

struct SliderLook {
  Palette palette;
  Colour background;
  int dpi = 96;
  bool is_enabled = true;
  bool is_focused = false;
  int pressed_thumb = -1;
  int hot_thumb = -1;  // under the cursor
  bool is_plain = false;
  bool has_ticks = false;
};

void PaintSlider(Canvas& canvas, const SliderState& slider, const SliderLook& look);

// Where the caret blinks on this thumb: its index line.
Rect IndexLine(const SliderState& slider, int thumb, int dpi);

}  // namespace tervan::ui
