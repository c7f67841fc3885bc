// What the compressor and the gate share per frame: the level of a frame with valley fill, and the gain's low-pass.
// Always inlined: a call per frame costs as much as the arithmetic.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <type_traits>

#include "support/state_floor.h"

namespace tervan::dynamics {

// First-order bilinear filters designed at 44100 Hz and used as they are at every rate.
inline constexpr double kLowPassA = 0.014048380811045;  // low-pass, 200 Hz
inline constexpr double kLowPassB = 0.97190323837791;
inline constexpr double kLowPassStart = 0.5;  // its steady state for a gain of 1

// High-pass of the rectified signal: v = feedback v' + in p.
struct ValleyFilter {
  double in;
  double feedback;
};

// Larger levels, infinities and NaNs count as 0, so that neither a state nor what is computed from it can leave the
// range.
template <typename Sample>
inline constexpr double kLevelLimit = std::is_same_v<Sample, float> ? 1e37 : 1e300;

// Converts a frame, full scale 1.0, and tells the largest magnitude of its channels.
template <typename Codec, std::size_t kChannels>
[[gnu::always_inline]] inline double DecodeFrame(const typename Codec::Sample* samples,
                                                 double (&x)[kChannels]) noexcept {
  using Sample = typename Codec::Sample;
  double peak = 0.0;
  for (std::size_t channel = 0; channel < kChannels; ++channel) {
    x[channel] = Codec::Decode(samples[channel]);
    peak = std::max(peak, std::fabs(x[channel]));
  }
  if constexpr (std::is_floating_point_v<Sample>) return peak <= kLevelLimit<Sample> ? peak : 0.0;
  return peak;
}

// Level of a frame with this peak. While the rectified signal drops below its recent average, the filter's recovery is
// added: that fills the valleys between the peaks of a waveform.
[[gnu::always_inline]] inline double FilledLevel(ValleyFilter filter, double peak, double& valley) noexcept {
  const double before = Flushed(valley);
  valley = filter.feedback * before + filter.in * peak;
  const double rise = valley - before;
  return rise > 0.0 ? peak + rise : peak;
}

[[gnu::always_inline]] inline double LowPassed(double gain, double& low_pass) noexcept {
  const double before = Flushed(low_pass);
  low_pass = kLowPassA * gain + kLowPassB * before;
  return low_pass + before;
}

}  // namespace tervan::dynamics
