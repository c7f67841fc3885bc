// Two frames in registers, for the gate's fast loop.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

#include "shell/frame_codec.h"

namespace tervan::gate {

inline __m128d Magnitudes(__m128d x) noexcept { return _mm_andnot_pd(_mm_set1_pd(-0.0), x); }
inline __m128d BothUpper(__m128d a, __m128d b) noexcept { return _mm_unpackhi_pd(a, b); }

// Peaks tells the largest magnitude of each frame; a NaN counts as 0 or makes the peak NaN. Store takes gains from the
// upper halves of two registers, one for each frame.
template <typename Codec, std::size_t kChannels>
class FramePair;

template <typename Codec>
class FramePair<Codec, 1> {
 public:
  using Sample = typename Codec::Sample;

  explicit FramePair(const Sample* samples) noexcept : frames_(FrameCodec<Codec, 2>::Load(samples)) {}

  __m128d Peaks() const noexcept { return Magnitudes(frames_); }

  void Store(Sample* samples, __m128d first_gain, __m128d second_gain) const noexcept {
    FrameCodec<Codec, 2>::Store(samples, _mm_mul_pd(frames_, BothUpper(first_gain, second_gain)));
  }

 private:
  __m128d frames_;
};

template <typename Codec>
class FramePair<Codec, 2> {
 public:
  using Sample = typename Codec::Sample;

  explicit FramePair(const Sample* samples) noexcept
      : first_(FrameCodec<Codec, 2>::Load(samples)), second_(FrameCodec<Codec, 2>::Load(samples + 2)) {}

  __m128d Peaks() const noexcept {
    return _mm_max_pd(Magnitudes(BothUpper(first_, second_)), Magnitudes(_mm_unpacklo_pd(first_, second_)));
  }

  void Store(Sample* samples, __m128d first_gain, __m128d second_gain) const noexcept {
    FrameCodec<Codec, 2>::Store(samples, _mm_mul_pd(first_, BothUpper(first_gain, first_gain)));
    FrameCodec<Codec, 2>::Store(samples + 2, _mm_mul_pd(second_, BothUpper(second_gain, second_gain)));
  }

 private:
  __m128d first_;
  __m128d second_;
};

// All four samples at once and unscaled: only the peaks have to be true to scale. The gate amplifies nothing, so
// products fit 32-bit integers, and packing saturates.
template <>
class FramePair<Pcm16Codec, 2> {
 public:
  using Sample = Pcm16Codec::Sample;

  explicit FramePair(const Sample* samples) noexcept {
    const __m128i words = frame_codec::LoadBytes<8>(samples);
    const __m128i integers = _mm_srai_epi32(_mm_unpacklo_epi16(words, words), 16);
    first_ = _mm_cvtepi32_pd(integers);
    second_ = _mm_cvtepi32_pd(_mm_unpackhi_epi64(integers, integers));
  }

  __m128d Peaks() const noexcept {
    const __m128d left = Magnitudes(_mm_unpacklo_pd(first_, second_));
    const __m128d right = Magnitudes(BothUpper(first_, second_));
    return _mm_mul_pd(_mm_max_pd(right, left), _mm_set1_pd(0x1p-15));
  }

  void Store(Sample* samples, __m128d first_gain, __m128d second_gain) const noexcept {
    const __m128i first = _mm_cvttpd_epi32(_mm_mul_pd(first_, BothUpper(first_gain, first_gain)));
    const __m128i second = _mm_cvttpd_epi32(_mm_mul_pd(second_, BothUpper(second_gain, second_gain)));
    const __m128i integers = _mm_unpacklo_epi64(first, second);
    frame_codec::StoreBytes<8>(samples, _mm_packs_epi32(integers, integers));
  }

 private:
  __m128d first_;
  __m128d second_;
};

}  // namespace tervan::gate
