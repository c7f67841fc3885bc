// What all windows of the module share: where its resources lie, its fonts and its hand cursor.
#pragma once

#include <windows.h>

#include <string>

namespace tervan::ui {

// Called while the module is loaded and unloaded. Fonts and cursor are made when they are first asked for: a host that
// shows no window does not pay for them.
void StartUi(HINSTANCE module);
void EndUi();

HINSTANCE ResourceModule();
std::wstring ResourceText(UINT string_id);  // empty when there is none

// These belong to the library; null when the system is out of them. [window threads]
HFONT TitleFont();
HFONT SmallFont();
HFONT ScaleFont();  // numbers along an axis
HCURSOR HandCursor();

}  // namespace tervan::ui
