// The level meter's context menu.
#pragma once

#include <windows.h>

#include <cstdint>

#include "resources/ids.h"
#include "ui/controls/meter_messages.h"
#include "ui/geometry.h"

namespace tervan::ui {

// The items that switch a style on and off.
struct MeterToggle {
  int item_id;
  DWORD style;
};
inline constexpr MeterToggle kMeterToggles[] = {{ID_METER_SHOW_LABELS, kMeterShowLabels},
                                                {ID_METER_HOLD_PEAKS, kMeterHoldPeaks},
                                                {ID_METER_HOLD_VALLEYS, kMeterHoldValleys}};

struct MeterMenuState {
  std::int32_t steps;
  std::uint32_t display_range;
  DWORD style;
};

// Shows the menu until the user is through with it. The number of the chosen item; 0: none. Whatever else happens
// meanwhile, the meter may be gone afterwards.
int TrackMeterMenu(HWND meter, Point screen, const MeterMenuState& state);

}  // namespace tervan::ui
