#include "ui/controls/slider_control.h"

#include <commctrl.h>
#include <oleacc.h>

#include <algorithm>
#include <utility>

#include "ui/controls/slider_painter.h"

namespace tervan::ui {
namespace {

class Trackbar final : public SliderControl {
 public:
  Trackbar(HWND window, const CREATESTRUCTW& creation) : SliderControl(window, creation, SliderKind::kTrackbar) {}
};

class Fader final : public SliderControl {
 public:
  Fader(HWND window, const CREATESTRUCTW& creation) : SliderControl(window, creation, SliderKind::kFader) {}
};

}  // namespace

const ControlClass kTrackbarClass = {
    .name = kTrackbarClassName,
    .background = COLOR_BTNFACE,
    .procedure = WindowProcOf<Trackbar>,
};

const ControlClass kFaderClass = {
    .name = kFaderClassName,
    .cursor = nullptr,
    .background = COLOR_BTNFACE,
    .procedure = WindowProcOf<Fader>,
};

SliderControl::SliderControl(HWND window, const CREATESTRUCTW& creation, SliderKind kind)
    : ControlWindow(window, creation.hwndParent),
      style_(static_cast<DWORD>(creation.style)),
      user_data_(reinterpret_cast<LPARAM>(creation.lpCreateParams)),
      dpi_(ScreenDpi()),
      gestures_(slider_, *this) {
  slider_.kind = kind;
  ApplyStyle();
}

void SliderControl::ApplyStyle() {
  slider_.thumb_count = IsFader() && HasStyle(kFaderTwoThumbs) ? 2 : 1;
  slider_.scale.taper = !HasStyle(kSliderTapered)               ? Taper::kNone
                        : !IsFader() && HasStyle(kSliderTaperB) ? Taper::kFrequencies
                                                                : Taper::kTimesAndLevels;
  LayOut();
}

void SliderControl::LayOut() {
  RECT client = {};
  GetClientRect(window(), &client);
  slider_.layout = LayOutSlider(slider_.kind, HasStyle(kSliderVertical), {client.right, client.bottom}, dpi_);
}

LRESULT SliderControl::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_PAINT: return OnPaint();
    case WM_ERASEBKGND: return TRUE;
    case WM_SIZE: return OnSize();
    case WM_SYSCOLORCHANGE: return Invalidate(), 0;
    case WM_ENABLE: return OnEnable(wparam != FALSE);
    case WM_SHOWWINDOW:
      if (!wparam) gestures_.Interrupt();
      break;
    case WM_SETFOCUS: return OnFocus();
    case WM_KILLFOCUS: return OnFocusLost();
    case WM_GETDLGCODE: return DLGC_WANTARROWS | DLGC_WANTCHARS | (gestures_.IsPressed() ? DLGC_WANTALLKEYS : 0);
    case WM_KEYDOWN: return OnKeyDown(wparam, lparam);
    case WM_KEYUP:
      if (gestures_.KeyUp(static_cast<int>(wparam))) return 0;
      break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: return OnButton(message, lparam);
    case WM_LBUTTONUP: return gestures_.Release(), 0;
    case WM_RBUTTONDOWN:
    case WM_RBUTTONDBLCLK:
    case WM_RBUTTONUP: return OnRightButton(message, wparam, lparam);
    case WM_MOUSEMOVE: return OnMouseMove(wparam, lparam);
    case WM_MOUSELEAVE: return SetHotThumb(-1);
    case WM_MOUSEWHEEL: return OnWheel(wparam);
    case WM_CAPTURECHANGED:
      if (reinterpret_cast<HWND>(lparam) != window()) gestures_.Release();
      return 0;
    case WM_CANCELMODE: gestures_.Release(); break;
    case WM_TIMER:
      if (wparam == kRepeatTimer) gestures_.Repeat();
      return 0;
    case WM_SETCURSOR: return OnSetCursor(wparam, lparam);
    case WM_DESTROY: return OnDestroy();
    default:
      if (const auto result = OnSliderMessage(message, wparam, lparam)) return *result;
      if (const auto result =
              IsFader() ? OnFaderMessage(message, wparam, lparam) : OnTrackbarMessage(message, wparam, lparam)) {
        return *result;
      }
  }
  return Default(message, wparam, lparam);
}

void SliderControl::PlaceCaret() const {
  if (!IsFocused()) return;
  const int thumb = slider_.thumb_count > 1 && !slider_.IsPicked(0) ? 1 : 0;
  const Rect line = IndexLine(slider_, thumb, dpi_);
  SetCaretPos(line.left, line.top);
}

LRESULT SliderControl::OnPaint() {
  PaintBuffered(window(), buffer_, [this](HDC, Canvas& canvas, const Rect&) {
    const Palette palette = CurrentPalette();
    PaintSlider(canvas, slider_,
                {.palette = palette,
                 .background = background_.value_or(palette.face),
                 .dpi = dpi_,
                 .is_enabled = IsWindowEnabled(window()) != FALSE,
                 .is_focused = IsFocused(),
                 .pressed_thumb = gestures_.DraggedThumb(),
                 .hot_thumb = hot_thumb_,
                 .is_plain = is_plain_,
                 .has_ticks = has_ticks_ || IsFader()});
    painted_pixels_ = slider_.ThumbPixels();
  });
  PlaceCaret();  // it moves with the picture
  return 0;
}

