// The context menu of a band on the EQ graph.
#pragma once

#include <windows.h>

#include "ui/controls/eq_curve.h"
#include "ui/geometry.h"

namespace tervan::ui {

// Shows the menu until the user is through with it. The number of the chosen item; 0: none. Whatever else happens
// meanwhile, graph and node may be gone afterwards.
int TrackBandMenu(HWND graph, Point screen, const EqCurveNode& node);

// What the item does to the node; other numbers do nothing.
void ApplyBandItem(EqCurveNode& node, int item_id);

}  // namespace tervan::ui
