// The sample formats of WAV files.
#pragma once

#include <windows.h>

#include <mmreg.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace tervan::host {

enum class SampleType { kPcm8, kPcm16, kPcm24, kPcm32, kFloat32, kFloat64 };

struct AudioFormat {
  SampleType type;
  int channels;  // 1 or 2
  std::uint32_t rate_hz;

  size_t SampleBytes() const;
  size_t FrameBytes() const { return SampleBytes() * channels; }
  bool IsFloat() const { return type == SampleType::kFloat32 || type == SampleType::kFloat64; }
  AudioFormat With(SampleType other) const { return {other, channels, rate_hz}; }
  bool operator==(const AudioFormat&) const = default;
};

// Integers of this word length; nothing for one that WAV files do not have here.
std::optional<SampleType> PcmType(long bits);

// The plain form, without extension.
WAVEFORMATEX ToWaveFormat(const AudioFormat& format);

// "24-bit PCM", "32-bit float"
std::string SampleTypeName(SampleType type);
// "16-bit PCM, stereo, 44100 Hz"
std::string Describe(const AudioFormat& format);

}  // namespace tervan::host
