// The gate's settings as the frame loop wants them.
#pragma once

#include <cstdint>

#include "effects/gate/gate_settings.h"

namespace tervan::gate {

// Constant until the settings or the sample rate change.
struct Coefficients {
  double open_threshold = 0.0;  // linear, full scale 1.0
  double close_threshold = 0.0;
  double attack_frames = 0.0;  // whole numbers
  double release_frames = 0.0;
  std::uint32_t window_frames = 1;
  std::uint32_t hold_frames = 0;
  bool off = true;  // the gate stays open and does nothing
  bool bypass = false;
};

// Safe for any settings and any rate.
Coefficients DesignGate(const GateSettings& settings, std::uint32_t sample_rate_hz);

}  // namespace tervan::gate
