// What one control is for, in a sentence or two beside it.
#pragma once

#include <windows.h>

#include <string>

#include "ui/control_window.h"

namespace tervan::ui {

// Shows the text near this part of the screen until a key, a click or another window comes in between. It takes the
// focus and gives it back. Nothing is shown for an empty text.
void ShowHelpPopup(HWND owner, const RECT& near_bounds, const std::wstring& text);

// The window class of the popup, registered when it is first shown.
void UnregisterHelpPopup();

}  // namespace tervan::ui
