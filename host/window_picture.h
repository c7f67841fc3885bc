// Pictures of windows.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

namespace tervan::host {

// The window with its frame as it stands on the screen, as the bytes of a PNG file. Throws a Failure.
std::vector<std::uint8_t> PictureOf(HWND window);

}  // namespace tervan::host
