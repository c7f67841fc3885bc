#include "host/audio_format.h"

namespace tervan::host {

size_t AudioFormat::SampleBytes() const {
  switch (type) {
    case SampleType::kPcm8: return 1;
    case SampleType::kPcm16: return 2;
    case SampleType::kPcm24: return 3;
    case SampleType::kPcm32: return 4;
    case SampleType::kFloat32: return 4;
    case SampleType::kFloat64: return 8;
  }
  return 0;
}

std::optional<SampleType> PcmType(long bits) {
  switch (bits) {
    case 8: return SampleType::kPcm8;
    case 16: return SampleType::kPcm16;
    case 24: return SampleType::kPcm24;
    case 32: return SampleType::kPcm32;
    default: return std::nullopt;
  }
}

WAVEFORMATEX ToWaveFormat(const AudioFormat& format) {
  WAVEFORMATEX wave{};
  wave.wFormatTag = format.IsFloat() ? WAVE_FORMAT_IEEE_FLOAT : WAVE_FORMAT_PCM;
  wave.nChannels = static_cast<WORD>(format.channels);
  wave.nSamplesPerSec = format.rate_hz;
  wave.nBlockAlign = static_cast<WORD>(format.FrameBytes());
  wave.nAvgBytesPerSec = static_cast<DWORD>(format.FrameBytes() * format.rate_hz);
  wave.wBitsPerSample = static_cast<WORD>(8 * format.SampleBytes());
  return wave;
}

std::string SampleTypeName(SampleType type) {
  const AudioFormat format{type, 1, 1};
  return std::to_string(8 * format.SampleBytes()) + (format.IsFloat() ? "-bit float" : "-bit PCM");
}

std::string Describe(const AudioFormat& format) {
  return SampleTypeName(format.type) + (format.channels == 1 ? ", mono, " : ", stereo, ") +
         std::to_string(format.rate_hz) + " Hz";
}

}  // namespace tervan::host
