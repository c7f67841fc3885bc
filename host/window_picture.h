// Pictures of windows as they stand on the screen.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

namespace tervan::host {

// What the screen shows there, as the bytes of a PNG file. Throws a Failure.
std::vector<std::uint8_t> PictureOf(const RECT& area);

}  // namespace tervan::host
