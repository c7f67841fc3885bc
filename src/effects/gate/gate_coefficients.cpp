#include "effects/gate/gate_coefficients.h"

#include <algorithm>
#include <cmath>

namespace tervan::gate {
namespace {

constexpr double kWindow_s = 0.02;
constexpr double kHold_s = 0.004;
constexpr std::int32_t kOff_tenth_db = -800;
constexpr double kHysteresis_gain = 0.85;  // of the open threshold, about 1.4 dB

double RampFrames(std::int32_t time_ms, std::uint32_t sample_rate_hz) {
  return std::max(0.0, std::trunc(time_ms * 0.001 * sample_rate_hz));
}

std::uint32_t LengthFrames(double time_s, std::uint32_t sample_rate_hz) {
  return static_cast<std::uint32_t>(sample_rate_hz * time_s);
}

}  // namespace

Coefficients DesignGate(const GateSettings& settings, std::uint32_t sample_rate_hz) {
  const double open_threshold = std::pow(10.0, settings.threshold_tenth_db * 0.005);
  return {.open_threshold = open_threshold,
          .close_threshold = open_threshold * kHysteresis_gain,
          .attack_frames = RampFrames(settings.attack_ms, sample_rate_hz),
          .release_frames = RampFrames(settings.release_ms, sample_rate_hz),
          .window_frames = std::max(1u, LengthFrames(kWindow_s, sample_rate_hz)),
          .hold_frames = LengthFrames(kHold_s, sample_rate_hz),
          .off = settings.threshold_tenth_db <= kOff_tenth_db,
          .bypass = settings.bypass != 0};
}

}  // namespace tervan::gate
