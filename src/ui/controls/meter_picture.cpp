#include "ui/controls/meter_picture.h"

#include <algorithm>
#include <optional>

#include "support/lock.h"
#include "ui/back_buffer.h"

namespace tervan::ui {
namespace {

constexpr int kMarkerPx = 1;       // at 96 dpi
constexpr int kMarkerWhite = 176;  // of 256, the rest is the colour of the scale there

// Several threads may have windows.
Lock context_lock;
int context_users = 0;              // guarded by context_lock
std::optional<BackBuffer> context;  // guarded by context_lock

}  // namespace

MeterContextUser::MeterContextUser() {
  const LockGuard guard(context_lock);
  if (context_users++ == 0) context.emplace();
}

MeterContextUser::~MeterContextUser() {
  const LockGuard guard(context_lock);
  if (--context_users == 0) context.reset();
}

bool MeterPicture::Prepare(HDC screen, const MeterLook& look) {
  if (is_drawn_) return true;
  const LockGuard guard(context_lock);
  size_ = {look.layout.client.Width(), look.layout.client.Height()};
  if (!context->Prepare(screen, size_)) return false;
  palette_ = CurrentPalette();
  Canvas& canvas = context->canvas();
  has_few_colours_ = HasFewColours(screen);
  const MeterFace face(look, palette_, has_few_colours_);
  const auto copy_to = [&canvas, this](Pixels& pixels) {
    GdiFlush();
    pixels.assign(canvas.pixels(), canvas.pixels() + static_cast<std::size_t>(size_.width) * size_.height);
  };
  face.DrawDark(context->dc(), canvas);
  copy_to(dark_);
  face.DrawLit(canvas);
  copy_to(lit_);
  is_drawn_ = true;
  return true;
}

void MeterPicture::CopyLit(const Rect& area) {
  if (area.IsEmpty()) return;
  for (int y = area.top; y < area.bottom; ++y) {
    const auto row = static_cast<std::ptrdiff_t>(y) * size_.width;
    std::copy(lit_.begin() + row + area.left, lit_.begin() + row + area.right, shown_.begin() + row + area.left);
  }
}

// Bright, or dark amid what is lit. The place lies inside the client area.
Colour MeterPicture::MarkerColour(Point place, bool is_amid_light) {
  if (palette_.is_high_contrast) return is_amid_light ? palette_.window : palette_.text;
  if (is_amid_light) return palette_.channel_edge;
  if (has_few_colours_) return palette_.highlight;
  return Mixed(Canvas(lit_.data(), size_).PixelAt(place), kWhite, kMarkerWhite);
}

void MeterPicture::Mark(const MeterLook& look, int channel, int place_px, const BarReading& reading) {
  if (place_px <= 0) return;
  const int width_px = std::max(AtDpi(kMarkerPx, look.dpi), 1);
  const int end_px = std::max(place_px, width_px);
  const Rect line = look.layout.Slice(look.layout.bars[static_cast<std::size_t>(channel)], end_px - width_px, end_px);
  const bool is_amid_light = place_px > reading.lit_from_px && place_px < reading.lit_to_px;
  if (!look.layout.client.Contains({line.left, line.top})) return;
  Canvas(shown_.data(), size_).Fill(line, MarkerColour({line.left, line.top}, is_amid_light));
}

void MeterPicture::Show(HDC screen, const MeterLook& look, const BarReadings& readings, const Rect& dirty) {
  shown_ = dark_;
  for (int channel = 0; channel < look.layout.channel_count; ++channel) {
    const auto c = static_cast<std::size_t>(channel);
    const BarReading& reading = readings[c];
    CopyLit(look.layout.Slice(look.layout.bars[c], reading.lit_from_px, reading.lit_to_px));
    Mark(look, channel, reading.valley_px, reading);
    Mark(look, channel, reading.peak_px, reading);
    if (reading.is_clipped) CopyLit(look.layout.clips[c]);
  }
  ShowRows(screen, dirty);
}

// Whole rows: their pixels lie one after the other.
void MeterPicture::ShowRows(HDC screen, const Rect& dirty) const {
  const int top = std::max(dirty.top, 0);
  const int rows = std::min(dirty.bottom, size_.height) - top;
  if (rows <= 0) return;
  BITMAPINFO info = {};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), size_.width, -rows, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  const std::uint32_t* const pixels = shown_.data() + static_cast<std::ptrdiff_t>(top) * size_.width;
  SetDIBitsToDevice(screen, 0, top, static_cast<DWORD>(size_.width), static_cast<DWORD>(rows), 0, 0, 0,
                    static_cast<UINT>(rows), pixels, &info, DIB_RGB_COLORS);
}

}  // namespace tervan::ui
