// What a strip of tabs looks like.
#pragma once

#include <windows.h>

#include <span>
#include <string>

#include "ui/canvas.h"

namespace tervan::ui {

struct TabStripScene {
  std::span<const Rect> tabs;
  std::span<const std::wstring> texts;
  HFONT font;
  int selected;  // or -1
  int hot;       // under the mouse, or -1
  bool is_focused;
  bool is_enabled;
  int dpi;
};

// Draws all of the client area, whose top edge lies on the bottom line of the box above. The canvas holds the pixels
// that dc draws on.
void PaintTabStrip(HDC dc, Canvas& canvas, Rect client, const TabStripScene& scene);

}  // namespace tervan::ui
