// Where everything lies on the logo strip: painting and hit test both go by this.
#pragma once

#include <span>
#include <vector>

#include "ui/geometry.h"

namespace tervan::ui {

// What an item holds: the width of its text, or the size of its image.
struct LogoItemContent {
  bool is_text;
  Size size;
};

struct LogoLayout {
  Rect picture;
  Rect title;               // empty when nothing is left for it
  std::vector<Rect> items;  // in the order in which they were added; empty rectangles where no space is left
};

// The picture at the left end, items from the right end leftwards with the last one rightmost, the title between them.
// Items come before the picture where there is not enough space for both.
LogoLayout LayOutLogo(Size client, Size picture, std::span<const LogoItemContent> items, int dpi);

enum class LogoPart { kNone, kItem, kPicture, kTitle };

struct LogoHit {
  LogoPart part = LogoPart::kNone;
  int item = -1;  // counts from 0
  bool operator==(const LogoHit&) const = default;
};

LogoHit HitLogo(const LogoLayout& layout, Point point);

}  // namespace tervan::ui
