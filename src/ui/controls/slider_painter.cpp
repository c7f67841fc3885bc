#include "ui/controls/slider_painter.h"

#include <algorithm>

#include "ui/controls/slider_ticks.h"

namespace tervan::ui {
namespace {

// Pixels at 96 dpi.
constexpr int kCapRadius = 3;
constexpr int kLine = 1;
constexpr int kIndexWidth = 2;
constexpr int kIndexMargin = 4;  // from the ends of the line to the edges of the cap
constexpr int kTickGap = 3;      // between channel and tick
constexpr int kLeastTickDistance = 5;
constexpr int kMajorTick = 7;
constexpr int kMinorTick = 4;

// A line across the cap, so many pixels from its left or top edge.
Rect LineAcross(Rect cap, bool is_vertical, int start, int width, int margin) {
  if (is_vertical) return {cap.left + margin, cap.top + start, cap.right - margin, cap.top + start + width};
  return {cap.left + start, cap.top + margin, cap.left + start + width, cap.bottom - margin};
}

class Painter {
 public:
  Painter(Canvas& canvas, const SliderState& slider, const SliderLook& look)
      : canvas_(canvas), slider_(slider), layout_(slider.layout), look_(look), palette_(look.palette) {}

  void Paint() {
    canvas_.Fill(layout_.client, look_.background);
    if (look_.has_ticks) PaintTicks();
    PaintChannel();
    for (int thumb = 0; thumb < slider_.thumb_count; ++thumb) PaintThumb(thumb);
  }

 private:
  int At(int px) const { return std::max(AtDpi(px, look_.dpi), 1); }
  bool IsFlat() const { return palette_.is_high_contrast || !look_.is_enabled; }
  Colour Lighter(int weight) const { return Mixed(palette_.face, kWhite, weight); }
  Colour Darker(int weight) const { return Mixed(palette_.face, kBlack, weight); }
  Colour Outline() const { return look_.is_enabled ? palette_.text : palette_.disabled_text; }

  static Rect Shifted(Rect r, int down) { return {r.left, r.top + down, r.right, r.bottom + down}; }
  // The part of the channel from this to that pixel of the track, without its edge.
  Rect ChannelPart(int from_px, int to_px) const;
  void PaintTicks();
  void PaintTick(const SliderTick& tick);
  void PaintChannel();
  void PaintFilled(int radius);
  void PaintLevels();
  void PaintThumb(int thumb);
  void PaintFlatCap(Rect cap);
  void PaintCap(Rect cap, bool is_pressed, bool is_hot);
  void PaintGrip(Rect cap);

