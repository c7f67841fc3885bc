// The range of a slider, and where its positions lie on the track.
#pragma once

#include <cstdint>

#include "ui/controls/taper.h"

namespace tervan::ui {

// Every pair of ends is allowed; a range whose maximum does not lie above its minimum holds the minimum alone, at the
// start of the track.
struct SliderScale {
  int minimum = 0;
  int maximum = 100;
  Taper taper = Taper::kNone;

  int Clamped(std::int64_t position) const;
  // Where a double click leads until something else is set: zero, or the middle.
  int DefaultPosition() const;
  // So many tenths of the range above the minimum.
  int AtTenths(int tenths) const;

  // Pixels from the minimum's end of a track of this length, to nearest. Positions out of the range lie at its ends.
  int PixelOf(int position, int track_px) const;
  // The ends of the track, and all that lies beyond, are exactly the ends of the range.
  int PositionAt(int pixel, int track_px) const;

 private:
  std::int64_t Length() const { return std::int64_t{maximum} - minimum; }
  // Along the track the range is spread in proportion to the tapered values: position f becomes offset + f length /
  // span.
  std::int64_t TaperSpan() const;
  std::int64_t TaperOffset() const;
};

}  // namespace tervan::ui
