#include "host/level_meter.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

#include "host/sample_view.h"

namespace tervan::host {

namespace {

struct BlockLevels {
  double peak = 0.0;  // linear
  double square_sum = 0.0;
};

// Of samples that are all finite; otherwise the sum is not. As many sums as the compiler turns into vectors that do not
// wait for each other.
template <class Sample>
BlockLevels FiniteLevels(const Sample* samples, size_t count) {
  constexpr size_t kLanes = 16;
  double peaks[kLanes] = {}, square_sums[kLanes] = {};
  const auto add = [&](size_t lane, double sample) {
    const double magnitude = std::fabs(sample);
    peaks[lane] = peaks[lane] < magnitude ? magnitude : peaks[lane];
    square_sums[lane] += magnitude * magnitude;
  };
  const size_t whole = count - count % kLanes;
  for (size_t i = 0; i < whole; i += kLanes) {
    for (size_t lane = 0; lane < kLanes; ++lane) add(lane, Normalised(samples[i + lane]));
  }
  for (size_t i = whole; i < count; ++i) add(i - whole, Normalised(samples[i]));
  return {*std::ranges::max_element(peaks), std::accumulate(std::begin(square_sums), std::end(square_sums), 0.0)};
}

template <class Sample>
BlockLevels LevelsWithoutInfinite(const Sample* samples, size_t count) {
  BlockLevels levels;
  for (size_t i = 0; i < count; ++i) {
    const double magnitude = std::fabs(Normalised(samples[i]));
    if (!std::isfinite(magnitude)) continue;
    levels.peak = std::max(levels.peak, magnitude);
    levels.square_sum += magnitude * magnitude;
  }
  return levels;
}

}  // namespace

void LevelMeter::Add(SampleType type, const void* data, size_t samples) {
  samples_ += samples;
  VisitSampleType(type, [&](auto sample_type) {
    const auto* typed = static_cast<const decltype(sample_type)*>(data);
    BlockLevels levels = FiniteLevels(typed, samples);
    if (!std::isfinite(levels.square_sum)) levels = LevelsWithoutInfinite(typed, samples);
    peak_ = std::max(peak_, levels.peak);
    square_sum_ += levels.square_sum;
  });
}

double LevelMeter::PeakDb() const { return ToDecibels(peak_); }

double LevelMeter::RmsDb() const {
  return ToDecibels(samples_ == 0 ? 0.0 : std::sqrt(square_sum_ / static_cast<double>(samples_)));
}

double ToDecibels(double gain) { return 20.0 * std::log10(gain); }

}  // namespace tervan::host
