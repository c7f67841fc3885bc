#include "ui/controls/slider_scale.h"

#include <algorithm>

namespace tervan::ui {
namespace {

// To nearest; the divisor is above zero.
std::int64_t RoundedQuotient(std::int64_t number, std::int64_t divisor) {
  const std::int64_t rest = number % divisor;
  const bool rounds_away = (rest < 0 ? -rest : rest) >= divisor - divisor / 2;
  return number / divisor + (rounds_away ? (number < 0 ? -1 : 1) : 0);
}

}  // namespace

int SliderScale::Clamped(std::int64_t position) const {
  return static_cast<int>(std::max(std::min(position, std::int64_t{maximum}), std::int64_t{minimum}));
}

int SliderScale::DefaultPosition() const {
  if (minimum < 0 && maximum > 0) return 0;
  if (minimum < 0 && maximum == 0) return minimum;
  return Clamped((std::int64_t{minimum} + maximum) / 2);
}

int SliderScale::AtTenths(int tenths) const { return Clamped(minimum + Length() * tenths / 10); }

std::int64_t SliderScale::TaperSpan() const {
  return std::max<std::int64_t>(Tapered(taper, maximum) - Tapered(taper, minimum), 1);
}

std::int64_t SliderScale::TaperOffset() const { return maximum - Tapered(taper, maximum) * Length() / TaperSpan(); }

int SliderScale::PixelOf(int position, int track_px) const {
  if (Length() <= 0 || track_px <= 0) return 0;
  std::int64_t along = Clamped(position);
  if (taper != Taper::kNone) along = Clamped(TaperOffset() + Tapered(taper, along) * Length() / TaperSpan());
  return static_cast<int>(RoundedQuotient((along - minimum) * track_px, Length()));
}

int SliderScale::PositionAt(int pixel, int track_px) const {
  if (Length() <= 0 || pixel <= 0) return minimum;
  if (pixel >= track_px) return maximum;
  std::int64_t along = minimum + RoundedQuotient(pixel * Length(), track_px);
  if (taper != Taper::kNone) along = Untapered(taper, RoundedQuotient((along - TaperOffset()) * TaperSpan(), Length()));
  return Clamped(along);
}

}  // namespace tervan::ui
