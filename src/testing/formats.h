// Stream formats for tests and benchmarks.
#pragma once

#include <cstddef>
#include <cstdint>

#include "shell/stream_format.h"

namespace tervan::testing {

// As much of a format as engines look at.
inline StreamFormat FormatOf(std::size_t channels, std::uint32_t rate_hz) {
  StreamFormat format{};
  format.nChannels = static_cast<std::uint16_t>(channels);
  format.nSamplesPerSec = rate_hz;
  return format;
}

template <typename Sample>
inline constexpr SampleFormat kFormatOf = SampleFormat::kNone;
template <>
inline constexpr SampleFormat kFormatOf<std::uint8_t> = SampleFormat::kPcm8;
template <>
inline constexpr SampleFormat kFormatOf<std::int16_t> = SampleFormat::kPcm16;
template <>
inline constexpr SampleFormat kFormatOf<std::int32_t> = SampleFormat::kPcm32;
template <>
inline constexpr SampleFormat kFormatOf<float> = SampleFormat::kFloat32;
template <>
inline constexpr SampleFormat kFormatOf<double> = SampleFormat::kFloat64;

}  // namespace tervan::testing
