// The display ranges that a level meter offers in its menu.
#pragma once

#include <array>
#include <cstdint>

#include "resources/ids.h"

namespace tervan::ui {

struct MeterRange {
  int item_id;
  std::int32_t ratio;  // of full scale to the quietest amplitude that is shown
};

// As in the menu: every 6 dB are a factor of 2.
inline constexpr std::array kMeterRanges{
    MeterRange{ID_METER_RANGE_12_DB, 1 << 2},   MeterRange{ID_METER_RANGE_24_DB, 1 << 4},
    MeterRange{ID_METER_RANGE_42_DB, 1 << 7},   MeterRange{ID_METER_RANGE_60_DB, 1 << 10},
    MeterRange{ID_METER_RANGE_78_DB, 1 << 13},  MeterRange{ID_METER_RANGE_90_DB, 1 << 15},
    MeterRange{ID_METER_RANGE_120_DB, 1 << 20}, MeterRange{ID_METER_RANGE_138_DB, 1 << 23},
};

// A meter of so few steps cannot show more.
constexpr bool IsOffered(const MeterRange& range, std::int32_t steps) { return range.ratio <= steps; }

// The range that is shown now. A meter that shows all it has marks the range that comes closest.
constexpr bool IsMarked(const MeterRange& range, std::int32_t steps, std::uint32_t display_range) {
  const auto all = static_cast<std::uint32_t>(steps);
  if (static_cast<std::uint32_t>(range.ratio) == display_range) return true;
  return (display_range == 0 || display_range == all) && range.ratio <= steps && range.ratio >= steps - range.ratio;
}

// What the display range becomes when this one is chosen: 0, everything, where there is nothing beyond it.
constexpr std::uint32_t DisplayRangeOf(const MeterRange& range, std::int32_t steps) {
  return range.ratio < steps ? static_cast<std::uint32_t>(range.ratio) : 0;
}

}  // namespace tervan::ui
