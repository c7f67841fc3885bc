// The peaks that the meters show of a chunk. A sweep of its own: beside the recurrences it would cost more.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "effects/compressor/compressor_plain.h"

namespace tervan::compressor {

// Of channels 0 and 1; of mono only the first has a meaning.
using PeakLevels = std::array<double, 2>;

template <typename Sample>
using Lanes [[gnu::vector_size(16)]] = Sample;

// The largest levels of samples taken 16 bytes at a time, lane by lane. Of integers it keeps the lowest and the
// highest, one of which has the largest level; of floats the largest magnitude that counts.
template <typename Codec>
class LanePeaks {
 public:
  using Sample = typename Codec::Sample;
  static constexpr std::size_t kLanes = sizeof(Lanes<Sample>) / sizeof(Sample);

  [[gnu::always_inline]] void Add(const Sample* samples) noexcept {
    Lanes<Sample> x;
    std::memcpy(&x, samples, sizeof x);
    if constexpr (std::is_same_v<Sample, float>) {
      const __m128 magnitude = _mm_andnot_ps(_mm_set1_ps(-0.0f), x);
      const __m128 limit = _mm_set1_ps(static_cast<float>(dynamics::kLevelLimit<float>));
      high_ = _mm_max_ps(high_, _mm_and_ps(magnitude, _mm_cmple_ps(magnitude, limit)));
    } else if constexpr (std::is_same_v<Sample, double>) {
      const __m128d magnitude = _mm_andnot_pd(_mm_set1_pd(-0.0), x);
      const __m128d limit = _mm_set1_pd(dynamics::kLevelLimit<double>);
      high_ = _mm_max_pd(high_, _mm_and_pd(magnitude, _mm_cmple_pd(magnitude, limit)));
    } else {
      low_ = x < low_ ? x : low_;
      high_ = x > high_ ? x : high_;
    }
  }

  double Level(std::size_t lane) const noexcept {
    return std::max(MeterLevel<Codec>(low_[lane]), MeterLevel<Codec>(high_[lane]));
  }

 private:
  Lanes<Sample> low_ = Lanes<Sample>{} + Codec::Encode(0.0);
  Lanes<Sample> high_ = low_;
};

// The largest MeterLevel of each channel.
template <typename Codec, std::size_t kChannels>
PeakLevels PeakLevelsOf(const typename Codec::Sample* samples, std::uint32_t frames) noexcept {
  constexpr std::size_t kLanes = LanePeaks<Codec>::kLanes;
  LanePeaks<Codec> first;  // two, or each would wait for its last comparison
  LanePeaks<Codec> second;
  const std::size_t count = std::size_t{frames} * kChannels;
  std::size_t at = 0;
  for (; count - at >= 2 * kLanes; at += 2 * kLanes) {
    first.Add(samples + at);
    second.Add(samples + at + kLanes);
  }
  PeakLevels levels{};
  const auto count_in = [&levels](std::size_t i, double level) {
    levels[i % kChannels] = std::max(levels[i % kChannels], level);
  };
  for (std::size_t lane = 0; lane < kLanes; ++lane) count_in(lane, std::max(first.Level(lane), second.Level(lane)));
  for (; at < count; ++at) count_in(at, MeterLevel<Codec>(samples[at]));
  return levels;
}

}  // namespace tervan::compressor
