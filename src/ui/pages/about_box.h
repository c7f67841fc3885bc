// The box that names the product, its version and its maker.
#pragma once

#include <windows.h>

namespace tervan::ui {

// Modal; other messages are handled meanwhile, so whoever calls may be gone when it returns.
void ShowAboutBox(HWND owner);

}  // namespace tervan::ui
