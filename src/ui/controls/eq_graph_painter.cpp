#include "ui/controls/eq_graph_painter.h"

#include "resources/ids.h"
#include "ui/band_glyphs.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

constexpr COLORREF kSelected = RGB(200, 0, 0);
constexpr COLORREF kNotSelected = RGB(0, 0, 0);
constexpr COLORREF kBackdrop = RGB(255, 255, 255);

// Rows of the picture, each as high as wide.
constexpr int kImagePx = 8;
constexpr int ImageRow(bool is_enabled, bool is_selected) { return (is_selected ? 2 : 0) + (is_enabled ? 0 : 1); }

class MemoryDc {
 public:
  explicit MemoryDc(HDC like) : dc_(CreateCompatibleDC(like)) {}
  ~MemoryDc() { DeleteDC(dc_); }
  MemoryDc(const MemoryDc&) = delete;
  MemoryDc& operator=(const MemoryDc&) = delete;
  HDC Get() const { return dc_; }

 private:
  const HDC dc_;
};

template <class Draw>
void ForEachShown(const EqGraphScale& scale, const EqCurve& curve, Draw&& draw) {
  for (std::uint32_t i = 0; i < NodeCount(curve) && IsShown(scale, curve.nodes[i]); ++i) {
    draw(i, curve.nodes[i], NodePixel(scale, curve, curve.nodes[i]));
  }
}

void DrawGlyph(HDC dc, Point top, BYTE character, COLORREF colour) {
  SetTextColor(dc, colour);
  const wchar_t text = SymbolCharacter(character);
  ExtTextOutW(dc, top.x, top.y, 0, nullptr, &text, 1, nullptr);
}

}  // namespace

EqNodePainter::EqNodePainter()
    : glyphs_(MakeBandGlyphFont()), glyph_height_px_(glyphs_ ? FontHeight(glyphs_.get()) : 0) {}

void EqNodePainter::Paint(HDC dc, const EqGraphScale& scale, const EqCurve& curve) {
  if (glyphs_) {
    DrawGlyphs(dc, scale, curve);
  } else {
    DrawImages(dc, scale, curve);
  }
}

void EqNodePainter::DrawGlyphs(HDC dc, const EqGraphScale& scale, const EqCurve& curve) const {
  const SelectedObject font(dc, glyphs_.get());
  SetBkMode(dc, TRANSPARENT);
  SetTextAlign(dc, TA_CENTER | TA_TOP);
  ForEachShown(scale, curve, [&](std::uint32_t i, const EqCurveNode& node, Point at) {
    const int top = at.y - glyph_height_px_ / 2;
    DrawGlyph(dc, {at.x, top}, kGlyphBackdrops[0], kBackdrop);
    DrawGlyph(dc, {at.x + 1, top}, kGlyphBackdrops[1], kBackdrop);
    DrawGlyph(dc, {at.x, top}, BandGlyph(static_cast<int>(i), node.enable != 0),
              node.selected != 0 ? kSelected : kNotSelected);
  });
}

void EqNodePainter::DrawImages(HDC dc, const EqGraphScale& scale, const EqCurve& curve) {
  if (!images_) {
    images_.reset(static_cast<HBITMAP>(
        LoadImageW(ResourceModule(), MAKEINTRESOURCEW(IDB_EQ_NODES), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION)));
  }
  const MemoryDc source(dc);
  const SelectedObject images(source.Get(), images_.get());
  SetTextColor(dc, kNotSelected);  // of the dots that the focus rectangle is made of
  SetBkColor(dc, kBackdrop);
  ForEachShown(scale, curve, [&](std::uint32_t, const EqCurveNode& node, Point at) {
    const int row = ImageRow(node.enable != 0, node.selected != 0);
    BitBlt(dc, at.x - kImagePx / 2, at.y - kImagePx / 2, kImagePx, kImagePx, source.Get(), 0, row * kImagePx, SRCCOPY);
    const RECT square = ToRECT(NodeSquare(at));
    if (node.selected != 0) DrawFocusRect(dc, &square);
  });
}

}  // namespace tervan::ui
