// The dither, fast, with every bit as the plain routine has it.
//
// Error feedback is one long dependency: with additions of 3 cycles and a rounding of two of them, the plain order
//
//   v = x - a + b;  y = v + d;  q = round(y);  a = q - v
//
// takes 15 cycles a frame, 18 in the second order, whatever else the machine could do meanwhile. But q hardly ever
// depends on the last bits of y. So y is guessed along a path on which q, the last to be known, comes in last. With one
// dash for each frame back, a' = q' - v', v' = x' - a'' + b' and b = k a'':
//
//   guess = (((x + d) + (x' + b')) - (1 - k) a'') - q'
//
// From q' to q it takes 9 cycles, and so it does from a'' to q by way of two frames, and from v' to v, which is
// computed as ever. Then y is computed, too, off the path. If it is rounded to anything else than the guess, everything
// from there on is wrong: the block is done again by the plain routine. The same goes for what else is rare: results
// beyond 32 bits, which saturate; numbers that are none; and, where each frame is a call of its own, errors so small
// that its end makes them 0. Both channels share a register, and the adders are the scarce unit: what can be done by
// integers is.
//
// Without feedback the order of the noise is all that is in the way; see dither_noise_reader.h.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "effects/dither/dither_flat.h"
#include "effects/dither/dither_noise_reader.h"
#include "effects/dither/dither_plain.h"
#include "effects/dither/dither_state.h"
#include "shell/frame_codec.h"
#include "shell/sample_codec.h"
#include "support/simd_level.h"
#include "support/state_floor.h"

namespace tervan::dither_kernel {

// Integers are processed as if each frame were a call.
template <typename Codec>
inline constexpr bool kIsFrameByFrame = std::is_integral_v<typename Codec::Sample>;

inline __m128d IsBelow(__m128d error, double floor) noexcept {
  return _mm_cmplt_pd(_mm_andnot_pd(_mm_set1_pd(-0.0), error), _mm_set1_pd(floor));
}
inline Errors Flushed(const Errors& errors) noexcept {
  return {_mm_andnot_pd(IsBelow(errors.a, kStateFloor), errors.a),
          _mm_andnot_pd(IsBelow(errors.b, kStateFloor), errors.b)};
}

template <typename Codec, std::size_t kChannels, bool kSecondOrder>
class ShapedRun {
 public:
  using Plain = std::conditional_t<kSecondOrder, dither_plain::SecondOrder, dither_plain::FirstOrder>;

  ShapedRun(const DitherState& state, const Errors& errors) noexcept
      : scale_(_mm_set1_pd(state.scale)),
        inverse_scale_(_mm_set1_pd(state.inverse_scale)),
        k_(_mm_set1_pd(dither_plain::FeedbackFactor(state.shaping))),
        v_(_mm_sub_pd(q_, errors.a)),
        b_(errors.b),
        reduction_(kSecondOrder ? _mm_sub_pd(errors.a, errors.b) : errors.a) {}

  [[gnu::always_inline]] void Step(typename Codec::Sample* frame, __m128d noise_lsb) noexcept {
    using Frame = FrameCodec<Codec, kChannels>;
    const __m128d no_fraction = _mm_set1_pd(kNoFraction);
    const __m128d x = _mm_mul_pd(Frame::Load(frame), scale_);
    const __m128d target = _mm_add_pd(_mm_add_pd(x, noise_lsb), target_before_);
    const __m128d guess = _mm_add_pd(_mm_sub_pd(_mm_sub_pd(target, reduction_), q_), no_fraction);

    const __m128d a = _mm_sub_pd(q_, v_);
    v_ = _mm_sub_pd(x, a);
    target_before_ = x;
    reduction_ = a;
    if constexpr (kSecondOrder) {
      v_ = _mm_add_pd(v_, b_);
      target_before_ = _mm_add_pd(x, b_);
      reduction_ = _mm_mul_pd(_mm_sub_pd(_mm_set1_pd(1.0), k_), a);
      b_ = _mm_mul_pd(k_, a);
    }
    q_ = _mm_sub_pd(guess, no_fraction);
    Frame::Store(frame, _mm_mul_pd(q_, inverse_scale_));

    Watch(guess, _mm_add_pd(_mm_add_pd(v_, noise_lsb), no_fraction), a);
  }

  bool IsRight() const noexcept {
    const __m128i off = _mm_or_si128(differing_, _mm_srli_epi64(above_lowest_, 32));
    const __m128i wrong = _mm_or_si128(off, _mm_castpd_si128(tiny_));
    return _mm_movemask_epi8(_mm_cmpeq_epi32(wrong, _mm_setzero_si128())) == 0xFFFF;
  }
  Errors LeftErrors() const noexcept {
    const Errors errors{_mm_sub_pd(q_, v_), b_};
    return kIsFrameByFrame<Codec> ? Flushed(errors) : errors;
  }

