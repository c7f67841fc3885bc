#include "ui/controls/slider_layout.h"

#include <algorithm>

namespace tervan::ui {
namespace {

// Pixels at 96 dpi.
struct Measures {
  int thumb_along;
  int thumb_across;
  int end_margin;  // from the window's edge to the first place of the thumb's middle
  int channel;     // thickness
};

constexpr int kRing = 1;  // room on both sides of the thumb for that of the focus

constexpr Measures kTrackbarMeasures = {.thumb_along = 10, .thumb_across = 30, .end_margin = 6, .channel = 5};
constexpr Measures kFaderMeasures = {.thumb_along = 14, .thumb_across = 30, .end_margin = 8, .channel = 8};

// At most the room there is, and a whole number of pixels on both sides of it.
int Centred(int wanted_px, int room_px) {
  const int length = std::min(wanted_px, room_px);
  return length + ((room_px - length) & 1);
}

}  // namespace

Rect SliderLayout::Between(int from_px, int to_px) const {
  if (is_vertical) return {client.left, track_start - to_px, client.right, track_start - from_px};
  return {track_start + from_px, client.top, track_start + to_px, client.bottom};
}

Rect SliderLayout::ThumbAt(int pixel, int thumb, int thumb_count) const {
  const int before = pixel - (is_vertical ? thumb_along_px - thumb_along_px / 2 : thumb_along_px / 2);
  Rect rect = Between(before, before + thumb_along_px);
  const int first_part = thumb_across_px * thumb / thumb_count;
  const int last_part = thumb_across_px * (thumb + 1) / thumb_count;
  if (is_vertical) {
    const int edge = (client.Width() - thumb_across_px) / 2;
    rect.left = edge + first_part;
    rect.right = edge + last_part;
  } else {
    const int edge = (client.Height() - thumb_across_px) / 2;
    rect.top = edge + first_part;
    rect.bottom = edge + last_part;
  }
  return rect;
}

int SliderLayout::PixelAt(Point p) const { return is_vertical ? track_start - p.y : p.x - track_start; }

Point SliderLayout::MovedTo(Point p, int pixel) const {
  return is_vertical ? Point{p.x, track_start - pixel} : Point{track_start + pixel, p.y};
}

SliderLayout LayOutSlider(SliderKind kind, bool is_vertical, Size client, int dpi) {
  const Measures& measures = kind == SliderKind::kTrackbar ? kTrackbarMeasures : kFaderMeasures;
  const Size size = {std::max(client.width, 0), std::max(client.height, 0)};
  const int along = is_vertical ? size.height : size.width;
  const int across = is_vertical ? size.width : size.height;
  const int margin = std::min(AtDpi(measures.end_margin, dpi), along / 2);
  const int thickness = Centred(AtDpi(measures.channel, dpi), across);

  SliderLayout layout;
  layout.is_vertical = is_vertical;
  layout.client = {0, 0, size.width, size.height};
  layout.track_start = is_vertical ? along - margin : margin;
  layout.track_px = along - 2 * margin;
  layout.thumb_along_px = std::min(AtDpi(measures.thumb_along, dpi), along);
  layout.thumb_across_px = Centred(AtDpi(measures.thumb_across, dpi), std::max(across - 2 * AtDpi(kRing, dpi), 0));
  layout.channel = layout.Between(-std::min(thickness / 2, margin), layout.track_px + std::min(thickness / 2, margin));
  const int edge = (across - thickness) / 2;
  if (is_vertical) {
    layout.channel.left = edge;
    layout.channel.right = edge + thickness;
  } else {
    layout.channel.top = edge;
    layout.channel.bottom = edge + thickness;
  }
  return layout;
}

}  // namespace tervan::ui
