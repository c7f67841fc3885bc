#include "ui/controls/meter_scale.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>

namespace tervan::ui {
namespace {

constexpr int kLeastLitPx = 2;
constexpr double kRounding = 0.45;

double DecibelsOf(double ratio) { return 20.0 * std::log10(ratio); }

// Nothing if labels at this step overlap. The quietest one is a different matter: where only the end of the room makes
// it collide, the scale is better off without it than with half as many labels.
std::optional<std::vector<ScaleLabel>> LabelsEvery(int step_db, const MeterScale& scale, int length_px,
                                                   const LabelRoom& room, const std::function<int(int)>& extent_px) {
  std::vector<ScaleLabel> labels;
  for (int db_below = 0; db_below <= scale.SpanDb(); db_below += step_db) {
    const int extent = extent_px(db_below);
    const int centred = scale.PlaceOf(db_below, length_px) - (extent + 1) / 2;
    if (extent > room.end_px - room.start_px) break;
    const int start = std::clamp(centred, room.start_px, room.end_px - extent);
    if (!labels.empty() && start + extent + room.gap_px > labels.back().start_px) {
      if (start > centred) break;
      return std::nullopt;
    }
    labels.push_back({db_below, start, start + extent});
  }
  return labels;
}

}  // namespace

MeterScale::MeterScale(std::int32_t steps, bool is_float, std::uint32_t display_range)
    : steps_(steps), is_float_(is_float) {
  const double step = 1.0 / steps;
  span_db_ = static_cast<int>(DecibelsOf(display_range > 0 ? display_range : steps));
  bar_log_ = display_range > 0 ? span_db_ / -20.0 : std::log10(step);
  quietest_ = display_range > 0 ? std::max(step, std::pow(10.0, bar_log_)) : step;
}

double MeterScale::AmplitudeOf(std::int32_t level) const {
  const double amplitude = is_float_ ? std::bit_cast<float>(level) : static_cast<double>(level) / steps_;
  return amplitude > 0.0 ? std::min(amplitude, 1.0) : 0.0;
}

double MeterScale::DarkLength(double log_amplitude, int length_px) const {
  return bar_log_ < 0.0 ? log_amplitude * length_px / bar_log_ : 0.0;
}

int MeterScale::LitLength(std::int32_t level, int length_px) const {
  const double amplitude = AmplitudeOf(level);
  if (amplitude < quietest_ || length_px <= 0) return 0;
  const int lit = length_px - static_cast<int>(DarkLength(std::log10(amplitude), length_px) + kRounding);
  return std::clamp(lit, std::min(kLeastLitPx, length_px), length_px);
}

int MeterScale::PlaceOf(int db_below, int length_px) const {
  return length_px - static_cast<int>(DarkLength(db_below / -20.0, length_px) + kRounding);
}

std::vector<int> MeterTicks(const MeterScale& scale, int length_px, int least_distance_px) {
  const auto distance_px = [&](int step_db) { return length_px - scale.PlaceOf(step_db, length_px); };
  int step_db = kMeterTickDb;
  while (step_db <= scale.SpanDb() && distance_px(step_db) < least_distance_px) step_db *= 2;
  std::vector<int> ticks;
  for (int db_below = 0; db_below <= scale.SpanDb(); db_below += step_db) ticks.push_back(db_below);
  return ticks;
}

std::vector<ScaleLabel> ChooseLabels(const MeterScale& scale, int length_px, const LabelRoom& room,
                                     const std::function<int(int)>& extent_px) {
  for (int step_db = kMeterTickDb;; step_db *= 2) {
    if (const auto labels = LabelsEvery(step_db, scale, length_px, room, extent_px)) return *labels;
  }
}

}  // namespace tervan::ui
