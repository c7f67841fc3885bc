// Draws an EQ graph's nodes.
#pragma once

#include <windows.h>

#include "ui/controls/eq_graph_mapping.h"
#include "ui/gdi.h"

namespace tervan::ui {

class EqNodePainter {
 public:
  EqNodePainter();

  // In order, up to the first one that lies right of the scale.
  void Paint(HDC dc, const EqGraphScale& scale, const EqCurve& curve);

 private:
  void DrawGlyphs(HDC dc, const EqGraphScale& scale, const EqCurve& curve) const;
  void DrawImages(HDC dc, const EqGraphScale& scale, const EqCurve& curve);

  const FontHandle glyphs_;  // null: small pictures instead
  int glyph_height_px_ = 0;
  BitmapHandle images_;  // made when they are first needed
};

}  // namespace tervan::ui
