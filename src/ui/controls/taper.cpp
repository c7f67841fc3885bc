#include "ui/controls/taper.h"

#include <algorithm>
#include <array>
#include <functional>
#include <span>

namespace tervan::ui {
namespace {

struct TaperPoint {
  std::int64_t value;
  std::int64_t place;
};

constexpr std::array<TaperPoint, 8> kTimesAndLevelsPoints{
    {{0, 0}, {30, 250}, {60, 400}, {120, 500}, {250, 600}, {400, 800}, {700, 950}, {1000, 1000}}};

constexpr std::array<TaperPoint, 15> kFrequencyPoints{{{0, 0},
                                                       {20, 1000},
                                                       {40, 2000},
                                                       {80, 3000},
                                                       {160, 4000},
                                                       {320, 5000},
                                                       {640, 6000},
                                                       {1280, 7000},
                                                       {2560, 8000},
                                                       {5120, 9000},
                                                       {10240, 10000},
                                                       {20480, 11000},
                                                       {40960, 12000},
                                                       {81920, 13000},
                                                       {163840, 14000}}};

using Coordinate = std::int64_t TaperPoint::*;

constexpr bool Rises(std::span<const TaperPoint> points) {
  return std::ranges::is_sorted(points, std::ranges::less_equal{}, &TaperPoint::value) &&
         std::ranges::is_sorted(points, std::ranges::less_equal{}, &TaperPoint::place);
}
static_assert(Rises(kTimesAndLevelsPoints) && Rises(kFrequencyPoints));

std::span<const TaperPoint> PointsOf(Taper taper) {
  switch (taper) {
    case Taper::kNone: break;
    case Taper::kTimesAndLevels: return kTimesAndLevelsPoints;
    case Taper::kFrequencies: return kFrequencyPoints;
  }
  return {};
}

std::int64_t Interpolated(std::span<const TaperPoint> points, Coordinate from, Coordinate to, std::int64_t number) {
  const std::int64_t size = number < 0 ? -number : number;
  const auto above = std::ranges::find_if(points, [&](const TaperPoint& point) { return size <= point.*from; });
  if (above == points.begin() || above == points.end()) return number;  // 0, or beyond the table
  const TaperPoint& high = *above;
  const TaperPoint& low = *(above - 1);
  const std::int64_t place = low.*to + (size - low.*from) * (high.*to - low.*to) / (high.*from - low.*from);
  return number < 0 ? -place : place;
}

}  // namespace

std::int64_t Tapered(Taper taper, std::int64_t value) {
  return Interpolated(PointsOf(taper), &TaperPoint::value, &TaperPoint::place, value);
}

std::int64_t Untapered(Taper taper, std::int64_t place) {
  return Interpolated(PointsOf(taper), &TaperPoint::place, &TaperPoint::value, place);
}

}  // namespace tervan::ui
