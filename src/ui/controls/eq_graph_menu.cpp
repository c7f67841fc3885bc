#include "ui/controls/eq_graph_menu.h"

#include "resources/ids.h"
#include "ui/gdi.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

// In the order of NodeMode.
constexpr UINT kFirstModeItem = ID_EQ_BAND_LOW_SHELF;
constexpr UINT kLastModeItem = ID_EQ_BAND_HIGH_SHELF;
static_assert(kLastModeItem - kFirstModeItem == kHighShelfNode - kLowShelfNode);

void Adapt(HMENU menu, const EqCurveNode& node) {
  if (node.enable == 0) {
    ModifyMenuW(menu, ID_EQ_BAND_TOGGLE, MF_BYCOMMAND | MF_STRING, ID_EQ_BAND_TOGGLE,
                ResourceText(ID_EQ_BAND_TOGGLE).c_str());
    for (UINT id = kFirstModeItem; id <= kLastModeItem; ++id) EnableMenuItem(menu, id, MF_BYCOMMAND | MF_GRAYED);
  }
  if (node.mode >= kLowShelfNode && node.mode <= kHighShelfNode) {
    const UINT id = kFirstModeItem + static_cast<UINT>(node.mode - kLowShelfNode);
    CheckMenuRadioItem(menu, kFirstModeItem, kLastModeItem, id, MF_BYCOMMAND);
  }
}

}  // namespace

int TrackBandMenu(HWND graph, Point screen, const EqCurveNode& node) {
  const MenuHandle bar(LoadMenuW(ResourceModule(), MAKEINTRESOURCEW(IDR_EQ_BAND_MENU)));
  const HMENU menu = GetSubMenu(bar.get(), 0);
  if (!menu) return 0;
  Adapt(menu, node);
  return TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, screen.x, screen.y, 0, graph, nullptr);
}

void ApplyBandItem(EqCurveNode& node, int item_id) {
  switch (item_id) {
    case ID_EQ_BAND_TOGGLE: node.enable = node.enable == 0 ? 1 : 0; return;
    case ID_EQ_BAND_RESET: node.y = 0.0F; return;
    case ID_EQ_BAND_LOW_SHELF: node.mode = kLowShelfNode; return;
    case ID_EQ_BAND_BAND: node.mode = kBandNode; return;
    case ID_EQ_BAND_HIGH_SHELF: node.mode = kHighShelfNode; return;
  }
}

}  // namespace tervan::ui
