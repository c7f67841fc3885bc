// The compressor's fast routine: bit for bit what the plain one computes (the formulas stand there).
//
// Two recurrences run from frame to frame, the valley v = b v' + a p and the gain g = k g' + (1 - k) t. Each is a
// multiplication and an addition, 6 cycles on current processors; side by side they bound a frame to 6 cycles, and to
// 15 with the low-pass behind the gain. To get near that:
//
// - No mask lies on a recurrence: attack or release and the floor of the valley are branches, which predict well.
// - Frames are taken in groups of four. Most groups are quiet: no frame can reach the held level. The peaks and a bound
//   on the valley tell, without waiting for the recurrences. A quiet group needs no filled levels, and its target
//   stands still or follows the decay of the hold: nothing to compare, nothing to divide.
// - In most of the other groups all peaks are too high for a valley to be filled. They need not wait either.
// - What does not happen to music, levels beyond all measure and gains that fade to nothing, is left to the plain
//   routine.
//
// Nothing here may call a function that is not inlined: that would put the state into memory.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "effects/compressor/compressor_coefficients.h"
#include "effects/compressor/compressor_plain.h"
#include "shell/frame_codec.h"

namespace tervan::compressor {

inline constexpr std::uint32_t kGroupFrames = 4;

// Below what a hold decays to in a group, 0.999^4 = 0.996006, rounding included.
inline constexpr double kGroupDecay = 0.9959;

// In a group without peaks above M, a filled level p + rise = (1 + a) p - (1 - b) v' stays below M as long as
// v' > -140 M, for 1 + a = 0.0036 and 1 - b = 0.0071. Within the group v sinks by less than 4 M.
inline constexpr double kQuietValley = -136.0;

// A peak above this share of |v'| leaves nothing to fill: v - v' = (1 - b) |v'| + a p is not above 0, rounding
// included.
inline constexpr double kFullShare = 1.001 * (1.0 - kValleyFilter.feedback) / -kValleyFilter.in;

// A valley below this does not reach the floor in a group: b^4 = 0.972.
inline constexpr double kDeepValley = -1.05 * kStateFloor;

// Levels up to here and gains from here keep far from all limits: the gain of such a level cannot fade to nothing.
inline constexpr double kTameLevel = 1e30;
inline constexpr double kTameGain = 1e-200;

// A group's frames, and their peaks two by two. A NaN counts as 0: of it and another operand, _mm_max_pd takes the
// second.
template <typename Codec, std::size_t kChannels>
class GroupInput {
 public:
  using Sample = typename Codec::Sample;

  [[gnu::always_inline]] explicit GroupInput(const Sample* samples) noexcept : samples_(samples) {
    if constexpr (kDecodesOnce) {
#pragma GCC unroll 4
      for (std::uint32_t i = 0; i < kGroupFrames; ++i) frames_[i] = Decoded(i);
    }
    if constexpr (std::is_same_v<Sample, float> && kChannels == 2) {
      SetSinglePeaks();
    } else {
      SetPeaks();
    }
  }

  [[gnu::always_inline]] __m128d Frame(std::uint32_t i) const noexcept {
    if constexpr (kDecodesOnce) return frames_[i];
    return Decoded(i);
  }

  __m128d peaks[kGroupFrames / 2];

 private:
  // Floats are cheaper to decode again than to keep: there are few registers.
  static constexpr bool kDecodesOnce = !std::is_floating_point_v<Sample>;

  [[gnu::always_inline]] __m128d Decoded(std::uint32_t i) const noexcept {
    return FrameCodec<Codec, kChannels>::Load(samples_ + i * kChannels);
  }

  [[gnu::always_inline]] void SetPeaks() noexcept {
    const __m128d sign = _mm_set1_pd(-0.0);
#pragma GCC unroll 4
    for (std::uint32_t i = 0; i < kGroupFrames; i += 2) {
      const __m128d first = _mm_andnot_pd(sign, Frame(i));
      const __m128d second = _mm_andnot_pd(sign, Frame(i + 1));
      __m128d pair = _mm_unpacklo_pd(first, second);
      if constexpr (std::is_floating_point_v<Sample>) pair = _mm_max_pd(pair, _mm_setzero_pd());
      if constexpr (kChannels == 2) pair = _mm_max_pd(_mm_unpackhi_pd(first, second), pair);
      peaks[i / 2] = pair;
    }
  }

  // The same at half the cost.
  [[gnu::always_inline]] void SetSinglePeaks() noexcept {
    const __m128 sign = _mm_set1_ps(-0.0f);
    const __m128 first = _mm_max_ps(_mm_andnot_ps(sign, _mm_loadu_ps(samples_)), _mm_setzero_ps());
    const __m128 second = _mm_max_ps(_mm_andnot_ps(sign, _mm_loadu_ps(samples_ + 4)), _mm_setzero_ps());
    const __m128 all = _mm_max_ps(_mm_shuffle_ps(first, second, _MM_SHUFFLE(2, 0, 2, 0)),
                                  _mm_shuffle_ps(first, second, _MM_SHUFFLE(3, 1, 3, 1)));
    peaks[0] = _mm_cvtps_pd(all);
    peaks[1] = _mm_cvtps_pd(_mm_movehl_ps(all, all));
  }

