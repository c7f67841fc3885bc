#include "ui/controls/slider_gestures.h"

#include <string>

#include "gtest/gtest.h"

namespace tervan::ui {
namespace {

constexpr int kDpi = 96;
constexpr int kTrackStart = 6;  // of trackbars
constexpr int kPageStep = 10;

// Stands in for window and page: writes down what it hears, and moves the one thumb as a page does.
class FakeWindow : public SliderSink {
 public:
  explicit FakeWindow(SliderKind kind = SliderKind::kTrackbar, bool is_vertical = false) {
    state.kind = kind;
    const int margins_px = kind == SliderKind::kTrackbar ? 12 : 16;
    const Size size = is_vertical ? Size{24, 100 + margins_px} : Size{100 + margins_px, 24};
    state.layout = LayOutSlider(kind, is_vertical, size, kDpi);  // 100 pixels for 0 to 100
  }

  void Tell(ScrollCode code) override {
    heard += ' ' + std::to_string(static_cast<int>(code));
    if (code == ScrollCode::kThumbPosition || code == ScrollCode::kThumbTrack) {
      heard += '=' + std::to_string(state.positions[0]);
    }
    if (state.thumb_count > 1) return;
    int& position = state.positions[0];
    const ScrollSteps steps = {1, kPageStep};
    position = state.kind == SliderKind::kFader
                   ? ScrolledFader(state.scale, position, code, steps)
                   : ScrolledTrackbar(state.scale, position, code, steps, state.layout.is_vertical);
  }
  void TellPressed(bool is_pressed) override {
    if (is_pressed && disables_when_pressed) gestures.Interrupt();
  }
  void ThumbsChanged() override {}
  void HoldMouse(bool holds) override {
    holds_mouse = holds;
    if (!holds) gestures.Release();  // the system tells of it in the middle of the call
  }
  void RunRepeatTimer(bool runs) override { timer_runs = runs; }
  void ShowFocusCaret(bool shows) override { shows_caret = shows; }
  void PutCursor(Point client) override {
    heard += " cursor" + std::to_string(client.x - kTrackStart);
    EXPECT_EQ(client.y, At(0).y) << "on the thumb";
  }

  // Along the track of a horizontal trackbar.
  void Press(int pixel) { gestures.Press(At(pixel)); }
  void Move(int pixel, bool is_fine = false) { gestures.Move(At(pixel), is_fine); }
  static Point At(int pixel) { return {kTrackStart + pixel, 12}; }

