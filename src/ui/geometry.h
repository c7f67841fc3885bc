// Pixels and rectangles of the user interface, without the platform's types.
#pragma once

namespace tervan::ui {

struct Point {
  int x;
  int y;
  bool operator==(const Point&) const = default;
};

struct Size {
  int width;
  int height;
};

// Right and bottom lie outside, as everywhere in the platform.
struct Rect {
  int left;
  int top;
  int right;
  int bottom;

  constexpr int Width() const { return right - left; }
  constexpr int Height() const { return bottom - top; }
  constexpr bool IsEmpty() const { return right <= left || bottom <= top; }
  constexpr bool Contains(Point p) const { return p.x >= left && p.x < right && p.y >= top && p.y < bottom; }
  constexpr Rect Inset(int px) const { return {left + px, top + px, right - px, bottom - px}; }
  bool operator==(const Rect&) const = default;
};

// A length that was chosen for a screen of 96 dpi, on a screen of this one.
constexpr int AtDpi(int px, int dpi) { return (px * dpi + 48) / 96; }

}  // namespace tervan::ui
