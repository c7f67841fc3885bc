// Rounding to the nearest integer, ties to even. Within a FloatEnvironmentScope.
#pragma once

#include <cstdint>
#include <limits>

namespace tervan {

// Adding it to a number of up to 51 bits leaves none for a fraction, so that the addition itself rounds. The sum's
// bits, taken as an integer, count the integers.
inline constexpr double kNoFraction = 0x1.8p52;

// The integer that a signed 32-bit one can hold; beyond that it saturates. NaN becomes 0.
// Error feedback waits less long for two additions than for a conversion to an integer and back.
inline double RoundedToInt32(double y) noexcept {
  constexpr double kLow = std::numeric_limits<std::int32_t>::min();
  constexpr double kHigh = std::numeric_limits<std::int32_t>::max();
  if (!(y > kLow && y < kHigh)) [[unlikely]] {
    if (y >= kHigh) return kHigh;
    return y <= kLow ? kLow : 0.0;
  }
  return (y + kNoFraction) - kNoFraction;
}

}  // namespace tervan