 private:
  // Both rounded values come with kNoFraction, which makes their bits those of integers.
  [[gnu::always_inline]] void Watch(__m128d guess, __m128d y, __m128d a) noexcept {
    const __m128i lowest = _mm_castpd_si128(_mm_set1_pd(kNoFraction - 0x1p31));  // of 32 bits
    const __m128i y_bits = _mm_castpd_si128(y);
    differing_ = _mm_or_si128(differing_, _mm_xor_si128(y_bits, _mm_castpd_si128(guess)));
    above_lowest_ = _mm_or_si128(above_lowest_, _mm_sub_epi64(y_bits, lowest));
    if constexpr (kIsFrameByFrame<Codec>) tiny_ = _mm_or_pd(tiny_, IsTiny(a));
  }

  // The margin keeps k a, which also ends at the floor, away from it.
  static __m128d IsTiny(__m128d a) noexcept {
    return _mm_and_pd(IsBelow(a, 4.0 * kStateFloor), _mm_cmpneq_pd(a, _mm_setzero_pd()));
  }

  const __m128d scale_, inverse_scale_, k_;
  // Of the frame before. At the start it is one with v = -a and q = 0, which makes the same error.
  __m128d q_ = _mm_setzero_pd(), v_;
  __m128d b_;                                   // already of the frame to come
  __m128d target_before_ = _mm_setzero_pd();    // x' + b'
  __m128d reduction_;                           // (1 - k) a''
  __m128i differing_ = _mm_setzero_si128();     // bits in which a guess was wrong
  __m128i above_lowest_ = _mm_setzero_si128();  // bits of all q + 2^31; those beyond 32 tell of saturation
  __m128d tiny_ = _mm_setzero_pd();
};

// frames: even. False: the samples are wrong, and everything else is as it was.
template <typename Run, std::size_t kChannels, typename Noise, typename Sample>
bool QuantiseByGuess(const DitherState& state, Errors& errors, Noise& noise, Sample* samples,
                     std::size_t frames) noexcept {
  Run run(state, errors);
  auto reader = noise.Read();
  for (Sample* const end = samples + frames * kChannels; samples != end; samples += 2 * kChannels) {
    const TwoFrames next = reader.Next();
    run.Step(samples, next.first);
    run.Step(samples + kChannels, next.second);
  }
  if (!run.IsRight()) return false;
  errors = run.LeftErrors();
  noise.Pass(reader, frames);
  return true;
}

using BlockNoise = double[kBlockFrames][kMaxDitherChannels];

// Readers yield frames in twos: behind a single frame there is one that nobody takes.
template <typename Noise>
[[gnu::noinline]] void ReadBlock(Noise& noise, std::size_t frames, BlockNoise& values) noexcept {
  auto reader = noise.Read();
  for (std::size_t frame = 0; frame < frames; frame += 2) {
    const TwoFrames next = reader.Next();
    _mm_storeu_pd(values[frame], next.first);
    _mm_storeu_pd(values[frame + 1], next.second);
  }
  noise.Pass(reader, frames);
}

template <typename Plain, typename Codec, std::size_t kChannels>
[[gnu::noinline]] void QuantisePlainly(const DitherState& state, Errors& errors, const BlockNoise& noise,
                                       typename Codec::Sample* samples, std::size_t frames) noexcept {
  double a[kMaxDitherChannels], b[kMaxDitherChannels];
  _mm_storeu_pd(a, errors.a);
  _mm_storeu_pd(b, errors.b);
  for (std::size_t channel = 0; channel < kChannels; ++channel) {
    Plain quantise(state, {a[channel], b[channel]});
    for (std::size_t frame = 0; frame < frames; ++frame) {
      auto& sample = samples[frame * kChannels + channel];
      sample = Codec::Encode(quantise(Codec::Decode(sample), noise[frame][channel]));
      if constexpr (kIsFrameByFrame<Codec>) quantise.errors = Flushed(quantise.errors);
    }
    a[channel] = quantise.errors.a;
    b[channel] = quantise.errors.b;
  }
  errors = {_mm_loadu_pd(a), _mm_loadu_pd(b)};
}

// A whole block has a length that the compiler knows.
template <std::size_t kWhole, typename Sample>
void CopyBlock(const Sample* from, std::size_t count, Sample* to) noexcept {
  if (count == kWhole) {
    std::memcpy(to, from, kWhole * sizeof(Sample));
  } else {
    std::copy_n(from, count, to);
  }
}

// The fastest way that there is; false when it does not do.
template <typename Run, typename Codec, std::size_t kChannels, typename Noise>
bool Quantise(const DitherState& state, Errors& errors, Noise& noise, typename Codec::Sample* samples,
              std::size_t frames, SimdLevel level) noexcept {
  if (frames == 1) return false;
  if constexpr (std::is_same_v<Run, FlatRun<Codec, kChannels>> && Noise::kReadsEight) {
    if (frames == kBlockFrames && level == SimdLevel::kAvx2) {
      return QuantiseFlatBlockAvx2<Codec, kChannels>(state, noise, samples);
    }
  }
  return QuantiseByGuess<Run, kChannels>(state, errors, noise, samples, frames);
}

// Blocks have an even number of frames; where one frame is left, a guess is not worth while.
template <typename Run, typename Codec, DrawOrder kOrder, typename Noise>
void ProcessBlocks(const DitherState& state, typename Codec::Sample* samples, std::uint32_t frames,
                   SimdLevel level) noexcept {
  constexpr std::size_t kChannels = ChannelsOf(kOrder);
  constexpr std::size_t kWhole = kBlockFrames * kChannels;
  using Pair = FrameCodec<Float64Codec, kChannels>;
  Noise noise(state, frames);
  Errors errors{Pair::Load(state.error_a), Pair::Load(state.error_b)};
  typename Codec::Sample input[kWhole];
  for (std::size_t left = frames; left > 0;) {
    const std::size_t block = left == 1 ? 1 : std::min(left - left % 2, kBlockFrames);
    const std::size_t count = block * kChannels;
    CopyBlock<kWhole>(samples, count, input);
    noise.Prepare(block);
    if (!Quantise<Run, Codec, kChannels>(state, errors, noise, samples, block, level)) [[unlikely]] {
      std::copy_n(input, count, samples);
      BlockNoise values;
      ReadBlock(noise, block, values);
      QuantisePlainly<typename Run::Plain, Codec, kChannels>(state, errors, values, samples, block);
    }
    samples += count;
    left -= block;
  }
  const Errors kept = Flushed(errors);
  Pair::Store(state.error_a, kept.a);
  Pair::Store(state.error_b, kept.b);
  noise.Finish();
}

template <typename Codec, DrawOrder kOrder, typename Noise>
void ProcessNoise(const DitherState& state, typename Codec::Sample* samples, std::uint32_t frames,
                  SimdLevel level) noexcept {
  constexpr std::size_t kChannels = ChannelsOf(kOrder);
  switch (state.shaping) {
    case NoiseShaping::kOff:
      return ProcessBlocks<FlatRun<Codec, kChannels>, Codec, kOrder, Noise>(state, samples, frames, level);
    case NoiseShaping::kHighPassContour:
      return ProcessBlocks<ShapedRun<Codec, kChannels, false>, Codec, kOrder, Noise>(state, samples, frames, level);
    case NoiseShaping::kEqualLoudnessContour:
    case NoiseShaping::kSecondOrderHalf:
      return ProcessBlocks<ShapedRun<Codec, kChannels, true>, Codec, kOrder, Noise>(state, samples, frames, level);
  }
}

template <typename Codec, DrawOrder kOrder>
void ProcessInOrder(const DitherState& state, typename Codec::Sample* samples, std::uint32_t frames,
                    SimdLevel level) noexcept {
  switch (state.type) {
    case DitherType::kTriangular:
      return ProcessNoise<Codec, kOrder, DrawnNoise<kOrder, 2>>(state, samples, frames, level);
    case DitherType::kHalfRectangular:
    case DitherType::kRectangular:
    case DitherType::kHighpassTriangular:
      return ProcessNoise<Codec, kOrder, DrawnNoise<kOrder, 1>>(state, samples, frames, level);
    case DitherType::kNone:
    case DitherType::kGaussian:
      return ProcessNoise<Codec, kOrder, BufferedNoise<kOrder>>(state, samples, frames, level);
  }
}

// frames × channels interleaved samples in place; other numbers of channels than 1 and 2 change nothing. Floats have
// their noise drawn channel by channel, integers frame by frame.
template <typename Codec>
void Process(const DitherState& state, typename Codec::Sample* samples, std::uint32_t frames, std::uint32_t channels,
             SimdLevel level = BestSimdLevel()) noexcept {
  constexpr DrawOrder kStereo = kIsFrameByFrame<Codec> ? DrawOrder::kFrameByFrame : DrawOrder::kChannelByChannel;
  if (frames == 0) return;
  if (channels == 1) ProcessInOrder<Codec, DrawOrder::kMono>(state, samples, frames, level);
  if (channels == 2) ProcessInOrder<Codec, kStereo>(state, samples, frames, level);
}

}  // namespace tervan::dither_kernel
