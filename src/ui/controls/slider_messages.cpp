#include "ui/controls/slider_messages.h"

namespace tervan::ui {
namespace {

int Ask(HWND slider, UINT message) { return static_cast<int>(SendMessageW(slider, message, 0, 0)); }

SliderScale ScaleOf(HWND slider) {
  return {.minimum = Ask(slider, kSliderGetMinimum), .maximum = Ask(slider, kSliderGetMaximum)};
}

ScrollSteps StepsOf(int line_step, int page_step) {
  return {.line = line_step, .page = page_step, .is_ctrl = GetKeyState(VK_CONTROL) < 0};
}

}  // namespace

int ScrollTrackbar(UINT message, ScrollCode code, HWND trackbar, int line_step, int page_step) {
  const int position = ScrolledTrackbar(ScaleOf(trackbar), Ask(trackbar, kSliderGetPosition), code,
                                        StepsOf(line_step, page_step), message == WM_VSCROLL);
  SendMessageW(trackbar, kSliderSetPosition, TRUE, position);
  return position;
}

int ScrollFader(UINT /*message*/, ScrollCode code, HWND fader, int line_step, int page_step) {
  const int position =
      ScrolledFader(ScaleOf(fader), Ask(fader, kSliderGetPosition), code, StepsOf(line_step, page_step));
  SendMessageW(fader, kFaderSetThumb, MAKEWPARAM(1, 1), position);
  return position;
}

}  // namespace tervan::ui
