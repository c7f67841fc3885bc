// What lies where in a packed device-independent bitmap: header, colour table, rows.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "ui/geometry.h"

namespace tervan::ui {

struct DibFormat {
  Size size;
  std::size_t pixels_at;  // bytes from the header
};

// Nothing for what cannot be drawn as it stands: a header of another size than 40 bytes, compressed rows, rows from the
// top down, or fewer bytes than the header promises.
std::optional<DibFormat> FormatOfDib(std::span<const std::byte> dib);

}  // namespace tervan::ui
