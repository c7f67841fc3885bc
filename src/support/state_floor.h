// Filter states below 2^-32 become 0: silence must not end in subnormals, which make every frame many times as
// expensive.
#pragma once

#include <cmath>

namespace tervan {

inline constexpr double kStateFloor = 0x1p-32;

inline double Flushed(double state) noexcept { return std::fabs(state) < kStateFloor ? 0.0 : state; }

}  // namespace tervan
