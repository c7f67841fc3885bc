// Sample formats to 64-bit floats with full scale 1.0 and back. Integers are truncated towards zero and saturated.
#pragma once

#include <cstdint>

#include "support/saturate.h"

namespace tervan {

struct Pcm8Codec {
  using Sample = std::uint8_t;  // 128 is zero
  static double Decode(Sample sample) noexcept { return (static_cast<int>(sample) - 128) * 0x1p-7; }
  static Sample Encode(double y) noexcept {
    return static_cast<Sample>(SaturatingTruncate<std::int8_t>(y * 0x1p7) + 128);
  }
};

struct Pcm16Codec {
  using Sample = std::int16_t;
  static double Decode(Sample sample) noexcept { return sample * 0x1p-15; }
  static Sample Encode(double y) noexcept { return SaturatingTruncate<std::int16_t>(y * 0x1p15); }
};

struct Pcm32Codec {
  using Sample = std::int32_t;
  static double Decode(Sample sample) noexcept { return sample * 0x1p-31; }
  static Sample Encode(double y) noexcept { return SaturatingTruncate<std::int32_t>(y * 0x1p31); }
};

struct Float32Codec {
  using Sample = float;
  static double Decode(Sample sample) noexcept { return static_cast<double>(sample); }
  static Sample Encode(double y) noexcept { return static_cast<Sample>(y); }
};

struct Float64Codec {
  using Sample = double;
  static double Decode(Sample sample) noexcept { return sample; }
  static Sample Encode(double y) noexcept { return y; }
};

}  // namespace tervan
