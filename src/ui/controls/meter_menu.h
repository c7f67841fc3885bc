// The level meter's context menu.
#pragma once

#include <windows.h>

#include <cstdint>

namespace tervan::ui {

struct MeterMenuState {
  std::int32_t steps;
  std::uint32_t display_range;
  DWORD style;
};

// Shows the menu until the user is through with it. The number of the chosen item; 0: none. Whatever else happens
// meanwhile, the meter may be gone afterwards.
int TrackMeterMenu(HWND meter, POINT screen, const MeterMenuState& state);

// Tells the target of the item that is highlighted in the meter's menu.
void SendMenuHelp(HWND target, HWND meter, UINT item_id, UINT flags, HMENU menu);

}  // namespace tervan::ui
