// The compressor's working values, derived from its settings and constant until they change.
//
// Above the threshold the output level is a straight line in linear amplitude,
//
//   y = slope thr + (1 - slope) x,    slope = (1 - full) / (1 - thr),    full = thr^(1 - 1/amount),
//
// from (thr, thr) to (1, full): at full scale it meets an exact amount:1 compressor, and it is continuous at the
// threshold.
#pragma once

#include <cstdint>

#include "effects/compressor/compressor_settings.h"

namespace tervan {

struct CompressorCoefficients {
  double in_gain = 1.0;        // as the gain computer uses it
  double meter_in_gain = 1.0;  // as the user set it
  double out_gain = 1.0;       // make-up gain included
  double start_gain = 1.0;     // where the gain stands after a reset

  // Total target gain for a raw detector level L: numerator / L + offset above threshold_in, gain_below otherwise.
  double numerator = 0.0;
  double offset = 1.0;
  double threshold_in = 1.0;
  double gain_below = 1.0;

  // y += (1 - coefficient)(target - y): 90 % of a step in the set time. 0 steps at once.
  double attack = 0.0;
  double attack_complement = 1.0;
  double release = 0.0;
  double release_complement = 1.0;

  bool smooth = false;  // low-pass the gain
  bool bypass = false;
  bool unity = false;  // nothing to do: amount 1, both gains 0 dB
};

// Finite and safe for any settings, NaNs included. sample_rate_hz may be 0: all times are then steps.
CompressorCoefficients DesignCompressor(const CompressorSettings& settings, std::uint32_t sample_rate_hz);

}  // namespace tervan
