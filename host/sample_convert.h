// Conversions between sample formats. Samples are little-endian and interleaved, as WAV files hold them.
#pragma once

#include <cstddef>

#include "host/audio_format.h"

namespace tervan::host {

// Full scale stays full scale. A sample that the new type can hold keeps its value. Any other becomes the nearest that
// there is, the even one of two equally near: integers saturate, and a NaN becomes silence in them.
void ConvertSamples(SampleType from, const void* in, SampleType to, void* out, size_t samples);

}  // namespace tervan::host
