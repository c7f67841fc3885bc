// The tabs on the EQ page, one for each band: its number, in the look that its handle on the graph has.
#pragma once

#include <windows.h>

#include "effects/eq/eq_page_graph.h"
#include "ui/gdi.h"

namespace tervan {

class EqPageTabs {
 public:
  // At the bottom edge of the box, behind this control in the order of the Tab key. False when they cannot be made.
  bool Create(HWND dialog, int tabs_id, int box_id, int behind_id);

  // Disabled bands look different where there is a font for it.
  void Show(const EqBands& bands) const;

  // -1: none.
  int Selected() const;
  void Select(int band) const;

 private:
  HWND window_ = nullptr;
  ui::FontHandle glyph_font_;  // null: plain digits
};

}  // namespace tervan
