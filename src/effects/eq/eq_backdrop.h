// What the EQ page's graph shows behind its nodes: the response as a filled curve in shades of blue on white.
#pragma once

#include <cstdint>
#include <vector>

#include "effects/eq/eq_response.h"
#include "ui/canvas.h"

namespace tervan {

// The shades, dark at the left: pixels as of a Canvas of this size. The same size gives the same pixels. May throw
// std::bad_alloc.
std::vector<std::uint32_t> MakeEqShades(ui::Size size);

// All of the canvas: the shades where the curve is filled, from the centre line to the response, white elsewhere, and
// a black centre line. shades: as many pixels as the canvas has.
void PaintEqResponse(ui::Canvas& canvas, const EqResponse& response, const std::uint32_t* shades);

}  // namespace tervan
