#include "ui/controls/meter_layout.h"

#include <algorithm>

namespace tervan::ui {
namespace {

// At 96 dpi.
constexpr int kBarPx = 7;
constexpr int kLeastBarPx = 3;  // labels give way before bars become thinner
constexpr int kClipPx = 9;
constexpr int kClipGapPx = 2;

constexpr int kEdgePx = 1;  // of the well, at any dpi
constexpr int kBarGapPx = 1;

// With the edges of the well.
int BarsThickness(int channel_count, int bar_px) {
  return 2 * kEdgePx + channel_count * (bar_px + kBarGapPx) - kBarGapPx;
}

// From places along and across the scale, the quiet end and the first channel being 0, to the client area.
Rect Placed(const MeterShape& shape, int along, int along_end, int across, int across_end) {
  if (!shape.is_vertical) return {along, across, along_end, across_end};
  return {across, shape.client.height - along_end, across_end, shape.client.height - along};
}

}  // namespace

int MeterLayout::BarLength() const { return std::max(0, is_vertical ? bars[0].Height() : bars[0].Width()); }

Rect MeterLayout::Slice(const Rect& area, int from_px, int to_px) const {
  if (is_vertical) return {area.left, bars[0].bottom - to_px, area.right, bars[0].bottom - from_px};
  return {bars[0].left + from_px, area.top, bars[0].left + to_px, area.bottom};
}

std::optional<int> MeterLayout::ClipAt(Point p) const {
  for (int channel = 0; channel < channel_count; ++channel) {
    if (clips[static_cast<std::size_t>(channel)].Contains(p)) return channel;
  }
  return std::nullopt;
}

MeterLayout ArrangeMeter(const MeterShape& shape) {
  const auto [width, height] = shape.client;
  const int length = shape.is_vertical ? height : width;
  const int thickness = shape.is_vertical ? width : height;
  // A meter without channels has a scale all the same: that of one channel.
  const int shares = std::max(shape.channel_count, 1);
  const int least_px = BarsThickness(shares, kLeastBarPx);
  const bool has_labels = shape.label_strip_px > 0 && thickness - shape.label_strip_px >= least_px;

  // All bars are equally thick; what is left over stays below them.
  const int room = thickness - (has_labels ? shape.label_strip_px : 0) - 2 * kEdgePx + kBarGapPx;
  const int pitch = std::max(room / shares, 1);
  const int bar_px = pitch > 2 * kBarGapPx ? pitch - kBarGapPx : pitch;
  const int well_px = 2 * kEdgePx + (shares - 1) * pitch + bar_px;

  const int clip_px = shape.has_clip_indicators ? AtDpi(kClipPx, shape.dpi) : 0;
  const int clip_gap_px = shape.has_clip_indicators ? AtDpi(kClipGapPx, shape.dpi) : 0;
  const int bar_end = std::max(length - kEdgePx - clip_px - clip_gap_px, kEdgePx);

  MeterLayout layout{.is_vertical = shape.is_vertical,
                     .channel_count = shape.channel_count,
                     .client = {0, 0, width, height},
                     .well = Placed(shape, 0, length, 0, well_px),
                     .bars = {},
                     .clips = {},
                     .labels = {}};
  if (has_labels) layout.labels = Placed(shape, 0, length, well_px, well_px + shape.label_strip_px);
  for (int channel = 0; channel < shares; ++channel) {
    // What a tiny window has no room for is empty, never outside.
    const int across = std::min(kEdgePx + pitch * channel, thickness);
    const int across_end = std::min(across + bar_px, thickness);
    const auto c = static_cast<std::size_t>(channel);
    layout.bars[c] = Placed(shape, kEdgePx, bar_end, across, across_end);
    if (clip_px > 0) {
      const int clip_start = std::max(length - kEdgePx - clip_px, bar_end);
      layout.clips[c] = Placed(shape, clip_start, length - kEdgePx, across, across_end);
    }
  }
  return layout;
}

int PreferredMeterThickness(int channel_count, int label_strip_px, int dpi) {
  return BarsThickness(std::max(channel_count, 1), AtDpi(kBarPx, dpi)) + label_strip_px;
}

}  // namespace tervan::ui
