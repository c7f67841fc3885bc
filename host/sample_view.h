// Typed access to a block of samples whose format is known only at run time.
#pragma once

#include <cstdint>

#include "host/audio_format.h"

namespace tervan::host {

// Three bytes as WAV files hold them: no integer type has 24 bits.
struct Packed24 {
  std::uint8_t bytes[3];
};
static_assert(sizeof(Packed24) == 3);

// A sample with full scale 1.0.
constexpr double Normalised(std::uint8_t sample) { return (sample - 128) * 0x1p-7; }
constexpr double Normalised(std::int16_t sample) { return sample * 0x1p-15; }
constexpr double Normalised(std::int32_t sample) { return sample * 0x1p-31; }
constexpr double Normalised(Packed24 sample) {
  const auto& [low, middle, high] = sample.bytes;
  return Normalised(
      static_cast<std::int32_t>(std::uint32_t{low} << 8 | std::uint32_t{middle} << 16 | std::uint32_t{high} << 24));
}
constexpr double Normalised(float sample) { return sample; }
constexpr double Normalised(double sample) { return sample; }

// Calls visit with a sample of the type; its value means nothing.
template <class Visit>
void VisitSampleType(SampleType type, Visit visit) {
  switch (type) {
    case SampleType::kPcm8: return visit(std::uint8_t{});
    case SampleType::kPcm16: return visit(std::int16_t{});
    case SampleType::kPcm24: return visit(Packed24{});
    case SampleType::kPcm32: return visit(std::int32_t{});
    case SampleType::kFloat32: return visit(float{});
    case SampleType::kFloat64: return visit(double{});
  }
}

}  // namespace tervan::host
