#include "ui/controls/slider_gestures.h"

#include <cstdlib>
#include <utility>

namespace tervan::ui {
namespace {

constexpr int kWheelNotch = 120;
constexpr unsigned kFirstThumb = 1;
constexpr unsigned kSecondThumb = 2;

// Virtual key codes; letters and digits are their characters.
constexpr int kKeyClear = 0x0C;
constexpr int kKeyEscape = 0x1B;
constexpr int kKeyPageUp = 0x21;
constexpr int kKeyPageDown = 0x22;
constexpr int kKeyEnd = 0x23;
constexpr int kKeyHome = 0x24;
constexpr int kKeyLeft = 0x25;
constexpr int kKeyUp = 0x26;
constexpr int kKeyRight = 0x27;
constexpr int kKeyDown = 0x28;
constexpr int kKeyNumpad0 = 0x60;
constexpr int kKeyNumpad9 = 0x69;
constexpr int kKeyF3 = 0x72;
constexpr int kKeyF9 = 0x78;

bool IsDigit(int key) { return key >= '0' && key <= '9'; }

}  // namespace

// A horizontal trackbar counts as scroll bars do, where left is up.
ScrollCode SliderGestures::Towards(bool maximum, ScrollCode up, ScrollCode down) const {
  const bool up_raises = state_.kind == SliderKind::kFader || state_.layout.is_vertical;
  return maximum == up_raises ? up : down;
}

SliderGestures::Part SliderGestures::PartUnder(Point p) const {
  if (state_.ThumbUnder(p) >= 0) return Part::kThumb;
  const int reference = state_.thumb_count > 1 && !state_.IsPicked(0) ? 1 : 0;
  return state_.layout.PixelAt(p) < state_.ThumbPixel(reference) ? Part::kBelow : Part::kAbove;
}

bool SliderGestures::TellPress() {
  Release();
  is_beginning_ = true;
  ReleaseKey();
  sink_.TellPressed(true);
  if (std::exchange(is_beginning_, false)) return true;
  sink_.TellPressed(false);
  return false;
}

void SliderGestures::BeginPress(Part part) {
  part_ = part;
  sink_.HoldMouse(true);
  sink_.ShowFocusCaret(false);
  sink_.ThumbsChanged();
}

void SliderGestures::Press(Point p) {
  if (!TellPress()) return;
  const Part part = PartUnder(p);
  pressed_at_ = cursor_ = p;
  if (part == Part::kThumb) {
    thumb_ = state_.ThumbUnder(p);
    if (!state_.IsPicked(thumb_)) state_.picked_thumbs = 1U << thumb_;
    start_positions_ = state_.positions;
    offset_px_ = state_.layout.PixelAt(p) - state_.ThumbPixel(thumb_);
  }
  BeginPress(part);
  if (part != Part::kThumb) sink_.RunRepeatTimer(true);
  sink_.Tell(ScrollCode::kBegin);
  Repeat();
}

void SliderGestures::DoubleClick(Point p) {
  const int thumb = state_.ThumbUnder(p);
  if (thumb < 0) return Press(p);
  if (!TellPress()) return;
  state_.MovePicked(thumb, state_.default_position);
  BeginPress(Part::kSpent);
  sink_.Tell(ScrollCode::kThumbPosition);
}

void SliderGestures::Repeat() {
  if (part_ != Part::kBelow && part_ != Part::kAbove) return;
  if (!state_.layout.client.Contains(cursor_) || PartUnder(cursor_) != part_) return;
  Step(Towards(part_ == Part::kAbove, ScrollCode::kPageUp, ScrollCode::kPageDown));
}

// A thumb that is where the cursor wants it keeps its position: the track has fewer pixels than the range positions.
int SliderGestures::Followed(int pixel) const {
  const int track_px = state_.layout.track_px;
  const bool is_there = pixel == state_.ThumbPixel(thumb_) && pixel > 0 && pixel < track_px;
  return is_there || track_px <= 0 ? state_.positions[thumb_] : state_.scale.PositionAt(pixel, track_px);
}

void SliderGestures::Move(Point p, bool is_fine) {
  const int pixel = state_.layout.PixelAt(p);
  const int moved_px = pixel - state_.layout.PixelAt(std::exchange(cursor_, p));
  if (part_ != Part::kThumb) return;
  const int before = state_.positions[thumb_];
  if (moved_px != 0) {
    const int fine_steps = (moved_px + (moved_px < 0 ? -1 : 1)) / 2;
    state_.MovePicked(thumb_,
                      is_fine ? state_.scale.Clamped(std::int64_t{before} + fine_steps) : Followed(pixel - offset_px_));
  }
  if (is_fine) {
    cursor_ = state_.layout.MovedTo(pressed_at_, state_.ThumbPixel(thumb_) + offset_px_);
    if (cursor_ != p) sink_.PutCursor(cursor_);
  }
  if (state_.positions[thumb_] == before) return;
  sink_.ThumbsChanged();
  sink_.Tell(ScrollCode::kThumbTrack);
}

// The press is over before anybody hears of it: what they do may come back here.
void SliderGestures::EndPress(bool puts_back) {
  is_beginning_ = false;
  if (!IsPressed()) return;
  const bool was_drag = part_ == Part::kThumb;
  part_ = Part::kNone;
  for (int thumb = 0; was_drag && puts_back && thumb < kMaxThumbs; ++thumb) {
    state_.positions[thumb] = state_.scale.Clamped(start_positions_[thumb]);  // the range may be another by now
  }
  sink_.RunRepeatTimer(false);
  sink_.HoldMouse(false);
  sink_.ShowFocusCaret(true);
  sink_.ThumbsChanged();
  if (was_drag && !puts_back) sink_.Tell(ScrollCode::kThumbPosition);
  sink_.Tell(ScrollCode::kEnd);
  sink_.TellPressed(false);
}

void SliderGestures::Interrupt() {
  Release();
  ReleaseKey();
}

void SliderGestures::Forget() {
  held_key_ = 0;
  if (std::exchange(part_, Part::kNone) == Part::kNone) return;
  sink_.RunRepeatTimer(false);
  sink_.HoldMouse(false);
}

void SliderGestures::Step(ScrollCode code) {
  if (state_.thumb_count > 1) {
    for (int thumb = 0; thumb < state_.thumb_count; ++thumb) {
      if (!state_.IsPicked(thumb)) continue;
      state_.positions[thumb] = ScrolledFader(state_.scale, state_.positions[thumb], code, state_.steps);
    }
    sink_.ThumbsChanged();
  }
  sink_.Tell(code);
}

bool SliderGestures::PickThumbs(int virtual_key) {
  switch (virtual_key) {
    case 'L': state_.picked_thumbs = kFirstThumb; break;
    case 'R': state_.picked_thumbs = kSecondThumb; break;
    case 'B':
    case 'C':
    case 'G':
    case 'S': state_.picked_thumbs = kFirstThumb | kSecondThumb; break;
    default: return false;
  }
  sink_.ThumbsChanged();
  return true;
}

void SliderGestures::SetPicked(int position) {
  for (int thumb = 0; thumb < state_.thumb_count; ++thumb) {
    if (state_.thumb_count == 1 || state_.IsPicked(thumb)) state_.positions[thumb] = position;
  }
  sink_.ThumbsChanged();
  sink_.Tell(ScrollCode::kThumbPosition);
}

KeyUse SliderGestures::KeyDown(int key) {
  if (IsPressed()) {
    if (key == kKeyEscape) EndPress(true);
    return KeyUse::kTaken;
  }
  if (IsDigit(key)) {
    held_key_ = key;
    SetPicked(state_.scale.AtTenths(key - '0'));
    return KeyUse::kTaken;
  }
  ScrollCode code;
  switch (key) {
    case kKeyPageUp: code = ScrollCode::kPageUp; break;
    case kKeyPageDown: code = ScrollCode::kPageDown; break;
    case kKeyHome: code = ScrollCode::kTop; break;
    case kKeyEnd: code = ScrollCode::kBottom; break;
    case kKeyLeft:
    case kKeyDown:
    case kKeyF3: code = Towards(false, ScrollCode::kLineUp, ScrollCode::kLineDown); break;
    case kKeyRight:
    case kKeyUp:
    case kKeyF9: code = Towards(true, ScrollCode::kLineUp, ScrollCode::kLineDown); break;
    default:
      if (state_.thumb_count > 1 && PickThumbs(key)) return KeyUse::kTaken;
      return key == kKeyClear || (key >= kKeyNumpad0 && key <= kKeyNumpad9) ? KeyUse::kIgnored : KeyUse::kUnknown;
  }
  held_key_ = key;
  Step(code);
  return KeyUse::kTaken;
}

bool SliderGestures::KeyUp(int key) {
  if (key == 0 || key != held_key_) return false;
  ReleaseKey();
  return true;
}

void SliderGestures::ReleaseKey() {
  if (std::exchange(held_key_, 0) != 0) sink_.Tell(ScrollCode::kEnd);
}

void SliderGestures::Wheel(int delta, bool by_lines) {
  if (IsPressed()) return;
  const bool raises = delta > 0;
  const ScrollCode code = by_lines ? Towards(raises, ScrollCode::kLineUp, ScrollCode::kLineDown)
                                   : Towards(raises, ScrollCode::kPageUp, ScrollCode::kPageDown);
  sink_.Tell(ScrollCode::kBegin);
  for (int notch = std::abs(delta) / kWheelNotch; notch > 0; --notch) Step(code);
  sink_.Tell(ScrollCode::kEnd);
}

}  // namespace tervan::ui
