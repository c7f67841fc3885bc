// The meter record that the compressor publishes per processed chunk.
#pragma once

namespace tervan {

// Linear; levels are peaks with full scale 1.0, the reduction is a gain factor.
struct CompressorMeters {
  double input_left;
  double input_right;
  double output_left;
  double output_right;
  double reduction;  // 1.0: none
};
static_assert(sizeof(CompressorMeters) == 40);

inline constexpr CompressorMeters kIdleMeters{0.0, 0.0, 0.0, 0.0, 1.0};

}  // namespace tervan
