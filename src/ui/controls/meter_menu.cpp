#include "ui/controls/meter_menu.h"

#include "ui/controls/meter_messages.h"
#include "ui/controls/meter_ranges.h"
#include "ui/gdi.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

constexpr int kHelpTextSize = 256;

struct Toggle {
  UINT item_id;
  DWORD style;
};
constexpr Toggle kToggles[] = {{ID_METER_SHOW_LABELS, kMeterShowLabels},
                               {ID_METER_HOLD_PEAKS, kMeterHoldPeaks},
                               {ID_METER_HOLD_VALLEYS, kMeterHoldValleys}};

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
  for (const Toggle& toggle : kToggles) {
    CheckMenuItem(menu, toggle.item_id, (state.style & toggle.style) != 0 ? MF_CHECKED : MF_UNCHECKED);
  }
  RemoveIdleSeparators(menu);
}

}  // namespace

int TrackMeterMenu(HWND meter, POINT screen, const MeterMenuState& state) {
  const MenuHandle bar(LoadMenuW(ResourceModule(), MAKEINTRESOURCEW(IDR_METER_MENU)));
  const HMENU menu = GetSubMenu(bar.get(), 0);
  if (!menu) return 0;
  Adapt(menu, state);
  constexpr UINT kFlags = TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON;
  return TrackPopupMenu(menu, kFlags, screen.x, screen.y, 0, meter, nullptr);
}

void SendMenuHelp(HWND target, HWND meter, UINT item_id, UINT flags, HMENU menu) {
  char help_text[kHelpTextSize];
  if (LoadStringA(ResourceModule(), item_id, help_text, kHelpTextSize) <= 0) help_text[0] = '\0';
  const auto id = static_cast<UINT_PTR>(GetDlgCtrlID(meter));
  MenuHelpNotification notification{{meter, id, kNotifyMenuHelp}, item_id, flags, menu, help_text};
  SendMessageW(target, WM_NOTIFY, id, reinterpret_cast<LPARAM>(&notification));
}

}  // namespace tervan::ui
