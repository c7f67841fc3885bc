// Drawing on 32-bit pixels in memory: what the platform's own drawing cannot do, smooth edges and gradients.
#pragma once

#include <cstdint>

#include "ui/geometry.h"

namespace tervan::ui {

struct Colour {
  std::uint8_t red;
  std::uint8_t green;
  std::uint8_t blue;
  bool operator==(const Colour&) const = default;
};

inline constexpr Colour kBlack{0, 0, 0};
inline constexpr Colour kWhite{255, 255, 255};

// As a canvas keeps it.
constexpr std::uint32_t PixelOf(Colour c) { return std::uint32_t{c.red} << 16 | std::uint32_t{c.green} << 8 | c.blue; }

// From one colour to the other: weight 0 to 256.
Colour Mixed(Colour from, Colour to, int weight);

enum class Direction { kAcross, kDown };

// Everything is clipped to the pixels that there are; empty shapes draw nothing.
class Canvas {
 public:
  // Rows of width pixels without gaps, the top one first; a pixel is 0x00RRGGBB. The pixels are the caller's.
  Canvas(std::uint32_t* pixels, Size size) : pixels_(pixels), size_(size) {}

  // For screens with few colours: mixed colours become patterns of the two that are mixed.
  void SetFewColours(bool few_colours) { few_colours_ = few_colours; }

  Size size() const { return size_; }
  const std::uint32_t* pixels() const { return pixels_; }
  Colour PixelAt(Point p) const;

  void Fill(Rect area, Colour colour);
  // What a picture of the canvas' size shows there.
  void CopyFrom(const std::uint32_t* picture, Rect area);
  // The first colour at the left or top edge, the second one at the other.
  void FillGradient(Rect area, Colour first, Colour second, Direction direction);
  // Corners of this radius, with smooth edges; filled from top to bottom. With less than the full weight, the ground
  // shines through.
  void FillRounded(Rect area, int radius_px, Colour top, Colour bottom, int weight = 256);
  // A ring of this width inside the area.
  void StrokeRounded(Rect area, int radius_px, int width_px, Colour colour);

 private:
  // How much of the pixel lies inside the rounded area, 0 to 256.
  static int Coverage(Rect area, int radius_px, Point p);
  void Blend(Point p, Colour colour, int weight);
  Rect Clipped(Rect area) const;

  std::uint32_t* pixels_;
  Size size_;
  bool few_colours_ = false;
};

}  // namespace tervan::ui
