// Where everything lies on the logo strip: painting and hit test both go by this.
#pragma once

#include <span>
#include <vector>

#include "ui/geometry.h"

namespace tervan::ui {

// What an item holds: the size of its text on the screen, or of its image at 96 dpi.
struct LogoItemContent {
  bool is_text;
  Size size;
};

struct LogoLayout {
  Rect picture;             // what is seen of the area that it stands in
  Rect title;               // empty when nothing is left for it
  std::vector<Rect> items;  // in the order in which they were added; empty rectangles where no space is left
};

// The picture at the left end, in an area as tall as the strip; items from the right end leftwards with the last one
// rightmost, the title between them. Items come before the picture where there is not enough space for both. Pictures
// and images grow with the screen's dots per inch.
LogoLayout LayOutLogo(Size client, int picture_width_px, std::span<const LogoItemContent> items, int dpi);

enum class LogoPart { kNone, kItem, kPicture, kTitle };

struct LogoHit {
  LogoPart part = LogoPart::kNone;
  int item = -1;  // counts from 0
  bool operator==(const LogoHit&) const = default;
};

LogoHit HitLogo(const LogoLayout& layout, Point point);

}  // namespace tervan::ui
