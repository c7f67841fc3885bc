// A whole frame at a time to 64-bit floats in one register and back, for the fast routines: channel 0 in the lower
// half, channel 1 in the upper, which is 0 for mono. Numbers come out bit for bit as from the codecs; a NaN in front of
// an integer format is for the caller to keep away.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "shell/sample_codec.h"

namespace tervan {

namespace frame_codec {

// 32-bit integers to what Decode makes of them, and truncated back. A conversion that leaves the range of 32 bits gives
// the smallest integer, so that only the upper end has to be watched.
inline __m128d FromIntegers(__m128i integers, double lsb) noexcept {
  return _mm_mul_pd(_mm_cvtepi32_pd(integers), _mm_set1_pd(lsb));
}
inline __m128i ToIntegers(__m128d y, double scale, double highest) noexcept {
  return _mm_cvttpd_epi32(_mm_min_pd(_mm_mul_pd(y, _mm_set1_pd(scale)), _mm_set1_pd(highest)));
}

// The samples of a frame as the lowest bytes of a register, the rest 0.
template <std::size_t kBytes>
inline __m128i LoadBytes(const void* samples) noexcept {
  if constexpr (kBytes == 8) {
    return _mm_loadl_epi64(static_cast<const __m128i*>(samples));
  } else {
    std::uint32_t bytes = 0;
    std::memcpy(&bytes, samples, kBytes);
    return _mm_cvtsi32_si128(static_cast<std::int32_t>(bytes));
  }
}
template <std::size_t kBytes>
inline void StoreBytes(void* samples, __m128i frame) noexcept {
  if constexpr (kBytes == 8) {
    _mm_storel_epi64(static_cast<__m128i*>(samples), frame);
  } else {
    const std::int32_t bytes = _mm_cvtsi128_si32(frame);
    std::memcpy(samples, &bytes, kBytes);
  }
}

}  // namespace frame_codec

template <typename Codec, std::size_t kChannels>
struct FrameCodec;

template <std::size_t kChannels>
struct FrameCodec<Pcm8Codec, kChannels> {
  static __m128d Load(const std::uint8_t* samples) noexcept {
    const __m128i bytes = _mm_xor_si128(frame_codec::LoadBytes<kChannels>(samples), Zero());
    const __m128i words = _mm_unpacklo_epi8(bytes, bytes);
    return frame_codec::FromIntegers(_mm_srai_epi32(_mm_unpacklo_epi16(words, words), 24), 0x1p-7);
  }
  static void Store(std::uint8_t* samples, __m128d y) noexcept {
    const __m128i words = _mm_packs_epi32(frame_codec::ToIntegers(y, 0x1p7, 127.0), _mm_setzero_si128());
    frame_codec::StoreBytes<kChannels>(samples, _mm_xor_si128(_mm_packs_epi16(words, words), Zero()));
  }

 private:
  static __m128i Zero() noexcept { return _mm_cvtsi32_si128(kChannels == 1 ? 0x80 : 0x8080); }
};

template <std::size_t kChannels>
struct FrameCodec<Pcm16Codec, kChannels> {
  static __m128d Load(const std::int16_t* samples) noexcept {
    const __m128i words = frame_codec::LoadBytes<2 * kChannels>(samples);
    return frame_codec::FromIntegers(_mm_srai_epi32(_mm_unpacklo_epi16(words, words), 16), 0x1p-15);
  }
  static void Store(std::int16_t* samples, __m128d y) noexcept {
    const __m128i integers = frame_codec::ToIntegers(y, 0x1p15, 32767.0);
    frame_codec::StoreBytes<2 * kChannels>(samples, _mm_packs_epi32(integers, integers));
  }
};

template <std::size_t kChannels>
struct FrameCodec<Pcm32Codec, kChannels> {
  static __m128d Load(const std::int32_t* samples) noexcept {
    return frame_codec::FromIntegers(frame_codec::LoadBytes<4 * kChannels>(samples), 0x1p-31);
  }
  static void Store(std::int32_t* samples, __m128d y) noexcept {
    frame_codec::StoreBytes<4 * kChannels>(samples, frame_codec::ToIntegers(y, 0x1p31, 2147483647.0));
  }
};

template <std::size_t kChannels>
struct FrameCodec<Float32Codec, kChannels> {
  static __m128d Load(const float* samples) noexcept {
    return _mm_cvtps_pd(_mm_castsi128_ps(frame_codec::LoadBytes<4 * kChannels>(samples)));
  }
  static void Store(float* samples, __m128d y) noexcept {
    frame_codec::StoreBytes<4 * kChannels>(samples, _mm_castps_si128(_mm_cvtpd_ps(y)));
  }
};

template <std::size_t kChannels>
struct FrameCodec<Float64Codec, kChannels> {
  static __m128d Load(const double* samples) noexcept {
    return kChannels == 1 ? _mm_load_sd(samples) : _mm_loadu_pd(samples);
  }
  static void Store(double* samples, __m128d y) noexcept {
    if constexpr (kChannels == 1) {
      _mm_store_sd(samples, y);
    } else {
      _mm_storeu_pd(samples, y);
    }
  }
};

}  // namespace tervan
