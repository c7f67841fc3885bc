// The platform's frame around property pages.
#pragma once

#include <windows.h>

#include <functional>
#include <span>
#include <string>

namespace tervan::host {

// Shows the pages for the object until the user closes the frame. Needs a single-threaded apartment, in which
// CoCreateInstance finds the pages. Meanwhile on_tick is called some twenty times a second, with the frame's window;
// false from it closes the frame. Throws a Failure when no frame appears, and what on_tick threw.
void ShowPropertyFrame(IUnknown& object, std::span<CLSID> pages, const std::string& title,
                       const std::function<bool(HWND)>& on_tick);

}  // namespace tervan::host
