// The EQ's response as its page draws it: in integers, an approximation for the eye, not what the filters compute.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "effects/eq/eq_nodes.h"

namespace tervan {

class EqResponse {
 public:
  static constexpr int kLastPoint = 1000;  // 20 kHz; point 0 is 20 Hz, between them equal steps of log f
  static constexpr int kFullScale = 2048;  // 15 dB

  EqResponse();

  void Clear() { points_ = {}; }
  // Adds an enabled band with a gain. A gain, a bandwidth or a rolloff that no setter would accept counts as the
  // nearest legal one, so everything below a full cut is a full cut; frequencies count as they are.
  void Add(const EqBand& band);

  std::int32_t operator[](int point) const { return points_[static_cast<std::size_t>(point)]; }

  // The nearest point: 0 for frequencies of 0 and below, and beyond the ends for those outside 20 Hz to 20 kHz.
  static int PointOf(std::int32_t frequency_hz);

 private:
  static constexpr int kTableLength = 1000;
  struct Shelf;

  void AddBell(const EqBand& band);
  void AddLowShelf(const Shelf& shelf);
  void AddHighShelf(const Shelf& shelf);
  void AddPlateau(const Shelf& shelf, int point, int direction);
  void AddAt(int point, std::int32_t value);

  std::array<std::int32_t, kTableLength> rising_cosine_;  // half a period, 0 to 2047
  std::array<std::int32_t, kLastPoint + 1> points_{};
};

}  // namespace tervan
