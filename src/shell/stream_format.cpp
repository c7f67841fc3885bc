#include "shell/stream_format.h"

#include <cstring>

namespace tervan {
namespace {

void ComputeSizes(StreamFormat& format) {
  format.nBlockAlign = static_cast<std::uint16_t>(format.wBitsPerSample / 8 * format.nChannels);
  format.nAvgBytesPerSec = format.nBlockAlign * format.nSamplesPerSec;
  format.cbSize = 0;
}

}  // namespace

SampleFormat SampleFormatOf(const StreamFormat& format) {
  if (format.wFormatTag == kTagPcm) {
    switch (format.wBitsPerSample) {
      case 8: return SampleFormat::kPcm8;
      case 16: return SampleFormat::kPcm16;
      case 32: return SampleFormat::kPcm32;
    }
  } else if (format.wFormatTag == kTagFloat) {
    switch (format.wBitsPerSample) {
      case 32: return SampleFormat::kFloat32;
      case 64: return SampleFormat::kFloat64;
    }
  }
  return SampleFormat::kNone;
}

HRESULT CheckFormat(const FormatOffer& offer) {
  if (!offer.is_audio || offer.temporally_compressed) return E_INVALIDARG;
  if (!offer.block || offer.block_bytes < kFormatHeadBytes) return E_INVALIDARG;
  const StreamFormat format = NormalisedFormat(offer.block);
  if (format.nChannels < 1 || format.nChannels > 2) return E_INVALIDARG;
  return SampleFormatOf(format) == SampleFormat::kNone ? E_INVALIDARG : S_OK;
}

StreamFormat NormalisedFormat(const void* block) {
  StreamFormat format{};
  std::memcpy(&format, block, kFormatHeadBytes);
  ComputeSizes(format);
  return format;
}

StreamFormat FloatFormat(std::uint16_t channels, std::uint32_t sample_rate_hz) {
  StreamFormat format{.wFormatTag = kTagFloat,
                      .nChannels = channels,
                      .nSamplesPerSec = sample_rate_hz,
                      .nAvgBytesPerSec = 0,
                      .nBlockAlign = 0,
                      .wBitsPerSample = 32,
                      .cbSize = 0};
  ComputeSizes(format);
  return format;
}

}  // namespace tervan
