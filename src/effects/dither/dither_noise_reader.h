// The noise of a call, two frames at a time: channel 0 in the lower half of a register, channel 1, or 0 for mono, in
// the upper.
//
// Where all words of channel 0 are drawn before those of channel 1, two sequences run side by side, the second from
// where the first one ends: drawing alone is quick. Words are taken as integers, so that one factor is left; it is a
// power of two, and no bit depends on where it comes in.
//
// Both classes of noise are used alike. A block of frames is prepared; it is read, and read again from its start where
// a guess went wrong; then it is passed, by what its reader has become. At the end of the call the noise is finished.
// Blocks are of an even length, but the last one may be of a single frame.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "effects/dither/dither_noise.h"
#include "effects/dither/dither_state.h"
#include "effects/dither/r250_sequence.h"

namespace tervan::dither_kernel {

inline constexpr std::size_t kBlockFrames = 32;

enum class DrawOrder { kMono, kFrameByFrame, kChannelByChannel };
constexpr std::size_t SequencesOf(DrawOrder order) { return order == DrawOrder::kChannelByChannel ? 2 : 1; }
constexpr std::size_t ChannelsOf(DrawOrder order) { return order == DrawOrder::kMono ? 1 : 2; }

struct TwoFrames {
  __m128d first, second;
};

struct EightSamples {
  __m256d low, high;
};

// Types whose noise takes kWords words for each sample, each word a signed integer u.
//
//   1: (u - c h) f, where h is the u before, and c is 0 for the rectangular ones
//   2: (u1 + u2) f
template <DrawOrder kOrder, std::size_t kWords>
class DrawnNoise {
 public:
  static constexpr bool kReadsEight = kWords == 2;

  class Reader {
   public:
    [[gnu::always_inline]] TwoFrames Next() noexcept {
      const TwoFrames u = Uniform();
      if constexpr (kWords == 2) return {_mm_mul_pd(u.first, factor_), _mm_mul_pd(u.second, factor_)};
      const __m128d first = LessHistory(u.first, HistoryOf(u.first, before_));
      const __m128d second = LessHistory(u.second, HistoryOf(u.second, u.first));
      before_ = u.second;
      return {first, second};
    }

    // Of samples as they lie in memory.
    [[gnu::target("avx2"), gnu::always_inline]] EightSamples NextEight() noexcept {
      const __m256i a = first_.DrawEight();
      const __m256i b = kSequences == 1 ? first_.DrawEight() : second_.DrawEight();
      if constexpr (kSequences == 1) return {Sums(a), Sums(b)};
      const __m256d even = Sums(_mm256_unpacklo_epi64(a, b));  // frames 0 and 2
      const __m256d odd = Sums(_mm256_unpackhi_epi64(a, b));
      return {_mm256_permute2f128_pd(even, odd, 0x20), _mm256_permute2f128_pd(even, odd, 0x31)};
    }

   private:
    friend DrawnNoise;
    explicit Reader(DrawnNoise& noise) noexcept
        : factor_(noise.factor_),
          coefficient_(noise.coefficient_),
          before_(noise.before_),
          first_(noise.sequences_[0].Read()),
          second_(noise.sequences_[kSequences - 1].Read()) {}

    // u, or u1 + u2.
    TwoFrames Uniform() noexcept {
      if constexpr (kOrder == DrawOrder::kMono) {
        const __m128d both = kWords == 1 ? Low(first_.DrawTwo()) : Sums(first_.DrawFour());
        const __m128d zero = _mm_setzero_pd();
        return {_mm_move_sd(zero, both), _mm_unpackhi_pd(both, zero)};
      } else if constexpr (kWords == 1) {
        const __m128i words =
            kSequences == 1 ? first_.DrawFour() : _mm_unpacklo_epi32(first_.DrawTwo(), second_.DrawTwo());
        return {Low(words), Low(_mm_unpackhi_epi64(words, words))};
      } else if constexpr (kSequences == 1) {
        const __m128d frame = Sums(first_.DrawFour());
        return {frame, Sums(first_.DrawFour())};
      } else {
        const __m128i left = first_.DrawFour();
        const __m128i right = second_.DrawFour();
        return {Sums(_mm_unpacklo_epi64(left, right)), Sums(_mm_unpackhi_epi64(left, right))};
      }
    }

    static __m128d Low(__m128i words) noexcept { return _mm_cvtepi32_pd(words); }

    // Of both words of each half, by 64-bit integers: conversions would crowd the adders. 2^31 more makes words
    // unsigned, 2^52 more makes the bits of an integer those of a float.
    static __m128d Sums(__m128i words) noexcept {
      const __m128i biased = _mm_xor_si128(words, _mm_set1_epi32(INT32_MIN));
      const __m128i even = _mm_and_si128(biased, _mm_set1_epi64x(0xFFFFFFFF));
      const __m128i sums = _mm_add_epi64(even, _mm_srli_epi64(biased, 32));
      const __m128i floats = _mm_or_si128(sums, _mm_castpd_si128(_mm_set1_pd(0x1p52)));
      return _mm_sub_pd(_mm_castsi128_pd(floats), _mm_set1_pd(0x1p52 + 0x1p32));
    }

