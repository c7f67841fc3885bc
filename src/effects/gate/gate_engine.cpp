#include "effects/gate/gate_engine.h"

#include "effects/gate/gate_kernel.h"

namespace tervan {

void GateEngine::Start() {
  state_.window_position = 0;
  AutomatedEngine::Start();
}

void GateEngine::Design(const GateSettings& settings, ProcessMode mode) {
  coefficients_ = gate::DesignGate(settings, format().nSamplesPerSec);
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
    gate::RunFrames<Codec, 1>(coefficients_, state_, data, frames);
  } else {
    gate::RunFrames<Codec, 2>(coefficients_, state_, data, frames);
  }
}

template void GateEngine::Run<Pcm8Codec>(std::uint8_t* data, std::uint32_t frames);
template void GateEngine::Run<Pcm16Codec>(std::int16_t* data, std::uint32_t frames);
template void GateEngine::Run<Pcm32Codec>(std::int32_t* data, std::uint32_t frames);
template void GateEngine::Run<Float32Codec>(float* data, std::uint32_t frames);
template void GateEngine::Run<Float64Codec>(double* data, std::uint32_t frames);

}  // namespace tervan
