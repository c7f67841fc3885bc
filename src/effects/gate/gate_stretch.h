// Stretches of frames that are all alike: the gate stays in its phase and in its level window, and no filter state
// comes near the floor below which it is set to 0. Whatever else there is to decide is decided before they run.
#pragma once

#include <cstdint>
#include <limits>

#include "effects/gate/gate_plain.h"

namespace tervan::gate {

enum class GainShape { kSteady, kRise, kFall };

struct Stretch {
  std::uint32_t frames = 0;  // at most; 0: the next frame is one for the plain routine
  double below_level = std::numeric_limits<double>::infinity();  // it ends before a frame that reaches this
  GainShape shape = GainShape::kSteady;
  double gain = 0.0;         // of a steady one
  double ramp_frames = 0.0;  // length of the whole ramp
  bool counts_hold = false;  // its frames are below the close threshold
  bool valley_tiny = false;  // the valley filter's state counts as 0 before each frame
};

// What may run from this state.
Stretch NextStretch(const Coefficients& c, const State& s, std::uint32_t frames) noexcept;

}  // namespace tervan::gate
