// The popup menu of a page: the effect's presets, help, about.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include "ui/geometry.h"

namespace tervan::ui {

// Opens at this point of the screen; with a negative coordinate, which means the keyboard, over the upper middle of the
// page. The choice arrives at the page as WM_COMMAND. The page may be gone when this returns.
void ShowPageMenu(HWND page, IUnknown* object, Point at);

// The command of a preset in the menu; an object without presets ignores it.
void ApplyPresetOfCommand(IUnknown* object, int command_id);

}  // namespace tervan::ui
