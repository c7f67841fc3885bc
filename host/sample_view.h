// Typed access to a block of samples whose format is known only at run time.
#pragma once

#include <cstdint>

#include "host/audio_format.h"

namespace tervan::host {

// A sample with full scale 1.0.
constexpr double Normalised(std::uint8_t sample) { return (sample - 128) * 0x1p-7; }
constexpr double Normalised(std::int16_t sample) { return sample * 0x1p-15; }
constexpr double Normalised(std::int32_t sample) { return sample * 0x1p-31; }
constexpr double Normalised(float sample) { return sample; }
constexpr double Normalised(double sample) { return sample; }

// Calls visit with a pointer to the sample type. The type is not kPcm24, which no integer type holds.
template <class Visit>
void VisitSamples(SampleType type, const void* samples, Visit visit) {
  switch (type) {
    case SampleType::kPcm8: return visit(static_cast<const std::uint8_t*>(samples));
    case SampleType::kPcm16: return visit(static_cast<const std::int16_t*>(samples));
    case SampleType::kPcm24: return;
    case SampleType::kPcm32: return visit(static_cast<const std::int32_t*>(samples));
    case SampleType::kFloat32: return visit(static_cast<const float*>(samples));
    case SampleType::kFloat64: return visit(static_cast<const double*>(samples));
  }
}

}  // namespace tervan::host
