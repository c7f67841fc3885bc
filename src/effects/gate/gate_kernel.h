// The gate's frame loop, bit for bit the plain routine.
//
// Two recurrences cannot be shortened: the valley filter v = f v' + i p and the low-pass y = b y' + a g. Each step is a
// multiplication and an addition that wait for each other, six cycles a frame on today's machines. All the rest hangs
// off them, so the arrangement serves to let nothing stand in their way:
//
// - Stretches (gate_stretch.h) leave one decision to the loop: whether the level reaches a threshold. The few frames
//   between them go through the plain routine.
// - Frames go in pairs: their peaks, their levels and their gains on a ramp fill a register.
// - Both filters share a register, the valley filter in the lower half, the low-pass in the upper.
// - The filters run one pair ahead of what needs their results. Of two operations that are ready the processor prefers
//   the older one, and so it is the filters'.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "effects/dynamics/frame_level.h"
#include "effects/gate/gate_frame_pair.h"
#include "effects/gate/gate_plain.h"
#include "effects/gate/gate_stretch.h"

namespace tervan::gate {

inline double Lower(__m128d x) noexcept { return _mm_cvtsd_f64(x); }
inline double Upper(__m128d x) noexcept { return _mm_cvtsd_f64(BothUpper(x, x)); }
inline __m128d Halves(double lower, double upper) noexcept { return _mm_set_pd(upper, lower); }

// The frames of a stretch, pair by pair.
template <typename Codec, std::size_t kChannels, GainShape kShape>
class StretchLoop {
 public:
  using Sample = typename Codec::Sample;

  // A tiny valley state counts as 0: nothing is fed back, and it is not subtracted. Levels from the limit on are left
  // to the plain routine, which knows peaks that count as 0.
  explicit StretchLoop(const Stretch& stretch) noexcept
      : feedback_(Halves(stretch.valley_tiny ? 0.0 : kValleyFilter.feedback, dynamics::kLowPassB)),
        before_(Halves(stretch.valley_tiny ? 0.0 : -1.0, 1.0)),
        below_level_(_mm_set1_pd(std::min(stretch.below_level, dynamics::kLevelLimit<Sample>))),
        gain_(_mm_set1_pd(stretch.gain)),
        ramp_(_mm_set1_pd(stretch.ramp_frames)) {}

  // Tells how many of the frames it has done; an odd one at the end is left. Not inlined: the constants stay in memory,
  // and the registers are left to the filters. A filter state in memory costs four cycles a frame.
  [[gnu::noinline]] std::uint32_t Run(State& s, Sample* samples, std::uint32_t frames) const noexcept {
    if (frames < 2) return 0;
    __m128d filters = Halves(s.valley, s.low_pass);
    __m128d position = Position(s);
    __m128d window_peaks = _mm_set1_pd(s.window_peak);
    std::uint32_t done = 0;
    Step step = Filter(samples, filters, position);
    for (; done + 2 <= frames; done += 2, samples += 2 * kChannels) {
      const Sample* next_samples = done + 4 <= frames ? samples + 2 * kChannels : samples;
      const Step next = Filter(next_samples, step.second, step.position);
      const __m128d first = Output(filters, step.first);
      const __m128d second = Output(step.first, step.second);
      const __m128d rises = _mm_max_pd(_mm_unpacklo_pd(first, second), _mm_setzero_pd());
      const __m128d levels = _mm_add_pd(step.peaks, rises);
      if (_mm_movemask_pd(_mm_cmpnlt_pd(levels, below_level_)) != 0) break;  // a NaN, too
      window_peaks = _mm_max_pd(levels, window_peaks);
      step.frames.Store(samples, first, second);
      filters = step.second;
      position = step.position;
      step = next;
    }
    s.valley = Lower(filters) + 0.0;  // 0 times a negative state has left -0.0
    s.low_pass = Upper(filters);
    s.window_peak = std::max(Lower(window_peaks), Upper(window_peaks));
    s.window_position += done;
    if (kShape != GainShape::kSteady) s.ramp_frames = Lower(position);
    return done;
  }

 private:
  // Two frames and the filters' states after each of them.
  struct Step {
    FramePair<Codec, kChannels> frames;
    __m128d peaks;
    __m128d first;
    __m128d second;
    __m128d position;  // of the pair that follows
  };

  [[gnu::always_inline]] Step Filter(const Sample* samples, __m128d filters, __m128d position) const noexcept {
    const FramePair<Codec, kChannels> frames(samples);
    const __m128d peaks = frames.Peaks();
    const __m128d valley_in = _mm_mul_pd(_mm_set1_pd(kValleyFilter.in), peaks);
    const __m128d low_pass_in = _mm_mul_pd(_mm_set1_pd(dynamics::kLowPassA), Gains(position));
    const __m128d first = _mm_add_pd(_mm_mul_pd(feedback_, filters), _mm_unpacklo_pd(valley_in, low_pass_in));
    const __m128d second = _mm_add_pd(_mm_mul_pd(feedback_, first), _mm_unpackhi_pd(valley_in, low_pass_in));
    return {frames, peaks, first, second, NextPosition(position)};
  }

  // On the ramp, of two frames; a gain that is steady is its own position.
  __m128d Position(const State& s) const noexcept {
    return kShape == GainShape::kSteady ? gain_ : Halves(s.ramp_frames, s.ramp_frames + 1.0);
  }
  static __m128d NextPosition(__m128d position) noexcept {
    return kShape == GainShape::kSteady ? position : _mm_add_pd(position, _mm_set1_pd(2.0));
  }
  __m128d Gains(__m128d position) const noexcept {
    if constexpr (kShape == GainShape::kSteady) return position;
    return _mm_div_pd(kShape == GainShape::kRise ? position : _mm_sub_pd(ramp_, position), ramp_);
  }

  // Rise of the valley filter, output of the low-pass.
  __m128d Output(__m128d before, __m128d after) const noexcept {
    return _mm_add_pd(after, _mm_mul_pd(before, before_));
  }

  const __m128d feedback_;  // factors of the filters' states
  const __m128d before_;    // and, in what they put out, of the states before
  const __m128d below_level_;
  const __m128d gain_;
  const __m128d ramp_;
};

// Tells how many frames it has done.
template <typename Codec, std::size_t kChannels>
std::uint32_t RunStretch(const Stretch& stretch, State& s, typename Codec::Sample* samples) noexcept {
  switch (stretch.shape) {
    case GainShape::kSteady:
      return StretchLoop<Codec, kChannels, GainShape::kSteady>(stretch).Run(s, samples, stretch.frames);
    case GainShape::kRise:
      return StretchLoop<Codec, kChannels, GainShape::kRise>(stretch).Run(s, samples, stretch.frames);
    case GainShape::kFall:
      return StretchLoop<Codec, kChannels, GainShape::kFall>(stretch).Run(s, samples, stretch.frames);
  }
  return 0;
}

// frames × kChannels interleaved samples, in place.
template <typename Codec, std::size_t kChannels>
void RunFrames(const Coefficients& c, State& s, typename Codec::Sample* samples, std::uint32_t frames) noexcept {
  while (frames > 0) {
    const Stretch stretch = NextStretch(c, s, frames);
    std::uint32_t done = RunStretch<Codec, kChannels>(stretch, s, samples);
    if (stretch.counts_hold) s.held_frames += done;
    if (done == 0) {
      RunFrame<Codec, kChannels>(c, s, samples);
      done = 1;
    }
    samples += done * kChannels;
    frames -= done;
  }
}

}  // namespace tervan::gate
