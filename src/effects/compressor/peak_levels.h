// The peaks that the meters show of a chunk. A sweep of its own: beside the recurrences it would cost more.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "effects/compressor/compressor_plain.h"
#include "shell/frame_codec.h"

namespace tervan::compressor {

// Of channels 0 and 1; of mono only the first has a meaning.
using PeakLevels = std::array<double, 2>;

// Four floats at a time, as many as there are whole fours.
inline __m128 FloatPeaks(const float* samples, std::size_t count) noexcept {
  const __m128 limit = _mm_set1_ps(static_cast<float>(dynamics::kLevelLimit<float>));
  __m128 peaks = _mm_setzero_ps();
  for (std::size_t i = 0; i + 4 <= count; i += 4) {
    const __m128 magnitudes = _mm_andnot_ps(_mm_set1_ps(-0.0f), _mm_loadu_ps(samples + i));
    peaks = _mm_max_ps(peaks, _mm_and_ps(magnitudes, _mm_cmple_ps(magnitudes, limit)));
  }
  return peaks;
}

// The largest MeterLevel of each channel.
template <typename Codec, std::size_t kChannels>
PeakLevels PeakLevelsOf(const typename Codec::Sample* samples, std::uint32_t frames) noexcept {
  using Sample = typename Codec::Sample;
  __m128d peaks = _mm_setzero_pd();
  std::size_t done = 0;
  if constexpr (std::is_same_v<Sample, float>) {
    done = frames - frames % 4;
    const __m128 four = FloatPeaks(samples, done * kChannels);
    const __m128 two = _mm_max_ps(four, _mm_movehl_ps(four, four));
    peaks = _mm_cvtps_pd(kChannels == 1 ? _mm_max_ps(two, _mm_shuffle_ps(two, two, 1)) : two);
  }
  for (; done < frames; ++done) {
    __m128d level = _mm_andnot_pd(_mm_set1_pd(-0.0), FrameCodec<Codec, kChannels>::Load(samples + done * kChannels));
    if constexpr (std::is_floating_point_v<Sample>) {
      level = _mm_and_pd(level, _mm_cmple_pd(level, _mm_set1_pd(dynamics::kLevelLimit<Sample>)));
    }
    peaks = _mm_max_pd(peaks, level);
  }
  if constexpr (std::is_same_v<Sample, std::int16_t>) peaks = _mm_min_pd(peaks, _mm_set1_pd(kHighestLevel16));
  PeakLevels levels;
  _mm_storeu_pd(levels.data(), peaks);
  return levels;
}

}  // namespace tervan::compressor
