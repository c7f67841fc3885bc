#include "ui/canvas.h"

#include <algorithm>
#include <cmath>

namespace tervan::ui {
namespace {

constexpr int kFullWeight = 256;

// Ordered dither: the thresholds of a 4 × 4 Bayer matrix, as weights.
constexpr int kThresholds[4][4] = {{8, 136, 40, 168}, {200, 72, 232, 104}, {56, 184, 24, 152}, {248, 120, 216, 88}};

std::uint8_t MixedLevel(int from, int to, int weight) {
  return static_cast<std::uint8_t>((from * (kFullWeight - weight) + to * weight + kFullWeight / 2) / kFullWeight);
}

Colour ColourOf(std::uint32_t pixel) {
  return {static_cast<std::uint8_t>(pixel >> 16), static_cast<std::uint8_t>(pixel >> 8),
          static_cast<std::uint8_t>(pixel)};
}

// Where a place lies between the first and the last of so many, as a weight.
int WeightAt(int place, int count) { return count > 1 ? place * kFullWeight / (count - 1) : 0; }

}  // namespace

Colour Mixed(Colour from, Colour to, int weight) {
  return {MixedLevel(from.red, to.red, weight), MixedLevel(from.green, to.green, weight),
          MixedLevel(from.blue, to.blue, weight)};
}

Rect Canvas::Clipped(Rect area) const {
  return {std::max(area.left, 0), std::max(area.top, 0), std::min(area.right, size_.width),
          std::min(area.bottom, size_.height)};
}

Colour Canvas::PixelAt(Point p) const { return ColourOf(pixels_[p.y * size_.width + p.x]); }

void Canvas::Blend(Point p, Colour colour, int weight) {
  std::uint32_t& pixel = pixels_[p.y * size_.width + p.x];
  if (few_colours_) weight = weight > kThresholds[p.y & 3][p.x & 3] ? kFullWeight : 0;
  pixel = PixelOf(Mixed(ColourOf(pixel), colour, weight));
}

void Canvas::Fill(Rect area, Colour colour) {
  const Rect clipped = Clipped(area);
  for (int y = clipped.top; y < clipped.bottom && clipped.left < clipped.right; ++y) {
    std::uint32_t* const row = pixels_ + y * size_.width;
    std::fill(row + clipped.left, row + clipped.right, PixelOf(colour));
  }
}

// A plain loop: the areas are as narrow as a pixel.
void Canvas::CopyFrom(const std::uint32_t* picture, Rect area) {
  const Rect clipped = Clipped(area);
  for (int y = clipped.top; y < clipped.bottom; ++y) {
    const int row = y * size_.width;
    for (int x = clipped.left; x < clipped.right; ++x) pixels_[row + x] = picture[row + x];
  }
}

void Canvas::FillGradient(Rect area, Colour first, Colour second, Direction direction) {
  Fill(area, first);
  const Rect clipped = Clipped(area);
  for (int y = clipped.top; y < clipped.bottom; ++y) {
    for (int x = clipped.left; x < clipped.right; ++x) {
      const int weight = direction == Direction::kAcross ? WeightAt(x - area.left, area.Width())
                                                         : WeightAt(y - area.top, area.Height());
      Blend({x, y}, second, weight);
    }
  }
}

// The distance of the pixel's middle from the edge of its corner's circle; one pixel of smooth edge.
int Canvas::Coverage(Rect area, int radius_px, Point p) {
  const auto beyond = [radius_px](int place, int low, int high) {
    return std::max({low + radius_px - (place + 0.5), place + 0.5 - (high - radius_px), 0.0});
  };
  const double across = beyond(p.x, area.left, area.right);
  const double down = beyond(p.y, area.top, area.bottom);
  if (across == 0.0 || down == 0.0) return kFullWeight;
  const double inside = radius_px - std::hypot(across, down) + 0.5;
  return static_cast<int>(std::clamp(inside, 0.0, 1.0) * kFullWeight);
}

void Canvas::FillRounded(Rect area, int radius_px, Colour top, Colour bottom, int weight) {
  const Rect clipped = Clipped(area);
  for (int y = clipped.top; y < clipped.bottom; ++y) {
    const Colour colour = Mixed(top, bottom, WeightAt(y - area.top, area.Height()));
    for (int x = clipped.left; x < clipped.right; ++x) {
      Blend({x, y}, colour, Coverage(area, radius_px, {x, y}) * weight / kFullWeight);
    }
  }
}

void Canvas::StrokeRounded(Rect area, int radius_px, int width_px, Colour colour) {
  const Rect clipped = Clipped(area);
  const Rect inner = area.Inset(width_px);
  const int inner_radius_px = std::max(radius_px - width_px, 0);
  for (int y = clipped.top; y < clipped.bottom; ++y) {
    for (int x = clipped.left; x < clipped.right; ++x) {
      const int hole = inner.Contains({x, y}) ? Coverage(inner, inner_radius_px, {x, y}) : 0;
      Blend({x, y}, colour, std::max(Coverage(area, radius_px, {x, y}) - hole, 0));
    }
  }
}

}  // namespace tervan::ui
