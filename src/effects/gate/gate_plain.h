// The gate frame by frame.
//
// The level decides through its highest value in the current window of 20 ms, which restarts from 0 at each window
// boundary. Five states turn it into a gain, which a low-pass smooths:
//
//   closed   0                                      -> attack when the level reaches the open threshold
//   attack   ramp up over the attack time           -> open, or hold when the level is gone already
//   open     1                                      -> hold when the level falls below the close threshold
//   hold     1, for 4 ms below the close threshold  -> release
//   release  ramp down over the release time        -> closed, or attack when the level is back
#pragma once

#include <cstddef>
#include <cstdint>

#include "effects/dynamics/frame_level.h"
#include "effects/gate/gate_coefficients.h"
#include "shell/sample_codec.h"

namespace tervan::gate {

// First-order bilinear high-pass, 30 Hz at 44100 Hz, used at every rate.
inline constexpr dynamics::ValleyFilter kValleyFilter{.in = -0.99786741651855, .feedback = 0.99573483303711};

enum class Phase { kClosed, kAttack, kOpen, kHold, kRelease };

// What the loop carries from frame to frame.
struct State {
  Phase phase = Phase::kClosed;
  double ramp_frames = 0.0;  // position in the ramp; means something in attack and release only
  std::uint32_t held_frames = 0;
  std::uint32_t window_position = 0;  // frames
  double window_peak = 0.0;
  double valley = 0.0;
  double low_pass = dynamics::kLowPassStart;
};

// The highest level of the window so far.
[[gnu::always_inline]] inline double WindowPeak(const Coefficients& c, double level, State& s) noexcept {
  if (s.window_position >= c.window_frames) s.window_position = 0;
  if (s.window_position == 0) s.window_peak = 0.0;
  ++s.window_position;
  if (level > s.window_peak) s.window_peak = level;
  return s.window_peak;
}

inline double AttackGain(const Coefficients& c, double peak, State& s) noexcept {
  if (s.ramp_frames < c.attack_frames) return s.ramp_frames++ / c.attack_frames;
  s.ramp_frames = 0.0;
  s.phase = peak >= c.open_threshold ? Phase::kOpen : Phase::kHold;
  return 1.0;
}

inline double HoldGain(const Coefficients& c, double peak, State& s) noexcept {
  if (peak >= c.close_threshold) {
    s.held_frames = 0;
  } else if (++s.held_frames > c.hold_frames) {
    s.held_frames = 0;
    s.phase = Phase::kRelease;
  }
  return 1.0;
}

inline double ReleaseGain(const Coefficients& c, double peak, State& s) noexcept {
  if (!(s.ramp_frames < c.release_frames)) {
    s.phase = Phase::kClosed;
    return 0.0;
  }
  const double gain = (c.release_frames - s.ramp_frames++) / c.release_frames;
  if (peak >= c.open_threshold) {
    s.ramp_frames = gain * c.attack_frames;  // the attack goes on from here
    s.phase = Phase::kAttack;
  }
  return gain;
}

// The gain for a frame, before the low-pass.
[[gnu::always_inline]] inline double PhaseGain(const Coefficients& c, double peak, State& s) noexcept {
  switch (s.phase) {
    case Phase::kClosed:
      if (peak >= c.open_threshold) {
        s.ramp_frames = 0.0;
        s.phase = Phase::kAttack;
      }
      return 0.0;
    case Phase::kAttack: return AttackGain(c, peak, s);
    case Phase::kOpen:
      if (peak < c.close_threshold) s.phase = Phase::kHold;
      return 1.0;
    case Phase::kHold: return HoldGain(c, peak, s);
    case Phase::kRelease: return ReleaseGain(c, peak, s);
  }
  return 0.0;
}

// One frame of interleaved samples, in place.
template <typename Codec, std::size_t kChannels>
[[gnu::always_inline]] inline void RunFrame(const Coefficients& c, State& s, typename Codec::Sample* samples) noexcept {
  double x[kChannels];
  const double frame_peak = dynamics::DecodeFrame<Codec>(samples, x);
  const double level = dynamics::FilledLevel(kValleyFilter, frame_peak, s.valley);
  const double gain = dynamics::LowPassed(PhaseGain(c, WindowPeak(c, level, s), s), s.low_pass);
  for (std::size_t channel = 0; channel < kChannels; ++channel) samples[channel] = Codec::Encode(x[channel] * gain);
}

// frames × kChannels interleaved samples, in place. The state lives in locals meanwhile.
template <typename Codec, std::size_t kChannels>
void RunPlain(const Coefficients& coefficients, State& state, typename Codec::Sample* samples,
              std::uint32_t frames) noexcept {
  const Coefficients c = coefficients;
  State s = state;
  for (std::uint32_t frame = 0; frame < frames; ++frame, samples += kChannels) {
    RunFrame<Codec, kChannels>(c, s, samples);
  }
  state = s;
}

}  // namespace tervan::gate