  Canvas& canvas_;
  const SliderState& slider_;
  const SliderLayout& layout_;
  const SliderLook& look_;
  const Palette& palette_;
};

Rect Painter::ChannelPart(int from_px, int to_px) const {
  const Rect part = layout_.Between(from_px, to_px);
  const Rect inner = layout_.channel.Inset(At(kLine));
  return {std::max(part.left, inner.left), std::max(part.top, inner.top), std::min(part.right, inner.right),
          std::min(part.bottom, inner.bottom)};
}

void Painter::PaintTicks() {
  for (const SliderTick& tick : TicksOf(slider_.scale, layout_.track_px, At(kLeastTickDistance))) PaintTick(tick);
}

void Painter::PaintTick(const SliderTick& tick) {
  const int length = At(tick.is_major ? kMajorTick : kMinorTick);
  const Colour colour = IsFlat()        ? Outline()
                        : tick.is_major ? Mixed(look_.background, palette_.text, 144)
                                        : Mixed(look_.background, palette_.text, 80);
  const Rect middle = layout_.Between(tick.pixel, tick.pixel);
  const Rect& channel = layout_.channel;
  const int gap = At(kTickGap);
  const int line = At(kLine);
  if (layout_.is_vertical) {
    const int top = middle.top - line / 2;
    canvas_.Fill({channel.left - gap - length, top, channel.left - gap, top + line}, colour);
    canvas_.Fill({channel.right + gap, top, channel.right + gap + length, top + line}, colour);
  } else {
    const int left = middle.left - line / 2;
    canvas_.Fill({left, channel.top - gap - length, left + line, channel.top - gap}, colour);
    canvas_.Fill({left, channel.bottom + gap, left + line, channel.bottom + gap + length}, colour);
  }
}

void Painter::PaintChannel() {
  const Rect& channel = layout_.channel;
  const int radius = std::min(channel.Width(), channel.Height()) / 2;
  if (palette_.is_high_contrast) {
    canvas_.Fill(channel, Outline());
    canvas_.Fill(channel.Inset(At(kLine)), palette_.window);
  } else if (!look_.is_enabled) {
    return canvas_.FillRounded(channel, radius, Darker(40), Darker(40));
  } else {
    const Colour lit_edge = Mixed(palette_.face, palette_.highlight, 220);
    canvas_.FillRounded(Shifted(channel, At(kLine)), radius, lit_edge, lit_edge);
    canvas_.FillRounded(channel, radius, palette_.channel_edge, palette_.channel);
  }
  if (look_.is_plain || !look_.is_enabled) return;
  if (slider_.kind == SliderKind::kFader && !palette_.is_high_contrast) {
    PaintLevels();
  } else {
    PaintFilled(radius);
  }
}

// From zero, or from the minimum, to the thumb.
void Painter::PaintFilled(int radius) {
  const SliderScale& scale = slider_.scale;
  const bool spans_zero = scale.minimum < 0 && scale.maximum > 0;
  const int origin = spans_zero ? scale.PixelOf(0, layout_.track_px) : -radius;
  const int thumb = slider_.ThumbPixel(0);
  const Rect filled = ChannelPart(std::min(origin, thumb), std::max(origin, thumb));
  const int corner = palette_.is_high_contrast || spans_zero ? 0 : radius - At(kLine);
  canvas_.FillRounded(filled, corner, palette_.accent, palette_.accent_dim);
}

// Quiet to loud along the whole track; lit as far as the highest thumb.
void Painter::PaintLevels() {
  const int last = layout_.track_px;
  const int loud = last * 3 / 4;
  const Direction direction = layout_.is_vertical ? Direction::kDown : Direction::kAcross;
  const auto fill = [&](Rect part, Colour from, Colour to) {
    canvas_.FillGradient(part, layout_.is_vertical ? to : from, layout_.is_vertical ? from : to, direction);
  };
  const int radius = std::min(layout_.channel.Width(), layout_.channel.Height()) / 2 - At(kLine);
  const Rect low_end = ChannelPart(-radius, last / 2);
  const Rect high_end = ChannelPart(last / 2, last + radius);
  canvas_.FillRounded(low_end, radius, palette_.level_low, palette_.level_low);
  canvas_.FillRounded(high_end, radius, palette_.level_clip, palette_.level_clip);
  fill(ChannelPart(0, loud), palette_.level_low, palette_.level_high);
  fill(ChannelPart(loud, last), palette_.level_high, palette_.level_clip);
  int highest = slider_.ThumbPixel(0);
  for (int thumb = 1; thumb < slider_.thumb_count; ++thumb) highest = std::max(highest, slider_.ThumbPixel(thumb));
  canvas_.FillRounded(ChannelPart(highest, last + radius), radius, palette_.channel, palette_.channel, 208);
}

void Painter::PaintThumb(int thumb) {
  const Rect cap = slider_.ThumbRect(thumb);
  const bool is_pressed = look_.pressed_thumb == thumb;
  const bool is_focused = look_.is_focused && (slider_.thumb_count == 1 || slider_.IsPicked(thumb));
  if (IsFlat()) {
    PaintFlatCap(cap);
  } else {
    PaintCap(cap, is_pressed, look_.hot_thumb == thumb);
    if (slider_.kind == SliderKind::kFader) PaintGrip(cap);
  }
  if (is_focused) {
    canvas_.StrokeRounded(cap.Inset(-At(kLine)), palette_.is_high_contrast ? 0 : At(kCapRadius) + At(kLine),
                          2 * At(kLine), palette_.accent);
  }
  const Colour index = is_pressed ? palette_.accent : look_.is_enabled ? palette_.channel : palette_.disabled_text;
  canvas_.Fill(IndexLine(slider_, thumb, look_.dpi), palette_.is_high_contrast ? Outline() : index);
}

void Painter::PaintFlatCap(Rect cap) {
  const int radius = palette_.is_high_contrast ? 0 : At(kCapRadius);
  canvas_.FillRounded(cap, radius, palette_.face, palette_.face);
  canvas_.StrokeRounded(cap, radius, At(kLine), palette_.is_high_contrast ? Outline() : Darker(70));
}

void Painter::PaintCap(Rect cap, bool is_pressed, bool is_hot) {
  const int radius = At(kCapRadius);
  const int line = At(kLine);
  if (!is_pressed) {
    canvas_.FillRounded(Shifted(cap.Inset(-line), line), radius + line, kBlack, kBlack, 24);
    canvas_.FillRounded(Shifted(cap, line), radius, kBlack, kBlack, 56);
  }
  canvas_.FillRounded(cap, radius, Darker(112), Darker(152));
  const Rect face = cap.Inset(line);
  const int corner = std::max(radius - line, 0);
  if (is_pressed) return canvas_.FillRounded(face, corner, Darker(48), Lighter(40));
  canvas_.FillRounded(face, corner, kWhite, Darker(32));
  const Rect inner = {face.left, face.top + line, face.right, face.bottom};
  canvas_.FillRounded(inner, corner, Lighter(is_hot ? 256 : 140), is_hot ? palette_.face : Darker(44));
}

// Fine lines on both sides of the index line, each a groove with a lit edge.
void Painter::PaintGrip(Rect cap) {
  const int line = At(kLine);
  const int length = layout_.thumb_along_px;
  const int first = length / 4 - line;
  for (const int start : {first, length - first - 2 * line}) {
    const int margin = At(kIndexMargin);
    canvas_.FillRounded(LineAcross(cap, layout_.is_vertical, start, line, margin), 0, kBlack, kBlack, 72);
    canvas_.FillRounded(LineAcross(cap, layout_.is_vertical, start + line, line, margin), 0, kWhite, kWhite, 160);
  }
}

}  // namespace

void PaintSlider(Canvas& canvas, const SliderState& slider, const SliderLook& look) {
  Painter(canvas, slider, look).Paint();
}

Rect IndexLine(const SliderState& slider, int thumb, int dpi) {
  const int length = slider.layout.thumb_along_px;
  int width = AtDpi(kIndexWidth, dpi);
  width += (length - width) & 1;  // exactly in the middle
  return LineAcross(slider.ThumbRect(thumb), slider.layout.is_vertical, (length - width) / 2, width,
                    AtDpi(kIndexMargin, dpi));
}

}  // namespace tervan::ui
