// Rounding to the nearest integer, ties to even. Within a FloatEnvironmentScope.
#pragma once

#include <emmintrin.h>

#include <cstdint>
#include <limits>

namespace tervan {

// Saturates; NaN becomes 0.
inline std::int32_t RoundToInt32(double y) noexcept {
  using Limits = std::numeric_limits<std::int32_t>;
  if (!(y > Limits::min() && y < Limits::max())) [[unlikely]] {
    if (y >= Limits::max()) return Limits::max();
    return y <= Limits::min() ? Limits::min() : 0;
  }
  return _mm_cvtsd_si32(_mm_set_sd(y));
}

}  // namespace tervan
