#include "effects/eq/eq_response.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "support/mul_div.h"

namespace tervan {
namespace {

// In the units of EqSettings.
constexpr std::int32_t kFullGain = 150;
constexpr std::int32_t kFullCut = -kFullGain;
constexpr std::int32_t kMostBandwidth = 40;
constexpr std::int32_t kMostRolloff = 4;

constexpr std::int32_t kPointsPerBandwidth = 10;  // a tenth of an octave: 1000 points are very nearly 10 octaves

// A full shelf is this high, a little beyond full scale.
constexpr std::int32_t kFullShelf = 2051;

// A full cut falls until it is this many times as deep as its gain.
constexpr std::int32_t kFalls = 4;

EqBand Legal(EqBand band) {
  band.gain = std::clamp(band.gain, kFullCut, kFullGain);
  band.bandwidth = std::clamp(band.bandwidth, 1, kMostBandwidth);
  band.rolloff = std::clamp(band.rolloff, 1, kMostRolloff);
  return band;
}

}  // namespace

// Half of a shelf's transition takes length points.
struct EqResponse::Shelf {
  int centre;
  bool is_full_cut;
  std::int32_t slope;   // per point
  std::int32_t height;  // with the gain's sign
  int length;
  int middle;  // half of the length

  explicit Shelf(const EqBand& band);

  // From the height at -length over half of it at 0 down to 0 at length.
  std::int32_t FallAt(int j) const {
    const std::int32_t bend = MulDiv(j, j, length);
    return MulDiv(height, bend - 2 * j + length, 2 * (bend + length));
  }
};

EqResponse::Shelf::Shelf(const EqBand& band)
    : centre(PointOf(band.frequency)),
      is_full_cut(band.gain == kFullCut),
      slope(MulDiv(kFullScale, 54 * band.rolloff, 15000)),
      height(MulDiv(band.gain, kFullScale, kFullGain)) {
  if (std::abs(band.gain) == kFullGain) height = band.gain < 0 ? -kFullShelf : kFullShelf;
  length = std::abs(height) / slope;
  middle = length / 2;
}

EqResponse::EqResponse() {
  for (int i = 0; i < kTableLength; ++i) {
    const double angle = std::numbers::pi * (i - kTableLength) / kTableLength;
    rising_cosine_[static_cast<std::size_t>(i)] = static_cast<std::int32_t>(1024.0 * (1.0 + std::cos(angle)));
  }
}

int EqResponse::PointOf(std::int32_t frequency_hz) {
  if (frequency_hz <= 0) return 0;
  return static_cast<int>(std::lround(kLastPoint * std::log(frequency_hz / 20.0) / std::log(1000.0)));
}

void EqResponse::Add(const EqBand& band) {
  if (band.enable == 0 || band.gain == 0) return;
  const EqBand legal = Legal(band);
  if (band.IsBand()) return AddBell(legal);
  if (band.mode < ui::kBandNode) return AddLowShelf(Shelf(legal));
  AddHighShelf(Shelf(legal));
}

void EqResponse::AddBell(const EqBand& band) {
  const int centre = PointOf(band.frequency);
  const int half = band.bandwidth * kPointsPerBandwidth / 2;
  const auto level = [&](std::int32_t entry) {
    return MulDiv(band.gain, rising_cosine_[static_cast<std::size_t>(entry)], kFullGain);
  };
  for (int j = 0; j < half; ++j) {
    const std::int32_t value = level(MulDiv(j, kTableLength, half));
    if (centre - half + j > 0) AddAt(centre - half + j, value);
    AddAt(centre + half - j, value);
  }
  AddAt(centre, level(kTableLength - 1));
}

// A full cut shows only the half of the transition that lies next to what passes.
void EqResponse::AddLowShelf(const Shelf& shelf) {
  const int start = shelf.centre - shelf.middle;
  const int first = shelf.is_full_cut ? 0 : -shelf.length;
  for (int j = first; j < shelf.length; ++j) AddAt(start + j, shelf.FallAt(j));
  AddPlateau(shelf, start + first - 1, -1);
}

void EqResponse::AddHighShelf(const Shelf& shelf) {
  const int start = shelf.centre + shelf.length - shelf.middle;
  const int end = shelf.is_full_cut ? 0 : shelf.length;
  for (int j = -shelf.length; j < end; ++j) AddAt(start + j, shelf.FallAt(-j));
  AddPlateau(shelf, start + end, 1);
}

// From a point to the last one in this direction. A full cut goes on falling.
void EqResponse::AddPlateau(const Shelf& shelf, int point, int direction) {
  std::int32_t value = shelf.is_full_cut ? shelf.height / 2 : shelf.height;
  for (; direction < 0 ? point >= 0 : point <= kLastPoint; point += direction) {
    AddAt(point, value);
    if (shelf.is_full_cut && value > kFalls * shelf.height) value -= shelf.slope;
  }
}

void EqResponse::AddAt(int point, std::int32_t value) {
  if (point >= 0 && point <= kLastPoint) points_[static_cast<std::size_t>(point)] += value;
}

}  // namespace tervan
