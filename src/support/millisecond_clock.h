// Milliseconds since the module was loaded. What needs the time gets the clock from its owner, so that tests repeat.
#pragma once

#include <chrono>
#include <cstdint>

namespace tervan {

using MillisecondClock = std::uint32_t (*)();

inline const std::chrono::steady_clock::time_point kClockStart = std::chrono::steady_clock::now();

inline std::uint32_t ModuleMilliseconds() {
  const auto elapsed = std::chrono::steady_clock::now() - kClockStart;
  return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count());
}

}  // namespace tervan
