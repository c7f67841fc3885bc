// What the parent asks of a slider.
#include <algorithm>

#include "ui/controls/slider_control.h"

namespace tervan::ui {
namespace {

int IntIn(LPARAM lparam) { return static_cast<int>(lparam); }
bool BitIn(LPARAM lparam) { return (lparam & 1) != 0; }

}  // namespace

std::optional<LRESULT> SliderControl::OnSliderMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case kSliderGetPosition: return slider_.positions[0];
    case kSliderGetMinimum: return slider_.scale.minimum;
    case kSliderGetMaximum: return slider_.scale.maximum;
    case kSliderSetRange: return SetRange(static_cast<SHORT>(LOWORD(lparam)), static_cast<SHORT>(HIWORD(lparam)));
    case kSliderSetMinimum: return SetRange(IntIn(lparam), slider_.scale.maximum);
    case kSliderSetMaximum: return SetRange(slider_.scale.minimum, IntIn(lparam));
    case kSliderSetPosition:
      return SetPosition(IsFader() ? IntIn(lparam) : slider_.scale.Clamped(IntIn(lparam)), wparam != 0);
    case kSliderSetDefault: return slider_.default_position = slider_.scale.Clamped(IntIn(lparam));
    case kSliderSetBackground: background_ = FromCOLORREF(static_cast<COLORREF>(lparam)); return Invalidate(), 0;
    case kSliderGetBackground:
      return static_cast<LRESULT>(background_ ? ToCOLORREF(*background_) : GetSysColor(COLOR_BTNFACE));
    case kSliderSetUserData: return user_data_ = lparam, 0;
    case kSliderGetUserData: return user_data_;
    default: return {};
  }
}

std::optional<LRESULT> SliderControl::OnTrackbarMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case kTrackbarGetMetrics: {
      const SliderLayout& layout = slider_.layout;
      return MAKELRESULT(layout.track_px, layout.is_vertical ? layout.channel.left : layout.track_start);
    }
    case kTrackbarSetPlainChannel:
    case kTrackbarSetTicks:
      (message == kTrackbarSetTicks ? has_ticks_ : is_plain_) = BitIn(lparam);
      if (wparam) Redraw();
      return BitIn(lparam) ? -1 : 0;
    default: return {};
  }
}

std::optional<LRESULT> SliderControl::OnFaderMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  constexpr unsigned kAllThumbs = (1U << kMaxThumbs) - 1;
  switch (message) {
    case kFaderSetUp: return SetUp(PointerIn<const FaderSetUp>(lparam));
    case kFaderSetKeyThumbs:
      slider_.picked_thumbs = std::max(static_cast<unsigned>(lparam) & kAllThumbs, 1U);
      return Invalidate(), 0;
    case kFaderSetThumb: return SetThumb(HIWORD(wparam), LOWORD(wparam) != 0, lparam);
    case kFaderGetThumb: return GetThumb(HIWORD(wparam), lparam);
    case kFaderSetNotifyFocus: return SetStyle(kSliderNotifyFocus, BitIn(lparam)), 0;
    case kFaderGetNotifyFocus: return HasStyle(kSliderNotifyFocus);
    case kFaderSetNoRepaint: return SetStyle(kSliderNoRepaint, BitIn(lparam)), 0;
    case kFaderGetNoRepaint: return HasStyle(kSliderNoRepaint);
    default: return {};
  }
}

LRESULT SliderControl::SetRange(int minimum, int maximum) {
  slider_.SetRange(minimum, maximum);
  Redraw();
  AnnounceMoves();
  return 0;
}

void SliderControl::ShowPositions(const ThumbPositions& positions, bool redraws) {
  slider_.positions = positions;
  if (redraws && !HasStyle(kSliderNoRepaint) && painted_pixels_ != slider_.ThumbPixels()) Redraw();
  AnnounceMoves();
}

LRESULT SliderControl::SetPosition(int position, bool redraws) {
  ShowPositions({position, slider_.positions[1]}, redraws);
  return slider_.positions[0];
}

LRESULT SliderControl::SetThumb(int thumb, bool redraws, LPARAM lparam) {
  if (thumb > slider_.thumb_count) return 0;
  ThumbPositions positions = slider_.positions;
  if (thumb > 0) {
    positions[thumb - 1] = IntIn(lparam);
  } else if (const INT32* const all = PointerIn<const INT32>(lparam)) {
    std::copy_n(all, slider_.thumb_count, positions.begin());
  }
  ShowPositions(positions, redraws);
  return slider_.positions[thumb > 0 ? thumb - 1 : 0];
}

LRESULT SliderControl::GetThumb(int thumb, LPARAM lparam) const {
  if (thumb > slider_.thumb_count) return 0;
  if (thumb > 0) return slider_.positions[thumb - 1];
  if (INT32* const all = PointerIn<INT32>(lparam)) std::copy_n(slider_.positions.begin(), slider_.thumb_count, all);
  return slider_.positions[0];
}

LRESULT SliderControl::SetUp(const FaderSetUp* set_up) {
  if (!set_up) return 0;
  gestures_.Interrupt();
  if (!IsAlive()) return 0;
  slider_.SetRange(set_up->minimum, set_up->maximum);
  slider_.default_position = slider_.scale.Clamped(set_up->default_position);
  slider_.steps = {.line = set_up->line_step, .page = set_up->page_step};
  std::copy_n(set_up->positions, kMaxThumbs, slider_.positions.begin());
  style_ = (style_ & ~set_up->style_mask) | (set_up->style & set_up->style_mask);
  ApplyStyle();
  Redraw();
  AnnounceMoves();
  return 0;
}

}  // namespace tervan::ui
