// Lets a page hear when a check box is pressed and when it is let go, not just that it was clicked.
#pragma once

#include <windows.h>

namespace tervan::ui {

// Codes of WM_COMMAND with the check box's id. Button and Space key press it; the focus may go, too, before it is let
// go.
struct PressCommands {
  WORD begin;  // sent first at a press, then
  WORD press;
  WORD end;
};

// From now on the parent gets these, and the check box no longer changes its mark by itself. The codes have to last as
// long as the window.
void SendPressCommands(HWND check_box, const PressCommands& codes);

}  // namespace tervan::ui