  const Sample* samples_;
  __m128d frames_[kDecodesOnce ? kGroupFrames : 1];
};

// The valley of a group's frames before each frame, floored, and after it.
struct ValleySteps {
  double before[kGroupFrames];
  double after[kGroupFrames];
};

// A group at a time. Coefficients and state are copies, which the compiler keeps in registers. Level is the hold's
// type: float for the single-precision path.
template <typename Codec, std::size_t kChannels, typename Level, bool kSmooth, bool kMetered>
class Kernel {
 public:
  using Sample = typename Codec::Sample;

  Kernel(const CompressorCoefficients& coefficients, const State& state) noexcept
      : c_(coefficients), threshold_(static_cast<Level>(coefficients.threshold_in)), s_(state) {}

  const State& state() const noexcept { return s_; }
  double least_gain() const noexcept { return least_gain_; }

  // Whether this routine is for such coefficients and such a state. What follows from it stays true until Process says
  // otherwise.
  bool IsTame() const noexcept {
    const double least_target = std::min(c_.gain_below, c_.offset + c_.numerator / kTameLevel);
    return std::min(s_.gain, least_target) >= kTameGain && static_cast<double>(Hold()) <= kTameLevel &&
           s_.valley >= kQuietValley * kTameLevel;
  }

  // A group in place. False: it is not for this routine, and nothing has changed.
  [[gnu::always_inline]] bool Process(Sample* samples) noexcept {
    const GroupInput<Codec, kChannels> input(samples);
    const __m128d(&peaks)[2] = input.peaks;
    double targets[kGroupFrames];
    if (IsQuiet(peaks)) [[likely]] {
      StepValley(peaks);
      SetQuietTargets(targets);
    } else if (AnyAbove(peaks, kTameLevel)) [[unlikely]] {
      return false;
    } else {
      SetLoudTargets(peaks, targets);
    }
#pragma GCC unroll 4
    for (std::uint32_t i = 0; i < kGroupFrames; ++i, samples += kChannels) {
      SmoothGain(targets[i]);
      using Frame = FrameCodec<Codec, kChannels>;
      Frame::Store(samples, _mm_mul_pd(input.Frame(i), _mm_set1_pd(s_.gain)));
    }
    return true;
  }

 private:
  static constexpr auto kHold = [] {
    if constexpr (std::is_same_v<Level, float>) {
      return &State::hold_single;
    } else {
      return &State::hold;
    }
  }();
  static constexpr Level kDecay =
      static_cast<Level>(std::is_same_v<Level, float> ? static_cast<double>(kHoldDecaySingle) : kHoldDecay);

  Level Hold() const noexcept { return s_.*kHold; }
  Level& Hold() noexcept { return s_.*kHold; }

  static bool AnyAbove(const __m128d (&peaks)[2], double level) noexcept {
    return _mm_movemask_pd(_mm_cmpgt_pd(_mm_max_pd(peaks[0], peaks[1]), _mm_set1_pd(level))) != 0;
  }

  // No frame can reach the held level, and that stays on its side of the threshold.
  [[gnu::always_inline]] bool IsQuiet(const __m128d (&peaks)[2]) const noexcept {
    Level limit = Hold();
    if (limit > threshold_) {
      limit *= static_cast<Level>(kGroupDecay);
      if (!(limit > threshold_)) return false;
    }
    const auto level = static_cast<double>(limit);
    return !AnyAbove(peaks, level) && s_.valley >= kQuietValley * level;
  }

  template <bool kFloored>
  [[gnu::always_inline]] ValleySteps StepValley(const double (&inputs)[kGroupFrames]) noexcept {
    ValleySteps steps;
#pragma GCC unroll 4
    for (std::uint32_t i = 0; i < kGroupFrames; ++i) {
      if constexpr (kFloored) {
        if (s_.valley > -kStateFloor) [[unlikely]]
          s_.valley = 0.0;
      }
      steps.before[i] = s_.valley;
      s_.valley = kValleyFilter.feedback * s_.valley + inputs[i];
      steps.after[i] = s_.valley;
    }
    return steps;
  }

  [[gnu::always_inline]] ValleySteps StepValley(const __m128d (&peaks)[2]) noexcept {
    const __m128d first = _mm_mul_pd(peaks[0], _mm_set1_pd(kValleyFilter.in));
    const __m128d second = _mm_mul_pd(peaks[1], _mm_set1_pd(kValleyFilter.in));
    const double inputs[] = {Low(first), High(first), Low(second), High(second)};
    if (s_.valley < kDeepValley) [[likely]]
      return StepValley<false>(inputs);
    return StepValley<true>(inputs);
  }

