#include "ui/controls/slider_state.h"

namespace tervan::ui {

int SliderState::ThumbUnder(Point p) const {
  for (int thumb = 0; thumb < thumb_count; ++thumb) {
    if (ThumbRect(thumb).Contains(p)) return thumb;
  }
  return -1;
}

void SliderState::SetRange(int minimum, int maximum) {
  scale.minimum = minimum;
  scale.maximum = maximum;
  default_position = scale.DefaultPosition();
  for (int& position : positions) position = scale.Clamped(position);
}

void SliderState::MovePicked(int thumb, int position) {
  const std::int64_t distance = std::int64_t{position} - positions[thumb];
  for (int other = 0; other < thumb_count; ++other) {
    if (other == thumb || IsPicked(other)) positions[other] = scale.Clamped(positions[other] + distance);
  }
}

}  // namespace tervan::ui
