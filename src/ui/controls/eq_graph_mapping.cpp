#include "ui/controls/eq_graph_mapping.h"

#include <algorithm>
#include <cmath>

namespace tervan::ui {
namespace {

constexpr int kLowestPixel = -16384;
constexpr int kHighestPixel = 16383;
constexpr int kReachPx = 7;         // of a node, in all four directions
constexpr double kWidthSweeps = 4;  // the whole range of widths, so many times across the plot

// The limits may be in any order, and no numbers at all: a NaN becomes the lower limit.
template <class T>
T Limited(T value, T low, T high) {
  return std::max(low, std::min(value, high));
}

int PixelFrom(std::int64_t pixel) {
  return static_cast<int>(Limited<std::int64_t>(pixel, kLowestPixel, kHighestPixel));
}

std::int64_t AcrossTimesWidth(const EqGraphScale& scale, std::int32_t x) {
  return (std::int64_t{x} - scale.x_origin) * scale.plot.Width();
}

int PixelX(const EqGraphScale& scale, std::int32_t x) {
  if (scale.x_span == 0) return scale.plot.left;
  return PixelFrom(scale.plot.left + AcrossTimesWidth(scale, x) / scale.x_span);
}

int RoundedPixelX(const EqGraphScale& scale, std::int32_t x) {
  if (scale.x_span == 0) return scale.plot.left;
  const double across = static_cast<double>(AcrossTimesWidth(scale, x)) / static_cast<double>(scale.x_span);
  return PixelFrom(scale.plot.left + std::llround(across));
}

int PixelY(const EqGraphScale& scale, const EqCurve& curve, float y) {
  const double range = double{curve.y_maximum} - curve.y_minimum;
  if (range == 0.0) return scale.plot.bottom;
  const double pixel = scale.plot.bottom - (double{y} - curve.y_minimum) * scale.plot.Height() / range;
  return static_cast<int>(Limited<double>(pixel, kLowestPixel, kHighestPixel));
}

std::int32_t XAt(const EqGraphScale& scale, const EqCurve& curve, int pixel) {
  const std::int64_t width = scale.plot.Width();
  const std::int64_t across = width != 0 ? (pixel - scale.plot.left) * scale.x_span / width : 0;
  return static_cast<std::int32_t>(Limited<std::int64_t>(scale.x_origin + across, curve.x_minimum, curve.x_maximum));
}

float YAt(const EqGraphScale& scale, const EqCurve& curve, int pixel) {
  const double range = double{curve.y_maximum} - curve.y_minimum;
  const double height = scale.plot.Height();
  const double y = height != 0.0 ? curve.y_minimum + (scale.plot.bottom - pixel) * range / height : curve.y_minimum;
  return static_cast<float>(Limited<double>(y, curve.y_minimum, curve.y_maximum));
}

float WidthAt(const EqGraphScale& scale, const EqCurve& curve, const EqCurveNode& node, float first_width,
              Point pointer) {
  const int width_px = scale.plot.Width();
  if (width_px == 0) return first_width;
  const int distance_px = pointer.x - RoundedPixelX(scale, node.x) + PixelY(scale, curve, node.y) - pointer.y;
  const double per_pixel = (double{curve.width_maximum} - curve.width_minimum) * kWidthSweeps / width_px;
  return static_cast<float>(
      Limited<double>(first_width + distance_px * per_pixel, curve.width_minimum, curve.width_maximum));
}

}  // namespace

EqGraphScale ScaleOver(std::span<EqCurve* const> curves, Rect plot) {
  if (curves.empty()) return {.plot = plot};
  const std::int64_t first = (*std::ranges::min_element(curves, {}, &EqCurve::x_minimum))->x_minimum;
  const std::int64_t last = (*std::ranges::max_element(curves, {}, &EqCurve::x_maximum))->x_maximum;
  return {.plot = plot, .x_origin = static_cast<std::int32_t>(first), .x_span = last - first};
}

std::uint32_t NodeCount(const EqCurve& curve) { return std::min(curve.node_count, kMaxNodes); }

Point NodePixel(const EqGraphScale& scale, const EqCurve& curve, const EqCurveNode& node) {
  return {PixelX(scale, node.x), PixelY(scale, curve, node.y)};
}

Rect NodeSquare(Point node_pixel) {
  return Rect{node_pixel.x, node_pixel.y, node_pixel.x, node_pixel.y}.Inset(-kReachPx);
}

std::optional<std::uint32_t> NodeAt(const EqGraphScale& scale, const EqCurve& curve, Point pointer) {
  for (std::uint32_t i = 0; i < NodeCount(curve); ++i) {
    if (NodeSquare(NodePixel(scale, curve, curve.nodes[i])).Contains(pointer)) return i;
  }
  return std::nullopt;
}

bool IsShown(const EqGraphScale& scale, const EqCurveNode& node) { return node.x <= scale.x_origin + scale.x_span; }

Point LimitedTo(Rect plot, Point pointer) {
  return {Limited(pointer.x, plot.left, plot.right), Limited(pointer.y, plot.top, plot.bottom)};
}

void DragNode(const EqGraphScale& scale, EqCurve& curve, std::uint32_t node, float first_width, Point pointer,
              HeldKeys keys) {
  if (node >= NodeCount(curve)) return;
  EqCurveNode& dragged = curve.nodes[node];
  const Point limited = LimitedTo(scale.plot, pointer);
  if (keys.alt) {
    dragged.width = WidthAt(scale, curve, dragged, first_width, limited);
    return;
  }
  if (!keys.ctrl || keys.shift) dragged.x = XAt(scale, curve, limited.x);
  if (!keys.ctrl || !keys.shift) dragged.y = YAt(scale, curve, limited.y);
}

void MarkSelected(EqCurve& curve, std::uint32_t node) {
  curve.selected_node = node < NodeCount(curve) ? node : kNoNode;
  for (std::uint32_t i = 0; i < kMaxNodes; ++i) curve.nodes[i].selected = i == curve.selected_node ? 1 : 0;
}

}  // namespace tervan::ui
