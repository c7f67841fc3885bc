// The decibel scale of a level meter: how far a level reaches, where ticks and labels stand.
//
// Places are pixels from the quiet end of a bar. An integer level v of N steps is the amplitude v / N, so that both
// kinds of level share one scale; the loudest integer, N - 1, lies one step below full scale.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace tervan::ui {

class MeterScale {
 public:
  // steps >= 1. The display range is the ratio of full scale to the quietest amplitude that is shown; 0: one step.
  MeterScale(std::int32_t steps, bool is_float, std::uint32_t display_range);

  // The whole decibels below full scale that the scale covers; 0 when it has but one step or a display range of 1.
  int SpanDb() const { return span_db_; }

  // Of a level, in [0, 1]: what is no number is 0.
  double AmplitudeOf(std::int32_t level) const;

  // The lit length of a bar: nothing below a step or below the scale, at least 2 pixels otherwise. With a display
  // range the bar ends where the scale ends; without one it ends at exactly one step, a fraction of a decibel further.
  // A scale without a span knows full scale and nothing else.
  int LitLength(std::int32_t level, int length_px) const;

  // As far as a level of so many decibels below full scale lights.
  int PlaceOf(int db_below, int length_px) const;

 private:
  double DarkLength(double log_amplitude, int length_px) const;

  std::int32_t steps_;
  bool is_float_;
  int span_db_;
  double bar_log_;   // decadic logarithm of the amplitude at the quiet end of a bar, <= 0
  double quietest_;  // the smallest amplitude that lights something
};

// Ticks stand at each of these.
inline constexpr int kMeterTickDb = 3;

// The ticks to draw, in decibels below full scale, from 0 on: all of them, or every so many where they would merge.
std::vector<int> MeterTicks(const MeterScale& scale, int length_px, int least_distance_px);

struct ScaleLabel {
  int db_below;
  int start_px;  // from the quiet end of the bar, like end_px; may be negative
  int end_px;
  bool operator==(const ScaleLabel&) const = default;
};

// The room of labels along the bar, and how far apart they must stay.
struct LabelRoom {
  int start_px;
  int end_px;
  int gap_px;
};

// Labels at the smallest step, 3 dB times a power of 2, at which none overlaps another, the loudest one first. Each is
// centred on its tick, or moved into the room where it would stick out; one that is moved at the quiet end is left out
// rather than to make room for it. extent_px: of the label so many decibels below.
std::vector<ScaleLabel> ChooseLabels(const MeterScale& scale, int length_px, const LabelRoom& room,
                                     const std::function<int(int db_below)>& extent_px);

}  // namespace tervan::ui
