#include "host/sample_convert.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>

#include "host/sample_view.h"

namespace tervan::host {
namespace {

// full_scale is 2^(bits - 1), at most 2^31. Rounds by the processor's instruction: std::lrint would be
// a call for every sample.
std::int32_t Quantised(double value, double full_scale) {
  if (std::isnan(value)) return 0;
  return _mm_cvtsd_si32(_mm_set_sd(std::clamp(value * full_scale, -full_scale, full_scale - 1.0)));
}

void Set(std::uint8_t* sample, double value) { *sample = static_cast<std::uint8_t>(Quantised(value, 0x1p7) + 128); }
void Set(std::int16_t* sample, double value) { *sample = static_cast<std::int16_t>(Quantised(value, 0x1p15)); }
void Set(std::int32_t* sample, double value) { *sample = Quantised(value, 0x1p31); }
void Set(Packed24* sample, double value) {
  const auto bits = static_cast<std::uint32_t>(Quantised(value, 0x1p23));
  for (int i = 0; i < 3; ++i) sample->bytes[i] = static_cast<std::uint8_t>(bits >> 8 * i);
}
void Set(float* sample, double value) { *sample = static_cast<float>(value); }
void Set(double* sample, double value) { *sample = value; }

}  // namespace

void ConvertSamples(SampleType from, const void* in, SampleType to, void* out, size_t samples) {
  VisitSampleType(from, [=](auto in_type) {
    VisitSampleType(to, [=](auto out_type) {
      const auto* typed_in = static_cast<const decltype(in_type)*>(in);
      auto* typed_out = static_cast<decltype(out_type)*>(out);
      for (size_t i = 0; i < samples; ++i) Set(&typed_out[i], Normalised(typed_in[i]));
    });
  });
}

}  // namespace tervan::host