    [[gnu::target("avx2"), gnu::always_inline]] __m256d Sums(__m256i words) const noexcept {
      const __m256i biased = _mm256_xor_si256(words, _mm256_set1_epi32(INT32_MIN));
      const __m256i even = _mm256_and_si256(biased, _mm256_set1_epi64x(0xFFFFFFFF));
      const __m256i sums = _mm256_add_epi64(even, _mm256_srli_epi64(biased, 32));
      const __m256i floats = _mm256_or_si256(sums, _mm256_castpd_si256(_mm256_set1_pd(0x1p52)));
      const __m256d d = _mm256_sub_pd(_mm256_castsi256_pd(floats), _mm256_set1_pd(0x1p52 + 0x1p32));
      return _mm256_mul_pd(d, _mm256_broadcastsd_pd(factor_));
    }

    static __m128d HistoryOf(__m128d u, __m128d u_before) noexcept {
      return kOrder == DrawOrder::kFrameByFrame ? _mm_shuffle_pd(u_before, u, 1) : u_before;
    }
    __m128d LessHistory(__m128d u, __m128d history) const noexcept {
      return _mm_mul_pd(_mm_sub_pd(u, _mm_mul_pd(coefficient_, history)), factor_);
    }

    const __m128d factor_, coefficient_;
    __m128d before_;
    R250Sequence::Reader first_, second_;
  };

  [[gnu::noinline]] DrawnNoise(const DitherState& state, std::uint32_t frames) noexcept
      : state_(state),
        factor_(_mm_set1_pd(state.amplitude * (kWords == 2 || IsHighpass() ? 0x1p-32 : 0x1p-31))),
        coefficient_(_mm_set1_pd(IsHighpass() ? kHighpassCoefficient : 0.0)),
        before_(_mm_set_sd(state.highpass_history * 0x1p31)) {
    sequences_[0].Start(state.generator);
    if constexpr (kOrder == DrawOrder::kFrameByFrame) before_ = _mm_unpacklo_pd(before_, before_);
    if constexpr (kSequences == 2) {
      state.generator.Skip(kWords * frames);
      sequences_[1].Start(state.generator);
      before_ = _mm_setr_pd(_mm_cvtsd_f64(before_), static_cast<std::int32_t>(state.generator.LastDrawn()));
    }
  }

  void Prepare(std::size_t) noexcept {}
  Reader Read() noexcept { return Reader(*this); }
  void Pass(const Reader& reader, std::size_t frames) noexcept {
    before_ = reader.before_;  // that of a frame too far after a single one, when it is not needed any more
    for (R250Sequence& sequence : sequences_) sequence.Pass(frames * ChannelsOf(kOrder) / kSequences * kWords);
  }

  // Leaves the state where the noise is.
  [[gnu::noinline]] void Finish() noexcept {
    sequences_[kSequences - 1].Finish(state_.generator);
    if (IsHighpass()) state_.highpass_history = static_cast<std::int32_t>(state_.generator.LastDrawn()) * 0x1p-31;
  }

 private:
  static constexpr std::size_t kSequences = SequencesOf(kOrder);
  static_assert(kBlockFrames * kMaxDitherChannels * kWords <= R250Sequence::kMostAtOnce);

  bool IsHighpass() const noexcept { return state_.type == DitherType::kHighpassTriangular; }

  const DitherState& state_;
  const __m128d factor_, coefficient_;
  __m128d before_;  // u of the last frame
  R250Sequence sequences_[kSequences];
};

// The type that takes as many words as it happens to, and the one that takes none.
template <DrawOrder kOrder>
class BufferedNoise {
 public:
  static constexpr bool kReadsEight = false;

  class Reader {
   public:
    TwoFrames Next() noexcept {
      const double* const frames = next_;
      next_ += 4;
      return {_mm_loadu_pd(frames), _mm_loadu_pd(frames + 2)};
    }

   private:
    friend BufferedNoise;
    explicit Reader(const double* next) noexcept : next_(next) {}
    const double* next_;
  };

  [[gnu::noinline]] BufferedNoise(const DitherState& state, std::uint32_t frames) noexcept : state_(state) {
    if (IsNone()) return;
    sequences_[0].Start(state.generator);
    if constexpr (kSequences == 2) {
      sequences_[1].Start(state.generator);
      for (std::uint32_t frame = 0; frame < frames;) frame += SquarePoint(sequences_[1]).IsInCircle() ? 1 : 0;
    }
  }

  [[gnu::noinline]] void Prepare(std::size_t frames) noexcept {
    if (IsNone()) return;
    for (std::size_t frame = 0; frame < frames; ++frame) {
      for (std::size_t channel = 0; channel < ChannelsOf(kOrder); ++channel) {
        noise_[2 * frame + channel] = GaussianOf(sequences_[channel % kSequences], state_.amplitude);
      }
    }
  }
  Reader Read() const noexcept { return Reader(noise_); }
  void Pass(const Reader&, std::size_t) noexcept {}

  [[gnu::noinline]] void Finish() noexcept {
    if (!IsNone()) sequences_[kSequences - 1].Finish(state_.generator);
  }

 private:
  static constexpr std::size_t kSequences = SequencesOf(kOrder);

  bool IsNone() const noexcept { return state_.type == DitherType::kNone; }

  const DitherState& state_;
  double noise_[2 * kBlockFrames] = {};
  R250Sequence sequences_[kSequences];
};

}  // namespace tervan::dither_kernel