LRESULT SliderControl::OnSize() {
  LayOut();
  Invalidate();
  return 0;
}

LRESULT SliderControl::OnEnable(bool is_enabled) {
  if (!is_enabled) gestures_.Interrupt();
  Invalidate();
  return 0;
}

LRESULT SliderControl::OnFocus() {
  const Rect line = IndexLine(slider_, 0, dpi_);
  CreateCaret(window(), nullptr, line.Width(), line.Height());
  PlaceCaret();
  if (!gestures_.IsPressed()) ShowCaret(window());
  Invalidate();
  if (HasStyle(kSliderNotifyFocus)) SendCommand(kSliderFocused);
  return 0;
}

LRESULT SliderControl::OnFocusLost() {
  DestroyCaret();
  Invalidate();
  gestures_.ReleaseKey();
  NMHDR header = {};
  if (!IsFader()) SendNotify(Listener(), static_cast<UINT>(NM_KILLFOCUS), header);
  return 0;
}

LRESULT SliderControl::OnDestroy() {
  gestures_.Forget();
  if (IsFocused()) DestroyCaret();
  return 0;
}

LRESULT SliderControl::OnKeyDown(WPARAM wparam, LPARAM lparam) {
  const KeyUse use = gestures_.KeyDown(static_cast<int>(wparam));
  if (use == KeyUse::kTaken) return 0;
  if (use == KeyUse::kUnknown && !IsFader()) {
    KeyNotification notification = {.header = {}, .virtual_key = wparam, .key_data = lparam};
    SendNotify(Listener(), kNotifyKey, notification.header);
  }
  return Default(WM_KEYDOWN, wparam, lparam);
}

LRESULT SliderControl::OnButton(UINT message, LPARAM lparam) {
  if (!IsWindowEnabled(window())) return 0;
  SetFocus(window());
  if (!IsAlive() || !IsWindowEnabled(window())) return 0;
  if (message == WM_LBUTTONDBLCLK) {
    gestures_.DoubleClick(PointFrom(lparam));
  } else {
    gestures_.Press(PointFrom(lparam));
  }
  return 0;
}

LRESULT SliderControl::OnRightButton(UINT message, WPARAM wparam, LPARAM lparam) {
  const bool was_own = std::exchange(owns_right_button_, message != WM_RBUTTONUP && gestures_.IsPressed());
  const bool is_release_of_own = was_own && message == WM_RBUTTONUP;
  return is_release_of_own || gestures_.IsPressed() ? 0 : Default(message, wparam, lparam);
}

// On a fader, the right button counts when it was pressed during the drag.
LRESULT SliderControl::OnMouseMove(WPARAM wparam, LPARAM lparam) {
  const Point cursor = PointFrom(lparam);
  const bool is_right_down = (wparam & MK_RBUTTON) != 0;
  if (!IsFader() && is_right_down && gestures_.DraggedThumb() >= 0) owns_right_button_ = true;
  gestures_.Move(cursor, (is_right_down && owns_right_button_) || (!IsFader() && (wparam & MK_CONTROL) != 0));
  return IsAlive() ? SetHotThumb(slider_.ThumbUnder(cursor)) : 0;
}

LRESULT SliderControl::SetHotThumb(int thumb) {
  if (std::exchange(hot_thumb_, thumb) == thumb) return 0;
  TRACKMOUSEEVENT leaving = {sizeof leaving, TME_LEAVE, window(), 0};
  if (thumb >= 0) TrackMouseEvent(&leaving);
  Invalidate();
  return 0;
}

// A fader goes by the user's scroll setting: one page a notch where that is what nearly everybody has.
LRESULT SliderControl::OnWheel(WPARAM wparam) {
  constexpr UINT kUsualLines = 3;
  if (!IsWindowEnabled(window())) return 0;
  int delta = GET_WHEEL_DELTA_WPARAM(wparam);
  UINT lines = kUsualLines;
  if (IsFader() && SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0) && lines != WHEEL_PAGESCROLL) {
    constexpr UINT kMostLines = 100;
    delta = delta * static_cast<int>(std::min(lines, kMostLines)) / static_cast<int>(kUsualLines);
  }
  gestures_.Wheel(delta, (GET_KEYSTATE_WPARAM(wparam) & MK_CONTROL) != 0);
  return 0;
}

LRESULT SliderControl::OnSetCursor(WPARAM wparam, LPARAM lparam) {
  if (!IsFader() || LOWORD(lparam) != HTCLIENT) return Default(WM_SETCURSOR, wparam, lparam);
  POINT cursor = {};
  GetCursorPos(&cursor);
  ScreenToClient(window(), &cursor);
  const bool is_over_thumb = IsWindowEnabled(window()) && slider_.ThumbUnder({cursor.x, cursor.y}) >= 0;
  SetCursor(LoadCursorW(nullptr, !is_over_thumb ? IDC_ARROW : slider_.layout.is_vertical ? IDC_SIZENS : IDC_SIZEWE));
  return TRUE;
}

LONG SliderControl::PartRole(int /*part*/) const { return ROLE_SYSTEM_SLIDER; }

std::wstring SliderControl::PartValue(int /*part*/) const {
  std::wstring text = WindowText(window());
  return text.empty() ? std::to_wstring(slider_.positions[0]) : text;
}

}  // namespace tervan::ui
