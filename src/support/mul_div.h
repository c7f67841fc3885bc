// The platform's MulDiv, for code that knows no platform.
#pragma once

#include <cstdint>
#include <limits>

namespace tervan {

// number * numerator / denominator, rounded half away from zero, whatever size the product has; -1 for a denominator
// of 0 and for results that are none of 32 bits.
constexpr std::int32_t MulDiv(std::int32_t number, std::int32_t numerator, std::int32_t denominator) noexcept {
  if (denominator == 0) return -1;
  const std::int64_t sign = denominator < 0 ? -1 : 1;
  const std::int64_t divisor = sign * denominator;
  const std::int64_t product = sign * number * numerator;
  const std::int64_t quotient = (product + (product < 0 ? -divisor / 2 : divisor / 2)) / divisor;
  const bool fits =
      quotient >= std::numeric_limits<std::int32_t>::min() && quotient <= std::numeric_limits<std::int32_t>::max();
  return fits ? static_cast<std::int32_t>(quotient) : -1;
}

}  // namespace tervan
