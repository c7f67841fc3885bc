#include "effects/compressor/compressor_engine.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>

#include "effects/compressor/compressor_kernel.h"

namespace tervan {

using compressor::PeakLevels;

namespace {

// Of the metered gain: a gain still on its way down from far higher settings means nothing to the page.
constexpr double kGainLimit = 1e6;

}  // namespace

// Samples of another format reach other levels.
void CompressorEngine::SetFormat(const StreamFormat& format) {
  RestartDetector();
  AutomatedEngine::SetFormat(format);
}

void CompressorEngine::RestartDetector() {
  state_.hold = 0.0;
  state_.hold_single = 0.0f;
  state_.reduction = 1.0;
  state_.valley = 0.0;
}

void CompressorEngine::Design(const CompressorSettings& settings, ProcessMode mode) {
  coefficients_ = DesignCompressor(settings, format().nSamplesPerSec);
  RestartDetector();
  if (mode == ProcessMode::kDiscontinuity) {
    state_.gain = coefficients_.start_gain;
    state_.low_pass = dynamics::kLowPassStart;
  }
}

template <typename Codec, bool kSingle, bool kMetered>
double CompressorEngine::RunFrames(typename Codec::Sample* data, std::uint32_t frames) {
  if (format().nChannels == 1) {
    return compressor::RunFrames<Codec, 1, false, kMetered>(coefficients_, state_, data, frames);
  }
  const double least_gain = compressor::RunFrames<Codec, 2, kSingle, kMetered>(coefficients_, state_, data, frames);
  // A window that comes or goes switches between the two paths: the held level goes along, or a stale one would lift
  // the gain.
  if constexpr (kSingle) {
    state_.hold = static_cast<double>(state_.hold_single);
  } else if constexpr (std::is_same_v<Codec, Float32Codec>) {
    state_.hold_single = static_cast<float>(state_.hold);
  }
  return least_gain;
}

template <typename Codec>
PeakLevels CompressorEngine::LevelsOf(const typename Codec::Sample* data, std::uint32_t frames) const {
  return format().nChannels == 1 ? compressor::PeakLevelsOf<Codec, 1>(data, frames)
                                 : compressor::PeakLevelsOf<Codec, 2>(data, frames);
}

template <typename Codec>
void CompressorEngine::RunMetered(typename Codec::Sample* data, std::uint32_t frames, bool untouched) {
  const PeakLevels input = LevelsOf<Codec>(data, frames);
  if (untouched) return Publish(input, input, compressor::kNoGainYet);
  const double least_gain = RunFrames<Codec, false, true>(data, frames);
  Publish(input, LevelsOf<Codec>(data, frames), least_gain);
}

// The pure compression: input gain, output gain and make-up divided out. The quotient of the smallest gain is the
// smallest quotient.
void CompressorEngine::Publish(const PeakLevels& input, const PeakLevels& output, double least_gain) {
  const CompressorCoefficients& c = coefficients_;
  const bool compressed = least_gain != compressor::kNoGainYet && c.out_gain != 0.0;
  const std::size_t right = format().nChannels == 1 ? 0 : 1;
  source().PublishMeters({.input_left = input[0] * c.meter_in_gain,
                          .input_right = input[right] * c.meter_in_gain,
                          .output_left = output[0],
                          .output_right = output[right],
                          .reduction = compressed ? std::min(least_gain / c.in_gain, kGainLimit) / c.out_gain : 1.0});
}

template <typename Codec>
void CompressorEngine::Run(typename Codec::Sample* data, std::uint32_t frames) {
  if constexpr (std::is_same_v<Codec, Float32Codec>) {
    const bool untouched = coefficients_.unity || coefficients_.bypass;
    if (source().IsWatched()) return RunMetered<Codec>(data, frames, untouched);
    if (!untouched) RunFrames<Codec, true, false>(data, frames);
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
