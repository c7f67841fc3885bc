// The window classes of all controls: there from the time the module is loaded until it is unloaded.
#pragma once

#include <windows.h>

namespace tervan::ui {

// A class that cannot be registered is left out.
void RegisterControls(HINSTANCE module);
void UnregisterControls(HINSTANCE module);

}  // namespace tervan::ui
