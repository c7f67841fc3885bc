#include "ui/controls/meter_menu.h"

#include "ui/controls/meter_ranges.h"
#include "ui/gdi.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

bool IsSeparator(HMENU menu, int position) {
  return (GetMenuState(menu, static_cast<UINT>(position), MF_BYPOSITION) & MF_SEPARATOR) != 0;
}

// Nothing is separated from nothing.
void RemoveIdleSeparators(HMENU menu) {
  for (int position = GetMenuItemCount(menu) - 1; position >= 0; --position) {
    if (IsSeparator(menu, position) && (position == 0 || IsSeparator(menu, position - 1))) {
      RemoveMenu(menu, static_cast<UINT>(position), MF_BYPOSITION);
    }
  }
}

void Adapt(HMENU menu, const MeterMenuState& state) {
  if ((state.style & kMeterClip) == 0) RemoveMenu(menu, ID_METER_RESET_CLIP, MF_BYCOMMAND);
  for (const MeterRange& range : kMeterRanges) {
    const auto id = static_cast<UINT>(range.item_id);
    if (!IsOffered(range, state.steps)) {
      RemoveMenu(menu, id, MF_BYCOMMAND);
    } else if (IsMarked(range, state.steps, state.display_range)) {
      CheckMenuRadioItem(menu, id, id, id, MF_BYCOMMAND);
    }
  }
  for (const MeterToggle& toggle : kMeterToggles) {
    CheckMenuItem(menu, static_cast<UINT>(toggle.item_id),
                  (state.style & toggle.style) != 0 ? MF_CHECKED : MF_UNCHECKED);
  }
  RemoveIdleSeparators(menu);
}

}  // namespace

int TrackMeterMenu(HWND meter, Point screen, const MeterMenuState& state) {
  const MenuHandle bar(LoadMenuW(ResourceModule(), MAKEINTRESOURCEW(IDR_METER_MENU)));
  const HMENU menu = GetSubMenu(bar.get(), 0);
  if (!menu) return 0;
  Adapt(menu, state);
  constexpr UINT kFlags = TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON;
  return TrackPopupMenu(menu, kFlags, screen.x, screen.y, 0, meter, nullptr);
}

}  // namespace tervan::ui
