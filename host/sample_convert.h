// Conversions between sample formats. Samples are little-endian and interleaved, as WAV files hold them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/audio_format.h"

namespace tervan::host {

// Each 3-byte sample becomes the upper 24 bits of a 32-bit one.
void Expand24To32(const std::uint8_t* packed, std::int32_t* out, size_t samples);

// To 32-bit float with full scale 1.0. The type is not kPcm24.
void ToFloat32(SampleType type, const void* in, float* out, size_t samples);

}  // namespace tervan::host
