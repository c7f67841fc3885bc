// The colours and the scale that all controls draw with.
#pragma once

#include <windows.h>

#include "ui/canvas.h"

namespace tervan::ui {

// The user's system colours, and a few of ours that go with them. Where the user asks for high contrast, ours become
// system colours, too, and nothing is shaded.
struct Palette {
  bool is_high_contrast;
  Colour face;  // the page behind everything
  Colour text;
  Colour disabled_text;
  Colour highlight;  // lit edges
  Colour shadow;     // edges away from the light
  Colour window;     // behind text that is edited
  Colour selection;
  Colour channel;  // what thumbs move in and meters stand before: dark, as on studio gear
  Colour channel_edge;
  Colour accent;      // what is set, lit, in focus
  Colour accent_dim;  // the same, further down
  Colour level_low;   // a signal: quiet, near full scale, too loud
  Colour level_high;
  Colour level_clip;
  Colour reduction;  // a gain reduction
};

Palette CurrentPalette();

// Screens of 256 colours or fewer.
bool HasFewColours(HDC dc);

// Dots per inch of the screen; lengths are chosen for 96.
int ScreenDpi();

}  // namespace tervan::ui
