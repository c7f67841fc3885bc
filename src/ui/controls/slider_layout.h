// Where channel and thumbs of a slider lie in its window: one place for painting and for hit tests.
#pragma once

#include "ui/geometry.h"

namespace tervan::ui {

enum class SliderKind { kTrackbar, kFader };

struct SliderLayout {
  bool is_vertical = false;
  Rect client = {};
  Rect channel = {};    // as it is drawn: a little longer than the track at both ends
  int track_start = 0;  // client coordinate of the minimum's end: left or bottom
  int track_px = 0;
  int thumb_along_px = 0;
  int thumb_across_px = 0;

  // The thumb whose middle lies so many pixels along the track. Two thumbs share its width, the first one to the left
  // or on top.
  Rect ThumbAt(int pixel, int thumb, int thumb_count) const;
  // Pixels along the track, from the minimum's end; may lie beyond both ends.
  int PixelAt(Point p) const;
  // The same point moved to this place along the track.
  Point MovedTo(Point p, int pixel) const;
  // A rectangle from this to that pixel of the track, from edge to edge of the window.
  Rect Between(int from_px, int to_px) const;
};

// Lengths are scaled to the dpi and shrunk to the window.
SliderLayout LayOutSlider(SliderKind kind, bool is_vertical, Size client, int dpi);

}  // namespace tervan::ui
