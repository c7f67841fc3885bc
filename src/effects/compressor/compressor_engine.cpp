#include "effects/compressor/compressor_engine.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>

namespace tervan {

using compressor::NoMeter;
using compressor::PeakMeter;

namespace {

// Of the metered gain: a gain still on its way down from far higher settings means nothing to the page.
constexpr double kGainLimit = 1e6;

}  // namespace

void CompressorEngine::Design(const CompressorSettings& settings, ProcessMode mode) {
  coefficients_ = DesignCompressor(settings, format().nSamplesPerSec);
  state_.hold = 0.0;
  state_.hold_single = 0.0f;
  state_.reduction = 1.0;
  state_.valley = 0.0;
  if (mode == ProcessMode::kDiscontinuity) {
    state_.gain = coefficients_.start_gain;
    state_.low_pass = dynamics::kLowPassStart;
  }
}

template <typename Codec, bool kSingle, typename Meter>
void CompressorEngine::RunFrames(typename Codec::Sample* data, std::uint32_t frames, Meter& meter) {
  if (format().nChannels == 1) {
    compressor::RunFrames<Codec, 1, false>(coefficients_, state_, data, frames, meter);
  } else {
    compressor::RunFrames<Codec, 2, kSingle>(coefficients_, state_, data, frames, meter);
  }
  // A window that comes or goes switches between the two paths: the held level goes along, or a stale one would lift
  // the gain.
  if constexpr (kSingle) {
    if (format().nChannels == 2) state_.hold = static_cast<double>(state_.hold_single);
  }
  state_.hold_single = static_cast<float>(state_.hold);
}

template <typename Codec>
void CompressorEngine::RunMetered(typename Codec::Sample* data, std::uint32_t frames, bool untouched) {
  PeakMeter meter;
  if (untouched) {
    const std::size_t channels = format().nChannels;
    for (std::size_t i = 0; i < frames * channels; ++i) meter.In<Codec>(i % channels, data[i]);
    std::copy_n(meter.input, 2, meter.output);
  } else {
    RunFrames<Codec, false>(data, frames, meter);
  }
  Publish(meter);
}

// The pure compression: input gain, output gain and make-up divided out. The quotient of the smallest gain is the
// smallest quotient.
void CompressorEngine::Publish(const PeakMeter& meter) {
  const CompressorCoefficients& c = coefficients_;
  const bool compressed = meter.least_gain != PeakMeter::kNoGainYet && c.out_gain != 0.0;
  const std::size_t right = format().nChannels == 1 ? 0 : 1;
  source().PublishMeters(
      {.input_left = meter.input[0] * c.meter_in_gain,
       .input_right = meter.input[right] * c.meter_in_gain,
       .output_left = meter.output[0],
       .output_right = meter.output[right],
       .reduction = compressed ? std::min(meter.least_gain / c.in_gain, kGainLimit) / c.out_gain : 1.0});
}

template <typename Codec>
void CompressorEngine::Run(typename Codec::Sample* data, std::uint32_t frames) {
  if constexpr (std::is_same_v<Codec, Float32Codec>) {
    const bool untouched = coefficients_.unity || coefficients_.bypass;
    if (source().IsWatched()) return RunMetered<Codec>(data, frames, untouched);
    NoMeter meter;
    if (!untouched) RunFrames<Codec, true>(data, frames, meter);
  } else {
    RunMetered<Codec>(data, frames, coefficients_.bypass);
  }
}

template void CompressorEngine::Run<Pcm8Codec>(std::uint8_t* data, std::uint32_t frames);
template void CompressorEngine::Run<Pcm16Codec>(std::int16_t* data, std::uint32_t frames);
template void CompressorEngine::Run<Pcm32Codec>(std::int32_t* data, std::uint32_t frames);
template void CompressorEngine::Run<Float32Codec>(float* data, std::uint32_t frames);
template void CompressorEngine::Run<Float64Codec>(double* data, std::uint32_t frames);

bool CompressorEngine::EndStream() {
  source().EndMeters();
  return true;
}

}  // namespace tervan
