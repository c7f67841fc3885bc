// Sample formats to real numbers and back, written down plainly for the models that engines are held against.
#pragma once

#include <cmath>
#include <cstdint>

namespace tervan::testing {

inline double ToReal(std::uint8_t sample) { return (sample - 128) * 0.0078125; }
inline double ToReal(std::int16_t sample) { return sample * 3.0517578125e-5; }
inline double ToReal(std::int32_t sample) { return sample * 4.656612873077393e-10; }
inline double ToReal(float sample) { return static_cast<double>(sample); }
inline double ToReal(double sample) { return sample; }

inline void FromReal(double y, std::uint8_t& sample) {
  const double v = std::trunc(y * 128.0);
  sample = static_cast<std::uint8_t>(v < -128.0 ? 0 : v > 127.0 ? 255 : static_cast<int>(v) + 128);
}
inline void FromReal(double y, std::int16_t& sample) {
  const double v = std::trunc(y * 32768.0);
  sample = static_cast<std::int16_t>(v < -32768.0 ? -32768 : v > 32767.0 ? 32767 : static_cast<int>(v));
}
inline void FromReal(double y, std::int32_t& sample) {
  const double v = y * 2147483648.0;
  sample = v < -2147483648.0 ? INT32_MIN : v > 2147483647.0 ? INT32_MAX : static_cast<std::int32_t>(std::trunc(v));
}
inline void FromReal(double y, float& sample) { sample = static_cast<float>(y); }
inline void FromReal(double y, double& sample) { sample = y; }

}  // namespace tervan::testing