  [[gnu::always_inline]] void SetQuietTargets(double (&targets)[kGroupFrames]) noexcept {
    if (Hold() > threshold_) {
#pragma GCC unroll 4
      for (double& target : targets) {
        s_.reduction *= kHoldGrowth;
        Hold() *= kDecay;
        target = s_.reduction + c_.offset;
      }
    } else {
#pragma GCC unroll 4
      for (double& target : targets) target = c_.gain_below;
    }
  }

  // Every level is the frame's peak.
  [[gnu::always_inline]] bool IsFull(const __m128d (&peaks)[2]) const noexcept {
    const __m128d least = _mm_min_pd(peaks[0], peaks[1]);
    const __m128d most = _mm_max_pd(peaks[0], peaks[1]);
    const double deepest = (kGroupFrames - 1) * std::max(Low(most), High(most)) - s_.valley;
    return std::min(Low(least), High(least)) >= kFullShare * deepest;
  }

  [[gnu::always_inline]] void SetLoudTargets(const __m128d (&peaks)[2], double (&targets)[kGroupFrames]) noexcept {
    if (IsFull(peaks)) {
      StepValley(peaks);
      SetTargets(peaks, targets);
    } else {
      const ValleySteps steps = StepValley(peaks);
      __m128d levels[2];
#pragma GCC unroll 2
      for (std::uint32_t i = 0; i < 2; ++i) {
        const __m128d rises = _mm_sub_pd(Pair(steps.after + 2 * i), Pair(steps.before + 2 * i));
        levels[i] = _mm_add_pd(peaks[i], _mm_max_pd(rises, _mm_setzero_pd()));
      }
      SetTargets(levels, targets);
    }
  }

  [[gnu::always_inline]] void SetTargets(const __m128d (&levels)[2], double (&targets)[kGroupFrames]) noexcept {
    const double all[] = {Low(levels[0]), High(levels[0]), Low(levels[1]), High(levels[1])};
#pragma GCC unroll 4
    for (std::uint32_t i = 0; i < kGroupFrames; ++i) {
      targets[i] = TargetGain(c_, static_cast<Level>(all[i]), threshold_, kDecay, Hold(), s_.reduction);
    }
  }

  [[gnu::always_inline]] void SmoothGain(double target) noexcept {
    if (target < s_.gain) {
      s_.gain = c_.attack * s_.gain + c_.attack_complement * target;
    } else {
      s_.gain = c_.release * s_.gain + c_.release_complement * target;
    }
    if constexpr (kSmooth) {
      s_.gain = dynamics::LowPassed(s_.gain, s_.low_pass);
      // Behind a low-pass that the floor keeps at 0, a gain can fade in spite of its target.
      if (s_.gain < kLeastGain) [[unlikely]]
        s_.gain = 0.0;
    }
    if constexpr (kMetered) least_gain_ = std::min(least_gain_, s_.gain);
  }

  // Of numbers in registers: loaded as a pair, they would have to be stored first.
  static __m128d Pair(const double* x) noexcept { return _mm_set_pd(x[1], x[0]); }
  static double Low(__m128d x) noexcept { return _mm_cvtsd_f64(x); }
  static double High(__m128d x) noexcept { return _mm_cvtsd_f64(_mm_unpackhi_pd(x, x)); }

  const CompressorCoefficients c_;
  const Level threshold_;
  State s_;
  double least_gain_ = kNoGainYet;
};

// frames × kChannels interleaved samples, in place; the smallest gain if kMetered. What is not tame and what is left
// over of the last group goes through the plain routine.
template <typename Codec, std::size_t kChannels, typename Level, bool kSmooth, bool kMetered>
double RunGroups(const CompressorCoefficients& coefficients, State& state, typename Codec::Sample* samples,
                 std::uint32_t frames) noexcept {
  Kernel<Codec, kChannels, Level, kSmooth, kMetered> kernel(coefficients, state);
  std::uint32_t done = 0;
  if (kernel.IsTame()) {
    while (frames - done >= kGroupFrames && kernel.Process(samples + std::size_t{done} * kChannels)) {
      done += kGroupFrames;
    }
  }
  state = kernel.state();
  LeastGainMeter meter{kernel.least_gain()};
  if (done == frames) return meter.least_gain;
  RunPlain<Codec, kChannels, std::is_same_v<Level, float>>(coefficients, state, samples + std::size_t{done} * kChannels,
                                                           frames - done, meter);
  return meter.least_gain;
}

template <typename Codec, std::size_t kChannels, bool kSingle, bool kMetered>
double RunFrames(const CompressorCoefficients& coefficients, State& state, typename Codec::Sample* samples,
                 std::uint32_t frames) noexcept {
  using Level = std::conditional_t<kSingle, float, double>;
  return coefficients.smooth
             ? RunGroups<Codec, kChannels, Level, true, kMetered>(coefficients, state, samples, frames)
             : RunGroups<Codec, kChannels, Level, false, kMetered>(coefficients, state, samples, frames);
}

}  // namespace tervan::compressor
