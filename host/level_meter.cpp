#include "host/level_meter.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/sample_view.h"

namespace tervan::host {

void LevelMeter::Add(SampleType type, const void* data, size_t samples) {
  samples_ += samples;
  VisitSampleType(type, [&](auto sample_type) {
    const auto* typed = static_cast<const decltype(sample_type)*>(data);
    double peak = peak_;
    double square_sum = 0.0;
    for (size_t i = 0; i < samples; ++i) {
      const double sample = std::fabs(Normalised(typed[i]));
      // The comparison is false for NaN as well.
      const double magnitude = sample <= std::numeric_limits<double>::max() ? sample : 0.0;
      peak = std::max(peak, magnitude);
      square_sum += magnitude * magnitude;
    }
    peak_ = peak;
    square_sum_ += square_sum;
  });
}

double LevelMeter::PeakDb() const { return ToDecibels(peak_); }

double LevelMeter::RmsDb() const {
  return ToDecibels(samples_ == 0 ? 0.0 : std::sqrt(square_sum_ / static_cast<double>(samples_)));
}

double ToDecibels(double gain) { return 20.0 * std::log10(gain); }

}  // namespace tervan::host
