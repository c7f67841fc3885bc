#include "effects/eq/eq_wavefront.h"

namespace tervan::eq {

struct Sse2Lanes {
  typedef double Doubles __attribute__((vector_size(16)));
  typedef std::uint64_t Integers __attribute__((vector_size(16)));
  static constexpr int kCount = 2;

  static Integers Bits(Doubles v) noexcept { return Integers(v); }
  static Doubles FromBits(Integers v) noexcept { return Doubles(v); }
  static Doubles Flipped(Doubles v, Doubles sign) noexcept { return _mm_xor_pd(v, sign); }
  static Doubles Select(Integers condition, Doubles a, Doubles b) noexcept {
    return Doubles((Integers(a) & condition) | (Integers(b) & ~condition));
  }
  static Integers IsNotBelow(Integers magnitude, double floor) noexcept {
    return Integers(_mm_cmpnlt_pd(__m128d(magnitude), _mm_set1_pd(floor)));
  }
  static int SignBits(Integers v) noexcept { return _mm_movemask_pd(__m128d(v)); }

  static Doubles RoundedToSingle(Doubles v) noexcept { return _mm_cvtps_pd(_mm_cvtpd_ps(v)); }
  static Doubles Clipped(Doubles v, double low, double high) noexcept {
    return _mm_min_pd(_mm_max_pd(v, _mm_set1_pd(low)), _mm_set1_pd(high));
  }
  static Doubles Truncated(Doubles v) noexcept { return _mm_cvtepi32_pd(_mm_cvttpd_epi32(v)); }

  static Doubles Join(const __m128d (&frames)[1]) noexcept { return frames[0]; }
  static void Split(Doubles v, __m128d (&frames)[1]) noexcept { frames[0] = v; }
  static Doubles Join(const __m128d (&frames)[2]) noexcept { return _mm_unpacklo_pd(frames[0], frames[1]); }
  static void Split(Doubles v, __m128d (&frames)[2]) noexcept {
    frames[0] = v;
    frames[1] = _mm_unpackhi_pd(v, v);
  }
};

template void RunWavefront<Sse2Lanes, Pcm8Codec, 1>(std::span<const StageRun>, std::uint8_t*, std::uint32_t) noexcept;
template void RunWavefront<Sse2Lanes, Pcm8Codec, 2>(std::span<const StageRun>, std::uint8_t*, std::uint32_t) noexcept;
template void RunWavefront<Sse2Lanes, Pcm16Codec, 1>(std::span<const StageRun>, std::int16_t*, std::uint32_t) noexcept;
template void RunWavefront<Sse2Lanes, Pcm16Codec, 2>(std::span<const StageRun>, std::int16_t*, std::uint32_t) noexcept;
template void RunWavefront<Sse2Lanes, Pcm32Codec, 1>(std::span<const StageRun>, std::int32_t*, std::uint32_t) noexcept;
template void RunWavefront<Sse2Lanes, Pcm32Codec, 2>(std::span<const StageRun>, std::int32_t*, std::uint32_t) noexcept;
template void RunWavefront<Sse2Lanes, Float32Codec, 1>(std::span<const StageRun>, float*, std::uint32_t) noexcept;
template void RunWavefront<Sse2Lanes, Float32Codec, 2>(std::span<const StageRun>, float*, std::uint32_t) noexcept;
template void RunWavefront<Sse2Lanes, Float64Codec, 1>(std::span<const StageRun>, double*, std::uint32_t) noexcept;
template void RunWavefront<Sse2Lanes, Float64Codec, 2>(std::span<const StageRun>, double*, std::uint32_t) noexcept;

}  // namespace tervan::eq
