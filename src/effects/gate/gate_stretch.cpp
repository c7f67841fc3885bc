#include "effects/gate/gate_stretch.h"

#include <algorithm>
#include <bit>

namespace tervan::gate {
namespace {

// Within these bounds, adding 2 to a position gives the bits that adding 1 twice gives.
constexpr double kLeastRampPosition_frames = 1.0;
constexpr double kLongestRamp_frames = 0x1p50;

constexpr int Exponent(double x) noexcept {
  return static_cast<int>(std::bit_cast<std::uint64_t>(x) >> 52 & 0x7ff) - 1023;
}

constexpr int kFloorExponent = Exponent(kStateFloor);

// Without input a first-order filter keeps more than half of its state for so long.
constexpr int HalvingFrames(double feedback) noexcept {
  int frames = 0;
  for (double rest = feedback; rest > 0.5; rest *= feedback) ++frames;
  return frames;
}

// For so long the state is certainly above the floor: the inputs of both filters only add to it.
template <int kHalving_frames>
std::uint32_t FramesAboveFloor(double state) noexcept {
  return static_cast<std::uint32_t>(std::max(0, Exponent(state) - kFloorExponent) * kHalving_frames);
}

Stretch Steady(double gain, std::uint32_t frames) noexcept { return {.frames = frames, .gain = gain}; }

Stretch Ramp(GainShape shape, double length, double position, std::uint32_t frames) noexcept {
  if (position < kLeastRampPosition_frames || position >= length || length > kLongestRamp_frames) return {};
  const double left = std::min<double>(length - position, frames);
  return {.frames = static_cast<std::uint32_t>(left), .shape = shape, .ramp_frames = length};
}

Stretch Until(double level, Stretch stretch) noexcept {
  stretch.below_level = level;
  return stretch;
}

// As long as the phase allows. Within a window the peak only rises: where it has decided, it has decided for the rest
// of the window.
Stretch PhaseStretch(const Coefficients& c, const State& s, std::uint32_t frames) noexcept {
  const bool reaches_open = s.window_peak >= c.open_threshold;
  const bool reaches_close = s.window_peak >= c.close_threshold;
  switch (s.phase) {
    case Phase::kClosed: return reaches_open ? Stretch{} : Until(c.open_threshold, Steady(0.0, frames));
    case Phase::kAttack: return Ramp(GainShape::kRise, c.attack_frames, s.ramp_frames, frames);
    case Phase::kOpen: return reaches_close ? Steady(1.0, frames) : Stretch{};
    case Phase::kHold:
      if (reaches_close) return s.held_frames == 0 ? Steady(1.0, frames) : Stretch{};
      if (s.held_frames >= c.hold_frames) return {};
      return {.frames = std::min(frames, c.hold_frames - s.held_frames),
              .below_level = c.close_threshold,
              .gain = 1.0,
              .counts_hold = true};
    case Phase::kRelease:
      if (reaches_open) return {};
      return Until(c.open_threshold, Ramp(GainShape::kFall, c.release_frames, s.ramp_frames, frames));
  }
  return {};
}

}  // namespace

Stretch NextStretch(const Coefficients& c, const State& s, std::uint32_t frames) noexcept {
  if (s.window_position == 0 || s.window_position >= c.window_frames) return {};
  Stretch stretch = PhaseStretch(c, s, std::min(frames, c.window_frames - s.window_position));

  const bool stays_shut = stretch.shape == GainShape::kSteady && stretch.gain == 0.0 && s.low_pass == 0.0;
  if (!stays_shut) {
    stretch.frames = std::min(stretch.frames, FramesAboveFloor<HalvingFrames(dynamics::kLowPassB)>(s.low_pass));
  }
  stretch.valley_tiny = Flushed(s.valley) == 0.0;
  if (stretch.valley_tiny) {
    stretch.below_level = std::min(stretch.below_level, kStateFloor);  // then the state stays tiny
  } else {
    stretch.frames = std::min(stretch.frames, FramesAboveFloor<HalvingFrames(kValleyFilter.feedback)>(s.valley));
  }
  return stretch;
}

}  // namespace tervan::gate
