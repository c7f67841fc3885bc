// What mouse and keyboard do to a slider, and what its parent hears of it.
#pragma once

#include "ui/controls/slider_state.h"

namespace tervan::ui {

// The window around the gestures. Whoever hears of a code may do anything to the slider, destroy it included; a window
// that is gone does nothing for any of these calls.
class SliderSink {
 public:
  virtual void Tell(ScrollCode code) = 0;
  virtual void TellPressed(bool is_pressed) = 0;
  // Positions, or which thumb is pressed or picked, are others.
  virtual void ThumbsChanged() = 0;
  virtual void HoldMouse(bool holds) = 0;
  virtual void RunRepeatTimer(bool runs) = 0;
  virtual void ShowFocusCaret(bool shows) = 0;
  virtual void PutCursor(Point client) = 0;

 protected:
  ~SliderSink() = default;
};

enum class KeyUse {
  kTaken,
  kIgnored,  // left to the system
  kUnknown,  // perhaps the parent's
};

class SliderGestures {
 public:
  SliderGestures(SliderState& state, SliderSink& sink) : state_(state), sink_(sink) {}

  void Press(Point p);
  void DoubleClick(Point p);
  void Move(Point p, bool is_fine);
  void Repeat();
  // The button is up, or somebody ends the press from outside.
  void Release() { EndPress(false); }
  // Ends everything that lasts: the slider is disabled or hidden.
  void Interrupt();
  // The window goes: nobody is told any more.
  void Forget();

  KeyUse KeyDown(int virtual_key);
  bool KeyUp(int virtual_key);
  // The focus goes while a key is held.
  void ReleaseKey();
  void Wheel(int delta, bool by_lines);

  bool IsPressed() const { return part_ != Part::kNone; }
  // The thumb that is dragged, or -1.
  int DraggedThumb() const { return part_ == Part::kThumb ? thumb_ : -1; }

 private:
  enum class Part {
    kNone,
    kThumb,
    kBelow,  // the track, towards the minimum
    kAbove,
    kSpent,  // all is done, only the button is still down
  };

  Part PartUnder(Point p) const;
  // True when whoever hears of it leaves the slider as usable as it was.
  bool TellPress();
  void BeginPress(Part part);
  void EndPress(bool puts_back);
  int Followed(int pixel) const;
  // Of two thumbs, the picked ones make the step; with one thumb that is left to the parent.
  void Step(ScrollCode code);
  ScrollCode Towards(bool maximum, ScrollCode up, ScrollCode down) const;
  bool PickThumbs(int virtual_key);
  void SetPicked(int position);

  SliderState& state_;
  SliderSink& sink_;
  Part part_ = Part::kNone;
  int thumb_ = 0;
  ThumbPositions start_positions_ = {};
  bool is_beginning_ = false;  // the press is being told
  int offset_px_ = 0;          // of the cursor from the middle of the thumb, along the track
  Point pressed_at_ = {};
  Point cursor_ = {};  // where it was last
  int held_key_ = 0;   // whose release ends the action; 0: none
};

}  // namespace tervan::ui
