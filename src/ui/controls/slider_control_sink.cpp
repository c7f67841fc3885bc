// What the gestures ask of the window and tell its parent.
#include <utility>

#include "ui/controls/slider_control.h"

namespace tervan::ui {
namespace {

constexpr UINT kRepeatInterval_ms = 250;

}  // namespace

void SliderControl::SendCommand(WORD code) const {
  if (!IsAlive()) return;
  SendMessageW(Listener(), WM_COMMAND, MAKEWPARAM(Id(), code), reinterpret_cast<LPARAM>(window()));
}

void SliderControl::Tell(ScrollCode code) {
  if (!IsAlive()) return;
  if (slider_.thumb_count > 1) {
    const ThumbPositions positions = slider_.positions;  // what the receiver sets does not change what it is told
    ThumbsNotification notification = {.header = {},
                                       .user_data = user_data_,
                                       .thumb_count = slider_.thumb_count,
                                       .scroll_code = static_cast<INT32>(code),
                                       .positions = positions.data()};
    return SendNotify(Listener(), kNotifyThumbs, notification.header);
  }
  const bool has_position = code == ScrollCode::kThumbPosition || code == ScrollCode::kThumbTrack;
  SendMessageW(Listener(), slider_.layout.is_vertical ? WM_VSCROLL : WM_HSCROLL,
               MAKEWPARAM(code, has_position ? slider_.positions[0] : 0), reinterpret_cast<LPARAM>(window()));
}

void SliderControl::TellPressed(bool is_pressed) {
  if (HasStyle(kSliderNotifyFocus)) SendCommand(is_pressed ? kSliderPressed : kSliderReleased);
}

void SliderControl::ThumbsChanged() {
  if (!IsAlive()) return;
  Redraw();
  AnnounceMoves();
}

void SliderControl::AnnounceMoves() {
  if (std::exchange(announced_, slider_.positions) != slider_.positions) Announce(EVENT_OBJECT_VALUECHANGE);
}

void SliderControl::HoldMouse(bool holds) {
  if (!IsAlive()) return;
  if (holds) {
    SetCapture(window());
  } else if (GetCapture() == window()) {
    ReleaseCapture();
  }
}

void SliderControl::RunRepeatTimer(bool runs) {
  if (!IsAlive()) return;
  if (runs) {
    SetTimer(window(), kRepeatTimer, kRepeatInterval_ms, nullptr);
  } else {
    KillTimer(window(), kRepeatTimer);
  }
}

void SliderControl::ShowFocusCaret(bool shows) {
  if (!IsAlive() || !IsFocused()) return;
  if (shows) {
    ShowCaret(window());
  } else {
    HideCaret(window());
  }
}

void SliderControl::PutCursor(Point client) {
  if (!IsAlive()) return;
  POINT screen = {client.x, client.y};
  ClientToScreen(window(), &screen);
  SetCursorPos(screen.x, screen.y);
}

}  // namespace tervan::ui
