// The sample formats of WAV files, and which of them effects work on.
#pragma once

#include <windows.h>

#include <mmreg.h>

#include <cstddef>
#include <cstdint>
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
  bool operator==(const AudioFormat&) const = default;
};

// What effects are given for a file of this format: 24-bit samples become 32-bit ones, everything else stays.
AudioFormat EffectFormat(const AudioFormat& file_format);

// The plain form, without extension.
WAVEFORMATEX ToWaveFormat(const AudioFormat& format);

// "24-bit PCM", "32-bit float"
std::string SampleTypeName(SampleType type);
// "16-bit PCM, stereo, 44100 Hz"
std::string Describe(const AudioFormat& format);

}  // namespace tervan::host
