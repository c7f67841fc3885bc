#include "ui/controls/slider_painter.h"

namespace tervan::ui {

Rect IndexLine(const SliderState& slider, int thumb, int dpi) {
  const Rect rect = slider.ThumbRect(thumb);
  const int width = AtDpi(2, dpi);
  const int margin = AtDpi(4, dpi);
  if (slider.layout.is_vertical) {
    const int top = rect.top + (rect.Height() - width) / 2;
    return {rect.left + margin, top, rect.right - margin, top + width};
  }
  const int left = rect.left + (rect.Width() - width) / 2;
  return {left, rect.top + margin, left + width, rect.bottom - margin};
}

void PaintSlider(Canvas& canvas, const SliderState& slider, const SliderLook& look) {
  const Palette& palette = look.palette;
  canvas.Fill(slider.layout.client, look.background);
  canvas.FillRounded(slider.layout.channel, AtDpi(2, look.dpi), palette.channel_edge, palette.channel);
  for (int thumb = 0; thumb < slider.thumb_count; ++thumb) {
    const Rect rect = slider.ThumbRect(thumb);
    canvas.FillRounded(rect, AtDpi(2, look.dpi), palette.highlight, palette.shadow);
    if (look.is_focused) canvas.StrokeRounded(rect, AtDpi(2, look.dpi), AtDpi(1, look.dpi), palette.accent);
    canvas.Fill(IndexLine(slider, thumb, look.dpi), look.is_enabled ? palette.text : palette.disabled_text);
  }
}

}  // namespace tervan::ui
