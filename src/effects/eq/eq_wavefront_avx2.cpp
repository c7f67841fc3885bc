// Compiled for AVX2, unlike all other files: called only where the processor has it. What is shared with other files
// must be small enough to be inlined here, or the linker could take this copy for all.
#include <immintrin.h>

#include "effects/eq/eq_wavefront.h"

namespace tervan::eq {

struct Avx2Lanes {
  typedef double Doubles __attribute__((vector_size(32)));
  typedef std::uint64_t Integers __attribute__((vector_size(32)));
  static constexpr int kCount = 4;

  static Integers Bits(Doubles v) noexcept { return Integers(v); }
  static Doubles FromBits(Integers v) noexcept { return Doubles(v); }
  static Doubles Flipped(Doubles v, Doubles sign) noexcept { return _mm256_xor_pd(v, sign); }
  static Doubles Select(Integers condition, Doubles a, Doubles b) noexcept {
    return Doubles((Integers(a) & condition) | (Integers(b) & ~condition));
  }
  static Integers IsNotBelow(Integers magnitude, double floor) noexcept {
    return Integers(_mm256_cmp_pd(__m256d(magnitude), _mm256_set1_pd(floor), _CMP_NLT_UQ));
  }
  static int SignBits(Integers v) noexcept { return _mm256_movemask_pd(__m256d(v)); }

  static Doubles RoundedToSingle(Doubles v) noexcept { return _mm256_cvtps_pd(_mm256_cvtpd_ps(v)); }
  static Doubles Clipped(Doubles v, double low, double high) noexcept {
    return _mm256_min_pd(_mm256_max_pd(v, _mm256_set1_pd(low)), _mm256_set1_pd(high));
  }
  static Doubles Truncated(Doubles v) noexcept { return _mm256_round_pd(v, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC); }

  static Doubles Join(const __m128d (&frames)[2]) noexcept {
    return _mm256_insertf128_pd(_mm256_castpd128_pd256(frames[0]), frames[1], 1);
  }
  static void Split(Doubles v, __m128d (&frames)[2]) noexcept {
    frames[0] = _mm256_castpd256_pd128(v);
    frames[1] = _mm256_extractf128_pd(v, 1);
  }
  static Doubles Join(const __m128d (&frames)[4]) noexcept {
    return Join({_mm_unpacklo_pd(frames[0], frames[1]), _mm_unpacklo_pd(frames[2], frames[3])});
  }
  static void Split(Doubles v, __m128d (&frames)[4]) noexcept {
    frames[0] = _mm256_castpd256_pd128(v);
    frames[1] = _mm_unpackhi_pd(frames[0], frames[0]);
    frames[2] = _mm256_extractf128_pd(v, 1);
    frames[3] = _mm_unpackhi_pd(frames[2], frames[2]);
  }
};

template void RunWavefront<Avx2Lanes, Pcm8Codec, 1>(std::span<const StageRun>, std::uint8_t*, std::uint32_t) noexcept;
template void RunWavefront<Avx2Lanes, Pcm8Codec, 2>(std::span<const StageRun>, std::uint8_t*, std::uint32_t) noexcept;
template void RunWavefront<Avx2Lanes, Pcm16Codec, 1>(std::span<const StageRun>, std::int16_t*, std::uint32_t) noexcept;
template void RunWavefront<Avx2Lanes, Pcm16Codec, 2>(std::span<const StageRun>, std::int16_t*, std::uint32_t) noexcept;
template void RunWavefront<Avx2Lanes, Pcm32Codec, 1>(std::span<const StageRun>, std::int32_t*, std::uint32_t) noexcept;
template void RunWavefront<Avx2Lanes, Pcm32Codec, 2>(std::span<const StageRun>, std::int32_t*, std::uint32_t) noexcept;
template void RunWavefront<Avx2Lanes, Float32Codec, 1>(std::span<const StageRun>, float*, std::uint32_t) noexcept;
template void RunWavefront<Avx2Lanes, Float32Codec, 2>(std::span<const StageRun>, float*, std::uint32_t) noexcept;
template void RunWavefront<Avx2Lanes, Float64Codec, 1>(std::span<const StageRun>, double*, std::uint32_t) noexcept;
template void RunWavefront<Avx2Lanes, Float64Codec, 2>(std::span<const StageRun>, double*, std::uint32_t) noexcept;

}  // namespace tervan::eq
