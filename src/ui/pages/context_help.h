// What one control is for, in a sentence or two beside it.
#pragma once

#include <windows.h>

#include <string>

namespace tervan::ui {

// Shows the text near this part of the screen until a key, a click or another window comes in between. It takes the
// focus and gives it back. Null when there is nothing to show, or no window to show it.
HWND ShowHelpPopup(HWND owner, const RECT& near_bounds, const std::wstring& text);

// For the end of whoever showed it; it may be gone long since.
void CloseHelpPopup(HWND popup);

// The window class of the popup, registered when it is first shown.
void UnregisterHelpPopup();

}  // namespace tervan::ui
