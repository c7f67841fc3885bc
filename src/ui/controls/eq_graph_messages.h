// The EQ graph as its owner sees it: nodes over a background that the owner paints, dragged by the user.
#pragma once

#include <windows.h>

#include "ui/controls/eq_curve.h"

namespace tervan::ui {

inline constexpr wchar_t kEqGraphClassName[] = L"TrackEQ_Wnd_Class";

// Messages.
inline constexpr UINT kGraphListCurve = 0x601;      // wParam: add or remove; lParam: EqCurve*, to remove all: 0
inline constexpr UINT kGraphSetSpan = 0x603;        // lParam: curve units across the plot
inline constexpr UINT kGraphSetBackground = 0x604;  // wParam: PaintGraphBackground; lParam: context
inline constexpr UINT kGraphGetPlot = 0x605;        // lParam: RECT*
inline constexpr UINT kGraphSelectNode = 0x606;     // lParam: node of the first curve, or kNoNode
inline constexpr UINT kGraphGetSelectedNode = 0x607;

// Paints all of the plot; the window colour lies there already.
using PaintGraphBackground = void(CALLBACK*)(HDC dc, void* context, EqCurve* first_curve, const RECT* plot);

// WM_COMMAND codes; the id is the curve's.
inline constexpr WORD kGraphChanged = 1000;   // a step of a drag, a menu or double click, a drag that is taken back
inline constexpr WORD kGraphSelected = 1001;  // another node, by the user or by message
// The button that dragged or double-clicked is up. Where no drag goes on, a change is an edit by itself.
inline constexpr WORD kGraphEditEnded = 1002;

}  // namespace tervan::ui
