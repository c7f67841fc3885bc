#include "ui/controls/slider_scroll.h"

#include <algorithm>

namespace tervan::ui {
namespace {

constexpr int kLongPageFactor = 10;

std::int64_t PageOf(const SliderScale& scale, ScrollSteps steps) {
  std::int64_t page = steps.page;
  if (page == 0) page = std::max<std::int64_t>((std::int64_t{scale.maximum} - scale.minimum + 5) / 10, 1);
  return steps.is_ctrl ? page * kLongPageFactor : page;
}

// Where "up" raises the position. `top` is what kTop leads to.
int Scrolled(const SliderScale& scale, int position, ScrollCode code, ScrollSteps steps, int top) {
  switch (code) {
    case ScrollCode::kLineUp: return scale.Clamped(std::int64_t{position} + steps.line);
    case ScrollCode::kLineDown: return scale.Clamped(std::int64_t{position} - steps.line);
    case ScrollCode::kPageUp: return scale.Clamped(position + PageOf(scale, steps));
    case ScrollCode::kPageDown: return scale.Clamped(position - PageOf(scale, steps));
    case ScrollCode::kTop: return scale.Clamped(top);
    case ScrollCode::kBottom: return scale.Clamped(scale.minimum);
    default: return scale.Clamped(position);
  }
}

// Left, where the minimum is, counts as up.
ScrollCode Reversed(ScrollCode code) {
  switch (code) {
    case ScrollCode::kLineUp: return ScrollCode::kLineDown;
    case ScrollCode::kLineDown: return ScrollCode::kLineUp;
    case ScrollCode::kPageUp: return ScrollCode::kPageDown;
    case ScrollCode::kPageDown: return ScrollCode::kPageUp;
    case ScrollCode::kTop: return ScrollCode::kBottom;
    case ScrollCode::kBottom: return ScrollCode::kTop;
    default: return code;
  }
}

}  // namespace

int ScrolledTrackbar(const SliderScale& scale, int position, ScrollCode code, ScrollSteps steps, bool is_vertical) {
  return Scrolled(scale, position, is_vertical ? code : Reversed(code), steps, scale.maximum);
}

int ScrolledFader(const SliderScale& scale, int position, ScrollCode code, ScrollSteps steps) {
  const bool includes_zero = scale.minimum < 0 && scale.maximum >= 1;
  return Scrolled(scale, position, code, steps, steps.is_ctrl || !includes_zero ? scale.maximum : 0);
}

}  // namespace tervan::ui