  SliderState state;
  SliderGestures gestures{state, *this};
  std::string heard;
  bool holds_mouse = false, timer_runs = false, shows_caret = true, disables_when_pressed = false;
};

TEST(SliderGestures, MouseTellsInOrderAndLetsGo) {
  struct Case {
    const char* what;
    void (*act)(FakeWindow& window);
    const char* heard;
  };
  for (const auto& [what, act, heard] : {
           Case{"drag", [](FakeWindow& w) { w.Press(52), w.Move(62), w.Move(70), w.gestures.Release(); },
                " 9 5=60 5=68 4=68 8"},
           Case{"press alone", [](FakeWindow& w) { w.Press(48), w.Move(48), w.gestures.Release(); }, " 9 4=50 8"},
           Case{"press where a pixel stands for many positions",
                [](FakeWindow& w) {
                  w.state.SetRange(0, 5000), w.state.positions[0] = 2512;
                  w.Press(50), w.Move(50), w.gestures.Release();
                },
                " 9 4=2512 8"},
           Case{"beyond the end", [](FakeWindow& w) { w.Press(50), w.Move(999), w.gestures.Release(); },
                " 9 5=100 4=100 8"},
           Case{"Escape",
                [](FakeWindow& w) { w.Press(50), w.Move(60), w.gestures.KeyDown(0x1B), w.gestures.Release(); },
                " 9 5=60 8"},
           Case{"other keys meanwhile",
                [](FakeWindow& w) { w.Press(50), w.gestures.KeyDown('7'), w.gestures.Release(); }, " 9 4=50 8"},
           Case{"disabled, then the button", [](FakeWindow& w) { w.Press(50), w.gestures.Interrupt(), w.Move(60); },
                " 9 4=50 8"},
           Case{"channel, up to the cursor",
                [](FakeWindow& w) {
                  w.Press(74);
                  for (int tick = 0; tick < 4; ++tick) w.gestures.Repeat();
                  w.gestures.Release();
                },
                " 9 3 3 8"},  // the thumb covers 65 to 75 then
           Case{"channel, the cursor away and back",
                [](FakeWindow& w) {
                  w.Press(10), w.Move(90), w.gestures.Repeat();
                  w.gestures.Move({kTrackStart, 24}, false), w.gestures.Repeat();  // below the window
                  w.Move(0), w.gestures.Repeat(), w.gestures.Release();
                },
                " 9 2 2 8"},
           Case{"double click",
                [](FakeWindow& w) {
                  w.state.default_position = 20;
                  w.gestures.DoubleClick(FakeWindow::At(50)), w.Move(90), w.gestures.Release();
                },
                " 4=20 8"},
           Case{"double click on the channel",
                [](FakeWindow& w) { w.gestures.DoubleClick(FakeWindow::At(90)), w.gestures.Release(); }, " 9 3 8"},
           Case{"fine steps",
                [](FakeWindow& w) {
                  w.Press(51), w.Move(54, true), w.Move(49, true);
                  w.gestures.Move({FakeWindow::At(51).x, 20}, true), w.gestures.Release();
                },
                " 9 cursor53 5=52 cursor51 5=50 cursor51 4=50 8"},  // (3 + 1) / 2, then from 53 (-4 - 1) / 2
           Case{"disabled by whoever hears of the press",
                [](FakeWindow& w) { w.disables_when_pressed = true, w.Press(50), w.gestures.DoubleClick(w.At(50)); },
                ""},
           Case{"press while a key is held",
                [](FakeWindow& w) { w.gestures.KeyDown(0x25), w.Press(49), w.gestures.Release(); }, " 0 8 9 4=49 8"},
           Case{"wheel", [](FakeWindow& w) { w.gestures.Wheel(2 * 120 + 119, false); }, " 9 3 3 8"},
           Case{"wheel with Ctrl", [](FakeWindow& w) { w.gestures.Wheel(-120, true); }, " 9 0 8"},
       }) {
    FakeWindow window;
    act(window);
    EXPECT_EQ(window.heard, heard) << what;
    EXPECT_TRUE(!window.holds_mouse && !window.timer_runs && window.shows_caret) << what;
  }
}

TEST(SliderGestures, AWindowThatGoesTellsNothing) {
  FakeWindow window;
  window.Press(50);
  window.gestures.Forget();
  EXPECT_EQ(window.heard, " 9");
  EXPECT_FALSE(window.holds_mouse);
}

TEST(SliderGestures, KeysTellTheirCodes) {
  struct Case {
    int key;
    const char* horizontal;
    const char* vertical;
    const char* fader;
  };
  for (const auto& [key, horizontal, vertical, fader] : {
           Case{0x21, " 2 8", " 2 8", " 2 8"},
           Case{0x22, " 3 8", " 3 8", " 3 8"},
           Case{0x23, " 7 8", " 7 8", " 7 8"},
           Case{0x24, " 6 8", " 6 8", " 6 8"},
           Case{0x25, " 0 8", " 1 8", " 1 8"},
           Case{0x72, " 0 8", " 1 8", " 1 8"},
           Case{0x28, " 0 8", " 1 8", " 1 8"},
           Case{0x26, " 1 8", " 0 8", " 0 8"},
           Case{0x27, " 1 8", " 0 8", " 0 8"},
           Case{0x78, " 1 8", " 0 8", " 0 8"},
           Case{'7', " 4=70 8", " 4=70 8", " 4=70 8"},
           Case{'L', "", "", ""},
       }) {
    const auto press = [key = key](SliderKind kind, bool is_vertical) {
      FakeWindow window(kind, is_vertical);
      window.gestures.KeyDown(key);
      window.gestures.KeyUp(key);
      window.gestures.KeyUp(key);
      return window.heard;
    };
    EXPECT_EQ(press(SliderKind::kTrackbar, false), horizontal) << key;
    EXPECT_EQ(press(SliderKind::kTrackbar, true), vertical) << key;
    EXPECT_EQ(press(SliderKind::kFader, false), fader) << key;
  }
}

TEST(SliderGestures, OneEndPerHeldKeys) {
  FakeWindow window;
  window.gestures.KeyUp('7');  // pressed in another window
  window.gestures.KeyDown(0x25), window.gestures.KeyDown(0x25), window.gestures.KeyDown(0x27);
  window.gestures.KeyUp(0x25);
  window.gestures.ReleaseKey();  // the focus goes
  window.gestures.KeyUp(0x27);
  EXPECT_EQ(window.heard, " 0 0 1 8");
  EXPECT_EQ(window.gestures.KeyDown(0x0C), KeyUse::kIgnored);
  EXPECT_EQ(window.gestures.KeyDown(0x65), KeyUse::kIgnored);
  EXPECT_EQ(window.gestures.KeyDown(0x70), KeyUse::kUnknown);
}

TEST(SliderGestures, LinkedThumbsMoveAsPicked) {
  FakeWindow window(SliderKind::kFader, true);  // the window is 116 high: position 0 lies at 108
  window.state.thumb_count = 2;
  window.state.positions = {50, 80};
  const auto drag = [&window](Point from, Point to) {
    window.gestures.Press(from), window.gestures.Move(to, false), window.gestures.Release();
    return window.state.positions;
  };
  EXPECT_EQ(drag({18, 28}, {18, 18}), (ThumbPositions{50, 90})) << "the right thumb, which was not picked";
  window.gestures.KeyDown('B');
  EXPECT_EQ(drag({6, 58}, {6, 38}), (ThumbPositions{70, 100})) << "the range ends";
  window.gestures.KeyDown('L'), window.gestures.KeyDown(0x28);
  EXPECT_EQ(window.state.positions, (ThumbPositions{69, 100})) << "a step of its own";
}

}  // namespace
}  // namespace tervan::ui
