// The dither without error feedback: sample by sample, q = round((x + d) scale). What bounds it are the pipes; most of
// the work is the noise. AVX2 takes a quarter off it, more in mono.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <type_traits>

#include "effects/dither/dither_noise_reader.h"
#include "effects/dither/dither_plain.h"
#include "effects/dither/dither_state.h"
#include "shell/frame_codec.h"
#include "shell/sample_codec.h"
#include "support/round_to_nearest.h"

namespace tervan::dither_kernel {

// Of the frame before, channel 0 in the lower half.
struct Errors {
  __m128d a, b;
};

// Without feedback, LSB are counted in units of 2^29: then the top bit of an exponent, set from 2.0 on, tells numbers
// beyond 30 bits, infinities and those that are none.
inline constexpr double kFlatUnit = 0x1p-29;

template <typename Codec, std::size_t kChannels>
class FlatRun {
 public:
  using Plain = dither_plain::Flat;

  FlatRun(const DitherState& state, const Errors& errors) noexcept
      : errors_(errors),
        scale_(_mm_set1_pd(state.scale * kFlatUnit)),
        inverse_scale_(_mm_set1_pd(state.inverse_scale / kFlatUnit)) {}

  [[gnu::always_inline]] void Step(typename Codec::Sample* frame, __m128d noise) noexcept {
    using Frame = FrameCodec<Codec, kChannels>;
    const __m128d no_fraction = _mm_set1_pd(kNoFraction * kFlatUnit);
    const __m128d y = _mm_mul_pd(_mm_add_pd(Frame::Load(frame), noise), scale_);
    const __m128d q = _mm_sub_pd(_mm_add_pd(y, no_fraction), no_fraction);
    Frame::Store(frame, _mm_mul_pd(q, inverse_scale_));
    any_y_ = _mm_or_pd(any_y_, y);
  }

  bool IsRight() const noexcept {
    const __m128i top_exponent_bits = _mm_slli_epi64(_mm_castpd_si128(any_y_), 1);
    return _mm_movemask_pd(_mm_castsi128_pd(top_exponent_bits)) == 0;
  }
  Errors LeftErrors() const noexcept { return errors_; }

 private:
  const Errors errors_;
  const __m128d scale_, inverse_scale_;
  __m128d any_y_ = _mm_setzero_pd();
};

template <typename Codec>
struct FourSamples {
  using Sample = typename Codec::Sample;
  using Pair = FrameCodec<Codec, 2>;

  [[gnu::target("avx2"), gnu::always_inline]] static __m256d Load(const Sample* samples) noexcept {
    if constexpr (std::is_same_v<Codec, Float32Codec>) {
      return _mm256_cvtps_pd(_mm_loadu_ps(samples));
    } else {
      return _mm256_set_m128d(Pair::Load(samples + 2), Pair::Load(samples));
    }
  }
  [[gnu::target("avx2"), gnu::always_inline]] static void Store(Sample* samples, __m256d y) noexcept {
    if constexpr (std::is_same_v<Codec, Float32Codec>) {
      _mm_storeu_ps(samples, _mm256_cvtpd_ps(y));
    } else {
      Pair::Store(samples, _mm256_castpd256_pd128(y));
      Pair::Store(samples + 2, _mm256_extractf128_pd(y, 1));
    }
  }
};

// FlatRun over a whole block.
template <typename Codec, std::size_t kChannels, typename Noise>
[[gnu::target("avx2")]] bool QuantiseFlatBlockAvx2(const DitherState& state, Noise& noise,
                                                   typename Codec::Sample* samples) noexcept {
  using Four = FourSamples<Codec>;
  const __m256d scale = _mm256_set1_pd(state.scale * kFlatUnit);
  const __m256d inverse_scale = _mm256_set1_pd(state.inverse_scale / kFlatUnit);
  const __m256d no_fraction = _mm256_set1_pd(kNoFraction * kFlatUnit);
  __m256d any_y = _mm256_setzero_pd();
  auto reader = noise.Read();
  for (std::size_t i = 0; i < kBlockFrames * kChannels; i += 8) {
    const EightSamples d = reader.NextEight();
    const __m256d low = _mm256_mul_pd(_mm256_add_pd(Four::Load(samples + i), d.low), scale);
    const __m256d high = _mm256_mul_pd(_mm256_add_pd(Four::Load(samples + i + 4), d.high), scale);
    const __m256d low_q = _mm256_sub_pd(_mm256_add_pd(low, no_fraction), no_fraction);
    const __m256d high_q = _mm256_sub_pd(_mm256_add_pd(high, no_fraction), no_fraction);
    Four::Store(samples + i, _mm256_mul_pd(low_q, inverse_scale));
    Four::Store(samples + i + 4, _mm256_mul_pd(high_q, inverse_scale));
    any_y = _mm256_or_pd(any_y, _mm256_or_pd(low, high));
  }
  const __m256i top_exponent_bits = _mm256_slli_epi64(_mm256_castpd_si256(any_y), 1);
  if (_mm256_movemask_pd(_mm256_castsi256_pd(top_exponent_bits)) != 0) return false;
  noise.Pass(reader, kBlockFrames);
  return true;
}

}  // namespace tervan::dither_kernel
