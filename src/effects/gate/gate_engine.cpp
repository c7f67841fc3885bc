#include "effects/gate/gate_engine.h"

#include <algorithm>
#include <cmath>

namespace tervan {
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

void GateEngine::Start() {
  state_.window_position = 0;
  AutomatedEngine::Start();
}

void GateEngine::Design(const GateSettings& settings, ProcessMode mode) {
  const std::uint32_t sample_rate_hz = format().nSamplesPerSec;
  const double open_threshold = std::pow(10.0, settings.threshold_tenth_db * 0.005);
  coefficients_ = {.open_threshold = open_threshold,
                   .close_threshold = open_threshold * kHysteresis_gain,
                   .attack_frames = RampFrames(settings.attack_ms, sample_rate_hz),
                   .release_frames = RampFrames(settings.release_ms, sample_rate_hz),
                   .off = settings.threshold_tenth_db <= kOff_tenth_db,
                   .bypass = settings.bypass != 0};
  lengths_ = {.window_frames = std::max(1u, LengthFrames(kWindow_s, sample_rate_hz)),
              .hold_frames = LengthFrames(kHold_s, sample_rate_hz)};
  if (mode == ProcessMode::kDiscontinuity) {
    state_.phase = gate::Phase::kClosed;
    state_.held_frames = 0;
    state_.valley = 0.0;
    state_.low_pass = dynamics::kLowPassStart;
  }
}

template <typename Codec>
void GateEngine::Run(typename Codec::Sample* data, std::uint32_t frames) {
  if (coefficients_.off || coefficients_.bypass) return;
  if (format().nChannels == 1) {
    gate::RunFrames<Codec, 1>(coefficients_, lengths_, state_, data, frames);
  } else {
    gate::RunFrames<Codec, 2>(coefficients_, lengths_, state_, data, frames);
  }
}

template void GateEngine::Run<Pcm8Codec>(std::uint8_t* data, std::uint32_t frames);
template void GateEngine::Run<Pcm16Codec>(std::int16_t* data, std::uint32_t frames);
template void GateEngine::Run<Pcm32Codec>(std::int32_t* data, std::uint32_t frames);
template void GateEngine::Run<Float32Codec>(float* data, std::uint32_t frames);
template void GateEngine::Run<Float64Codec>(double* data, std::uint32_t frames);

}  // namespace tervan
