// The windows of trackbar and fader.
#pragma once

#include <windows.h>

#include <optional>

#include "ui/back_buffer.h"
#include "ui/control_window.h"
#include "ui/controls/slider_gestures.h"
#include "ui/controls/slider_messages.h"

namespace tervan::ui {

extern const ControlClass kTrackbarClass;
extern const ControlClass kFaderClass;

class SliderControl : public ControlWindow, private SliderSink {
 public:
  SliderControl(HWND window, const CREATESTRUCTW& creation, SliderKind kind);

  LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

  LONG PartRole(int part) const override;
  std::wstring PartValue(int part) const override;

 private:
  static constexpr UINT_PTR kRepeatTimer = 42;

  void Tell(ScrollCode code) override;
  void TellPressed(bool is_pressed) override;
  void ThumbsChanged() override;
  void HoldMouse(bool holds) override;
  void RunRepeatTimer(bool runs) override;
  void ShowFocusCaret(bool shows) override;
  void PutCursor(Point client) override;

  LRESULT OnPaint();
  LRESULT OnSize();
  LRESULT OnEnable(bool is_enabled);
  LRESULT OnFocus();
  LRESULT OnFocusLost();
  LRESULT OnDestroy();
  LRESULT OnKeyDown(WPARAM wparam, LPARAM lparam);
  LRESULT OnButton(UINT message, LPARAM lparam);
  LRESULT OnRightButton(UINT message, WPARAM wparam, LPARAM lparam);
  LRESULT OnMouseMove(WPARAM wparam, LPARAM lparam);
  LRESULT SetHotThumb(int thumb);
  LRESULT OnWheel(WPARAM wparam);
  LRESULT OnSetCursor(WPARAM wparam, LPARAM lparam);

  // Messages of both classes, and of one of them; none: not theirs.
  std::optional<LRESULT> OnSliderMessage(UINT message, WPARAM wparam, LPARAM lparam);
  std::optional<LRESULT> OnTrackbarMessage(UINT message, WPARAM wparam, LPARAM lparam);
  std::optional<LRESULT> OnFaderMessage(UINT message, WPARAM wparam, LPARAM lparam);
  LRESULT SetRange(int minimum, int maximum);
  LRESULT SetPosition(int position, bool redraws);
  LRESULT SetThumb(int thumb, bool redraws, LPARAM lparam);
  LRESULT GetThumb(int thumb, LPARAM lparam) const;
  LRESULT SetUp(const FaderSetUp* set_up);
  // Draws when a thumb is elsewhere than in the picture and the caller wants it.
  void ShowPositions(const ThumbPositions& positions, bool redraws);

  bool IsFader() const { return slider_.kind == SliderKind::kFader; }
  bool HasStyle(DWORD bits) const { return (style_ & bits) != 0; }
  bool IsFocused() const { return GetFocus() == window(); }
  void SetStyle(DWORD bits, bool is_on) { style_ = is_on ? style_ | bits : style_ & ~bits; }
  void ApplyStyle();
  void LayOut();
  void PlaceCaret() const;
  void AnnounceMoves();
  void SendCommand(WORD code) const;

  DWORD style_;
  LPARAM user_data_;
  std::optional<Colour> background_;  // none: that of buttons
  bool is_plain_ = false;
  bool has_ticks_ = false;
  int hot_thumb_ = -1;              // under the cursor
  bool owns_right_button_ = false;  // it was pressed for fine steps, and its release asks for no menu
  int dpi_;
  SliderState slider_;
  ThumbPositions announced_ = slider_.positions;
  ThumbPositions painted_pixels_ = {};
  SliderGestures gestures_;
  BackBuffer buffer_;
};

}  // namespace tervan::ui
