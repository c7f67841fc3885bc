#include "effects/eq/eq_frequency_axis.h"

#include <algorithm>
#include <cmath>

#include "support/saturate.h"

namespace tervan {
namespace {

constexpr std::int32_t kLowest_hz = 1;

}  // namespace

EqFrequencyAxis::EqFrequencyAxis(std::int32_t x_maximum) {
  const double logs = std::log(kMaximum_hz / kMinimum_hz);
  units_per_log_ = std::max(x_maximum, 0) / logs;
  log_per_unit_ = x_maximum > 0 ? logs / x_maximum : 0.0;
}

std::int32_t EqFrequencyAxis::XOf(std::int32_t frequency_hz) const {
  const double logs = std::log(std::max(frequency_hz, kLowest_hz)) - std::log(kMinimum_hz);
  return SaturatingTruncate<std::int32_t>(std::round(logs * units_per_log_));
}

std::int32_t EqFrequencyAxis::FrequencyAt(std::int32_t x) const {
  const double frequency_hz = std::round(kMinimum_hz * std::exp(log_per_unit_ * x));
  return std::max(SaturatingTruncate<std::int32_t>(frequency_hz), kLowest_hz);
}

}  // namespace tervan
