#include "ui/controls/slider_ticks.h"

namespace tervan::ui {
namespace {

// A power of ten, with three to thirty of them in the range.
std::int64_t MajorStep(std::int64_t range) {
  std::int64_t step = 1;
  while (step * 10 <= range / 3) step *= 10;
  return step;
}

// The marks between two round numbers, both left out; none when they would be too narrow anywhere.
std::vector<int> PixelsBetween(const SliderScale& scale, int track_px, int least_gap_px, std::int64_t low,
                               std::int64_t high, int parts) {
  std::vector<int> pixels;
  int previous_px = scale.PixelOf(scale.Clamped(low), track_px);
  for (int part = 1; part <= parts; ++part) {
    const int pixel = scale.PixelOf(scale.Clamped(low + (high - low) * part / parts), track_px);
    if (pixel - previous_px < least_gap_px) return {};
    if (part < parts) pixels.push_back(pixel);
    previous_px = pixel;
  }
  return pixels;
}

}  // namespace

std::vector<SliderTick> TicksOf(const SliderScale& scale, int track_px, int least_gap_px) {
  const std::int64_t range = std::int64_t{scale.maximum} - scale.minimum;
  std::vector<SliderTick> ticks;
  if (range <= 0 || track_px <= 0) return ticks;
  const std::int64_t step = MajorStep(range);
  const std::int64_t first = scale.minimum / step * step;  // truncated: perhaps below the minimum
  for (std::int64_t number = first; number <= scale.maximum; number += step) {
    if (number < scale.minimum) continue;
    const int pixel = scale.PixelOf(static_cast<int>(number), track_px);
    if (ticks.empty() || pixel - ticks.back().pixel >= least_gap_px) ticks.push_back({pixel, true});
    if (number + step > scale.maximum) break;
    for (const int parts : {10, 5, 2}) {
      if (step % parts != 0) continue;
      const std::vector<int> between = PixelsBetween(scale, track_px, least_gap_px, number, number + step, parts);
      for (const int minor : between) ticks.push_back({minor, false});
      if (!between.empty()) break;
    }
  }
  return ticks;
}

}  // namespace tervan::ui
