// What a slider is set to, and what there is of it on the screen.
#pragma once

#include <array>

#include "ui/controls/slider_layout.h"
#include "ui/controls/slider_scale.h"
#include "ui/controls/slider_scroll.h"

namespace tervan::ui {

using ThumbPositions = std::array<int, kMaxThumbs>;

struct SliderState {
  SliderKind kind = SliderKind::kTrackbar;
  SliderScale scale = {};
  SliderLayout layout = {};
  int default_position = 50;  // always within the range
  ThumbPositions positions = {50, 50};
  int thumb_count = 1;
  // Of two thumbs: those that move together, one bit each; and how far, since nobody else moves them.
  unsigned picked_thumbs = 1;
  ScrollSteps steps = {.line = 1, .page = 0};

  bool IsPicked(int thumb) const { return (picked_thumbs >> thumb & 1) != 0; }
  int ThumbPixel(int thumb) const { return scale.PixelOf(positions[thumb], layout.track_px); }
  ThumbPositions ThumbPixels() const { return {ThumbPixel(0), ThumbPixel(1)}; }
  Rect ThumbRect(int thumb) const { return layout.ThumbAt(ThumbPixel(thumb), thumb, thumb_count); }
  // The thumb there, or -1.
  int ThumbUnder(Point p) const;

  // A new default position, and all positions within the new range.
  void SetRange(int minimum, int maximum);
  // Other picked thumbs go as far as this one, as long as the range lets them.
  void MovePicked(int thumb, int position);
};

}  // namespace tervan::ui
