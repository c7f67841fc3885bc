// What a call of the dither works on: its settings, and the state that it carries from call to call.
#pragma once

#include <cstddef>
#include <cstdint>

#include "effects/dither/r250_generator.h"

namespace tervan {

// Records hold these values.
enum class DitherType : std::uint32_t {
  kNone,
  kHalfRectangular,     // ±0.5 LSB
  kRectangular,         // ±1 LSB
  kTriangular,          // triangular density within ±1 LSB
  kHighpassTriangular,  // the difference of successive uniform values, within ±0.995 LSB
  kGaussian,            // standard deviation 0.5 LSB
};
inline constexpr std::uint32_t kDitherTypeCount = 6;

enum class NoiseShaping : std::uint32_t {
  kOff,
  kHighPassContour,       // first order
  kEqualLoudnessContour,  // second order, k = 0.75
  kSecondOrderHalf,       // second order, k = 0.5; no setting selects it
};

using NoiseFunction = double (*)(R250Generator& generator, double amplitude, double& highpass_history);

inline constexpr std::size_t kMaxDitherChannels = 2;

struct DitherState {
  DitherType type;
  NoiseShaping shaping;
  NoiseFunction noise_function;
  double amplitude;  // full scale 1.0 without shaping, LSB with it
  double scale;      // LSB per full scale
  double inverse_scale;

  R250Generator& generator;
  double& highpass_history;  // one for all channels
  double (&error_a)[kMaxDitherChannels];
  double (&error_b)[kMaxDitherChannels];
};

}  // namespace tervan
