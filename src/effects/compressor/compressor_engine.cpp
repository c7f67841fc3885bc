#include "effects/compressor/compressor_engine.h"

#include <algorithm>
#include <cstddef>

namespace tervan {

using compressor::NoMeter;
using compressor::PeakMeter;

namespace {

// Of the metered gain: a gain still on its way down from far higher settings means nothing to the page.
constexpr double kGainLimit = 1e6;

}  // namespace

void CompressorEngine::SetFormat(const StreamFormat& format) {
  if (format.nSamplesPerSec != format_.nSamplesPerSec) loaded_ = false;
  format_ = format;
}

void CompressorEngine::LoadParameters(const CompressorSettings& settings, ProcessMode keep_state) {
  coefficients_ = DesignCompressor(settings, format_.nSamplesPerSec);
  state_.hold = 0.0;
  state_.hold_single = 0.0f;
  state_.reduction = 1.0;
  state_.valley = 0.0;
  if (keep_state == ProcessMode::kDiscontinuity) {
    state_.gain = coefficients_.start_gain;
    state_.low_pass = compressor::kLowPassStart;
  }
  loaded_ = true;
}

void CompressorEngine::LoadSnapshot(ProcessMode mode, bool always) {
  CompressorSettings settings{};
  const bool changed = owner_.SnapshotSettings(&settings);
  if (changed || !loaded_ || always) LoadParameters(settings, mode);
}

template <typename Codec, bool kSingle, typename Meter>
void CompressorEngine::Run(typename Codec::Sample* data, std::uint32_t frames, Meter& meter) {
  if (format_.nChannels == 1) {
    compressor::RunFrames<Codec, 1, false>(coefficients_, state_, data, frames, meter);
  } else {
    compressor::RunFrames<Codec, 2, kSingle>(coefficients_, state_, data, frames, meter);
  }
  // A window that comes or goes switches between the two paths: the held level goes along, or a stale one would lift
  // the gain.
  if constexpr (kSingle) {
    if (format_.nChannels == 2) state_.hold = static_cast<double>(state_.hold_single);
  }
  state_.hold_single = static_cast<float>(state_.hold);
}

template <typename Codec>
void CompressorEngine::ProcessMetered(typename Codec::Sample* data, std::uint32_t frames, bool untouched) {
  PeakMeter meter;
  if (untouched) {
    const std::size_t channels = format_.nChannels;
    for (std::size_t i = 0; i < frames * channels; ++i) meter.In<Codec>(i % channels, data[i]);
    std::copy_n(meter.input, 2, meter.output);
  } else {
    Run<Codec, false>(data, frames, meter);
  }
  Publish(meter);
}

// The pure compression: input gain, output gain and make-up divided out. The quotient of the smallest gain is the
// smallest quotient.
void CompressorEngine::Publish(const PeakMeter& meter) {
  const CompressorCoefficients& c = coefficients_;
  const bool compressed = meter.least_gain != PeakMeter::kNoGainYet && c.out_gain != 0.0;
  const std::size_t right = format_.nChannels == 1 ? 0 : 1;
  owner_.PublishMeters(
      {.input_left = meter.input[0] * c.meter_in_gain,
       .input_right = meter.input[right] * c.meter_in_gain,
       .output_left = meter.output[0],
       .output_right = meter.output[right],
       .reduction = compressed ? std::min(meter.least_gain / c.in_gain, kGainLimit) / c.out_gain : 1.0});
}

template <typename Codec>
HRESULT CompressorEngine::ProcessSnapshot(ProcessMode mode, typename Codec::Sample* data, std::uint32_t* frames) {
  if (mode == ProcessMode::kDrain) {
    *frames = 0;
    return S_FALSE;
  }
  LoadSnapshot(mode, false);
  ProcessMetered<Codec>(data, *frames, coefficients_.bypass);
  return S_OK;
}

HRESULT CompressorEngine::ProcessPcm8(ProcessMode mode, std::uint8_t* data, std::uint32_t* frames) {
  return ProcessSnapshot<Pcm8Codec>(mode, data, frames);
}

HRESULT CompressorEngine::ProcessPcm16(ProcessMode mode, std::int16_t* data, std::uint32_t* frames) {
  return ProcessSnapshot<Pcm16Codec>(mode, data, frames);
}

HRESULT CompressorEngine::ProcessPcm32(ProcessMode mode, std::int32_t* data, std::uint32_t* frames) {
  return ProcessSnapshot<Pcm32Codec>(mode, data, frames);
}

HRESULT CompressorEngine::ProcessFloat64(ProcessMode mode, double* data, std::uint32_t* frames) {
  return ProcessSnapshot<Float64Codec>(mode, data, frames);
}

HRESULT CompressorEngine::ProcessFloat32(ProcessMode mode, float* data, std::uint32_t* frames, bool stop) {
  if (mode == ProcessMode::kDrain || stop) {
    if (mode != ProcessMode::kDrain) {
      owner_.PublishMeters(kIdleMeters);
      loaded_ = false;
    }
    *frames = 0;
    return S_FALSE;
  }
  if (!loaded_) LoadSnapshot(mode, true);
  const bool untouched = coefficients_.unity || coefficients_.bypass;
  if (owner_.IsWatched()) {
    ProcessMetered<Float32Codec>(data, *frames, untouched);
  } else if (!untouched) {
    NoMeter meter;
    Run<Float32Codec, true>(data, *frames, meter);
  }
  return S_OK;
}

}  // namespace tervan
