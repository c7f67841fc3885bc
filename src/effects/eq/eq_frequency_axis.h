// The frequency axis of the EQ page's graph: logarithmic, from 20 Hz at the left edge to 20 kHz at the right one.
#pragma once

#include <cstdint>

namespace tervan {

class EqFrequencyAxis {
 public:
  static constexpr double kMinimum_hz = 20.0;
  static constexpr double kMaximum_hz = 20000.0;

  // Curve units from edge to edge. On an axis without any, all frequencies are 20 Hz at 0.
  explicit EqFrequencyAxis(std::int32_t x_maximum);

  // Rounded half away from zero, both ways. Frequencies beyond the edges lie beyond them here, too, 1 Hz at least.
  std::int32_t XOf(std::int32_t frequency_hz) const;
  std::int32_t FrequencyAt(std::int32_t x) const;

 private:
  double units_per_log_;  // curve units for a factor of e
  double log_per_unit_;
};

}  // namespace tervan
