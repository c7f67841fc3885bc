// A level meter's picture on the screen: ready-made parts, put together anew for each level.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <vector>

#include "ui/controls/meter_face.h"

namespace tervan::ui {

// What a bar shows: places in pixels from its quiet end.
struct BarReading {
  int lit_from_px;
  int lit_to_px;
  int peak_px;  // 0: no marker
  int valley_px;
  bool is_clipped;
  bool operator==(const BarReading&) const = default;
};
using BarReadings = std::array<BarReading, kMaxMeterChannels>;

// All meters draw their parts in one off-screen context, which is there as long as there are meters.
class MeterContextUser {
 public:
  MeterContextUser();
  ~MeterContextUser();
  MeterContextUser(const MeterContextUser&) = delete;
  MeterContextUser& operator=(const MeterContextUser&) = delete;
};

class MeterPicture {
 public:
  // The parts are to be drawn anew.
  void Discard() { is_drawn_ = false; }

  // False when there is no memory for it. Costs much, unless nothing was discarded since the last time.
  bool Prepare(HDC screen, const MeterLook& look);
  // What of the client area is dirty.
  void Show(HDC screen, const MeterLook& look, const BarReadings& readings, const Rect& dirty);

 private:
  using Pixels = std::vector<std::uint32_t>;  // rows of the client area, the top one first

  void CopyLit(const Rect& area);
  void ShowRows(HDC screen, const Rect& dirty) const;
  Colour MarkerColour(Point place, bool is_amid_light);
  void Mark(const MeterLook& look, int channel, int place_px, const BarReading& reading);

  const MeterContextUser context_;
  bool is_drawn_ = false;
  bool has_few_colours_ = false;
  Palette palette_{};
  Size size_{};
  Pixels dark_;
  Pixels lit_;
  Pixels shown_;
};

}  // namespace tervan::ui
