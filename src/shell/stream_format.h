// The wave formats that the effects process, and their normalised description.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/result.h"

namespace tervan {

inline constexpr std::uint16_t kTagPcm = 1;
inline constexpr std::uint16_t kTagFloat = 3;

// Laid out as WAVEFORMATEX. Frames are interleaved, channel 0 first.
#pragma pack(push, 1)
struct StreamFormat {
  std::uint16_t wFormatTag;       // kTagPcm or kTagFloat
  std::uint16_t nChannels;        // 1 or 2; 0 while no format is set
  std::uint32_t nSamplesPerSec;   // frames per second; 0 is accepted
  std::uint32_t nAvgBytesPerSec;  // always nBlockAlign × nSamplesPerSec
  std::uint16_t nBlockAlign;      // bytes per frame, always wBitsPerSample ÷ 8 × nChannels
  std::uint16_t wBitsPerSample;
  std::uint16_t cbSize;  // always 0
};
#pragma pack(pop)
static_assert(sizeof(StreamFormat) == 18);

inline constexpr std::size_t kFormatHeadBytes = 16;  // all fields but cbSize

enum class SampleFormat { kNone, kPcm8, kPcm16, kPcm32, kFloat32, kFloat64 };

SampleFormat SampleFormatOf(const StreamFormat& format);

// What of a media type decides about acceptance.
struct FormatOffer {
  bool is_audio;
  bool temporally_compressed;
  const void* block;  // a wave format of block_bytes
  std::size_t block_bytes;
};

// S_OK, or E_INVALIDARG for anything but uncompressed mono or stereo PCM of 8, 16 or 32 bits or float of 32 or 64 bits.
HRESULT CheckFormat(const FormatOffer& offer);

// block: at least kFormatHeadBytes that CheckFormat accepted. The sizes in it are not trusted but computed anew.
StreamFormat NormalisedFormat(const void* block);

// The format of direct processing: interleaved 32-bit floats.
StreamFormat FloatFormat(std::uint16_t channels, std::uint32_t sample_rate_hz);

}  // namespace tervan
