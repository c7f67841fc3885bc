// Conversions and sums that stop at the ends of their type instead of leaving it.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace tervan {

// Truncates towards zero; values outside Integer give its limits, NaN gives 0.
template <typename Integer>
constexpr Integer SaturatingTruncate(double value) noexcept {
  constexpr Integer kLow = std::numeric_limits<Integer>::min();
  constexpr Integer kHigh = std::numeric_limits<Integer>::max();
  if (value != value) return 0;
  if (value <= static_cast<double>(kLow)) return kLow;
  if (value >= static_cast<double>(kHigh)) return kHigh;
  return static_cast<Integer>(value);
}

constexpr std::int64_t SaturatingAdd(std::int64_t a, std::int64_t b) noexcept {
  std::int64_t sum = 0;
  if (!__builtin_add_overflow(a, b, &sum)) return sum;
  return b < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

// later - earlier, exact for any pair with later >= earlier.
constexpr std::uint64_t Distance(std::int64_t earlier, std::int64_t later) noexcept {
  return static_cast<std::uint64_t>(later) - static_cast<std::uint64_t>(earlier);
}

}  // namespace tervan
