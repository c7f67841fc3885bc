#include "host/sample_convert.h"

#include "host/sample_view.h"

namespace tervan::host {

void Expand24To32(const std::uint8_t* packed, std::int32_t* out, size_t samples) {
  for (size_t i = 0; i < samples; ++i, packed += 3) {
    const std::uint32_t bits =
        std::uint32_t{packed[0]} << 8 | std::uint32_t{packed[1]} << 16 | std::uint32_t{packed[2]} << 24;
    out[i] = static_cast<std::int32_t>(bits);
  }
}

void ToFloat32(SampleType type, const void* in, float* out, size_t samples) {
  VisitSamples(type, in, [=](const auto* typed) {
    for (size_t i = 0; i < samples; ++i) out[i] = static_cast<float>(Normalised(typed[i]));
  });
}

}  // namespace tervan::host
