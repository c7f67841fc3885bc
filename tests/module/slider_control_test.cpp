// Trackbar and fader as pages reach them: window classes by name, messages by number.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <functional>
#include <string>

#include "module/control_rig.h"

namespace tervan::test {
namespace {

constexpr const wchar_t* kTrackbar = L"qvmodfx1Bld244TrackbarClass";
constexpr const wchar_t* kFader = L"qvmodfx1Bld244FaderClass";
constexpr DWORD kVertical = 1, kTwoThumbs = 0x40, kTapered = 0x80, kNotifies = 0x8000;
constexpr UINT kGet = 0x60A, kGetMinimum = 0x60B, kGetMaximum = 0x60C, kSetRange = 0x60D, kSetMinimum = 0x60E;
constexpr UINT kSetMaximum = 0x60F, kSet = 0x610, kSetDefault = 0x611, kMetrics = 0x61E, kSetUp = 0x62D;
constexpr UINT kSetThumb = 0x62F, kGetThumb = 0x630;

struct Thumbs {
  NMHDR header;
  LPARAM user_data;
  INT32 count, code;
  const INT32* positions;
};

class SliderTest : public ControlTest {
 protected:
  HWND Make(const wchar_t* name, DWORD style = 0, int width = 112, int height = 24) {
    heard.clear();
    return ControlTest::Make(name, style, width, height);
  }
  int Number(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) {
    return static_cast<int>(Send(message, wparam, lparam));
  }
  // The mouse at a place of a horizontal trackbar's track, in hundredths.
  LRESULT Mouse(UINT message, int hundredths) {
    const auto metrics = static_cast<DWORD>(Send(kMetrics));
    return Send(message, MK_LBUTTON, MAKELPARAM(HIWORD(metrics) + hundredths * LOWORD(metrics) / 100, 12));
  }

  std::string heard;
  std::function<void(const std::string&)> on_hearing = [](const std::string&) {};

 private:
  void Hear(UINT message, WPARAM wparam, LPARAM lparam) override {
    std::string what;
    if (message == WM_HSCROLL || message == WM_VSCROLL) {
      what = (message == WM_HSCROLL ? "H" : "V") + std::to_string(LOWORD(wparam));
      if (HIWORD(wparam) != 0) what += "=" + std::to_string(static_cast<SHORT>(HIWORD(wparam)));
      EXPECT_EQ(reinterpret_cast<HWND>(lparam), control);
    } else if (message == WM_COMMAND) {
      what = "C" + std::to_string(LOWORD(wparam)) + "." + std::to_string(HIWORD(wparam));
    } else if (message == WM_NOTIFY) {
      const auto& thumbs = *reinterpret_cast<const Thumbs*>(lparam);
      what = "N" + std::to_string(static_cast<int>(thumbs.header.code));
      if (thumbs.header.code == static_cast<UINT>(-102)) what += "=" + std::to_string(thumbs.user_data);
      if (thumbs.header.code == static_cast<UINT>(-104)) {
        EXPECT_EQ(thumbs.count, 2);
        what += "." + std::to_string(thumbs.code) + "=" + std::to_string(thumbs.positions[1]);
      }
    } else if (message == WM_CONTEXTMENU) {
      what = "M";
    }
    if (what.empty()) return;
    heard += what + " ";
    on_hearing(what);
  }
};

TEST_F(SliderTest, KeepsWhatItIsSetTo) {
  Make(kTrackbar, kTapered);
  EXPECT_EQ(Number(kGet), 50);
  Send(kSetRange, 0, MAKELPARAM(static_cast<WORD>(-600), 0));
  EXPECT_EQ(Number(kGetMinimum), -600);
  EXPECT_EQ(Number(kGetMaximum), 0);
  EXPECT_EQ(Number(kGet), 0);
  EXPECT_EQ(Number(kSet, 1, 9), 0);
  EXPECT_EQ(Number(kSet, 1, -601), -600);
  EXPECT_EQ(Number(kSetDefault, 0, -700), -600);
  EXPECT_EQ(Number(0x61F, 1, 3), -1) << "a drawing switch";
  EXPECT_EQ(static_cast<COLORREF>(Send(0x628)), GetSysColor(COLOR_BTNFACE));
  Send(0x627, 0, RGB(1, 2, 3));
  EXPECT_EQ(static_cast<COLORREF>(Send(0x628)), RGB(1, 2, 3));
  EXPECT_EQ(Send(0x62A), kCreationParameter);
  Make(kFader);
  Send(kSetMinimum, 0, -60), Send(kSetMaximum, 0, 70000);
  EXPECT_EQ(Number(kSet, 1, 70001), 70001) << "stored as given";
  EXPECT_EQ(Number(kSetThumb, MAKEWPARAM(1, 1), -5), -5);
  EXPECT_EQ(Number(kGetThumb, MAKEWPARAM(0, 1)), -5);
  EXPECT_EQ(Number(kSetThumb, MAKEWPARAM(1, 2), 9), 0) << "there is no second thumb";
  EXPECT_EQ(heard, "");
}

TEST_F(SliderTest, ADragEndsOnceHoweverItEnds) {
  struct Case {
    const char* how;
    std::function<void()> end;
    const char* heard;
  };
  const Case cases[] = {
      {"button", [this] { Mouse(WM_LBUTTONUP, 60); }, "H4=60 H8 "},
      {"capture", [this] { SetCapture(parent), ReleaseCapture(); }, "H4=60 H8 "},
      {"cancelled", [this] { Send(WM_CANCELMODE); }, "H4=60 H8 "},
      {"disabled", [this] { EnableWindow(control, FALSE); }, "H4=60 H8 "},
      {"hidden", [this] { ShowWindow(control, SW_HIDE); }, "H4=60 H8 "},
      {"destroyed, which hides it first", [this] { DestroyWindow(control); }, "H4=60 H8 "},
      {"Escape", [this] { Send(WM_KEYDOWN, VK_ESCAPE); }, "H8 "},
  };
  for (const auto& [how, end, ended] : cases) {
    SCOPED_TRACE(how);
    Make(kTrackbar);
    Mouse(WM_LBUTTONDOWN, 50), Mouse(WM_MOUSEMOVE, 60);
    EXPECT_EQ(heard, "H9 H5=60 ");
    EXPECT_EQ(GetCapture(), control);
    SetFocus(parent);
    EXPECT_TRUE(Send(WM_GETDLGCODE) & DLGC_WANTALLKEYS);
    heard.clear();
    end();
    EXPECT_EQ(heard, ended);
    EXPECT_EQ(GetCapture(), nullptr);
    Mouse(WM_LBUTTONUP, 60), Send(WM_CAPTURECHANGED);
    EXPECT_EQ(heard, ended);
    if (IsWindow(control)) {
      EXPECT_FALSE(Send(WM_GETDLGCODE) & DLGC_WANTALLKEYS);
      heard.clear(), EnableWindow(control, FALSE), Mouse(WM_LBUTTONDOWN, 10), Send(WM_MOUSEWHEEL, 120 << 16);
      EXPECT_EQ(heard, "") << "disabled";
      DestroyWindow(control);
    }
  }
}

TEST_F(SliderTest, TellsOfKeysFocusAndPresses) {
  Make(kTrackbar, kNotifies);
  Send(kSetMaximum, 0, 500);
  SetFocus(control);
  Send(WM_KEYDOWN, '5'), Send(WM_KEYUP, '5'), Send(WM_KEYDOWN, VK_RIGHT), SetFocus(parent);
  EXPECT_EQ(heard, "C77.1 H4=250 H8 H1 H8 N-8 ");
  heard.clear(), Send(WM_KEYDOWN, VK_F1), Send(WM_KEYDOWN, VK_CLEAR);
  EXPECT_EQ(heard, "N-102=112 ");
  heard.clear(), Mouse(WM_LBUTTONDOWN, 80), Mouse(WM_LBUTTONUP, 80);
  EXPECT_EQ(heard, "C77.1 C77.3 H9 H3 H8 C77.4 ");
  Make(kFader, kVertical, 42, 120), Send(WM_MOUSEWHEEL, 120 << 16), Send(WM_KEYDOWN, VK_F1);
  EXPECT_EQ(heard, "V9 V2 V8 ");
}

TEST_F(SliderTest, TheRightButtonMakesFineStepsAndNoMenu) {
  for (const bool is_fader : {false, true}) {
    SCOPED_TRACE(is_fader);
    const auto mouse = [&](UINT message, WPARAM keys, int pixel) {
      Send(message, keys, MAKELPARAM((is_fader ? 8 : 6) + pixel, 12));
    };
    Make(is_fader ? kFader : kTrackbar, 0, is_fader ? 116 : 112);
    mouse(WM_LBUTTONDOWN, MK_LBUTTON, 50), mouse(WM_MOUSEMOVE, MK_LBUTTON | MK_CONTROL, 60);
    mouse(WM_RBUTTONDOWN, MK_LBUTTON | MK_RBUTTON, 60), heard.clear();
    const int before = Number(kGet);
    EXPECT_EQ(before, is_fader ? 60 : 55) << "Ctrl is a trackbar's";
    mouse(WM_MOUSEMOVE, MK_LBUTTON | MK_RBUTTON, before + 3);
    EXPECT_EQ(Number(kGet), before + 2);
    mouse(WM_LBUTTONUP, MK_RBUTTON, 60), heard.clear(), mouse(WM_RBUTTONUP, 0, 60);
    EXPECT_EQ(heard, "");
    mouse(WM_RBUTTONDOWN, MK_RBUTTON, 60), mouse(WM_RBUTTONUP, 0, 60);
    EXPECT_EQ(heard, "M ");
    DestroyWindow(control);
  }
}

TEST_F(SliderTest, TheCaretIsWhereTheThumbWasDrawn) {
  Make(kTrackbar), SetFocus(control), UpdateWindow(control);
  const auto caret = [] {
    POINT place = {};
    GetCaretPos(&place);
    return place.x;
  };
  const LONG before = caret();
  Send(kSet, 0, 80);
  EXPECT_EQ(caret(), before);
  Send(kSet, 1, 80);
  EXPECT_EQ(caret(), before + 30);
}

TEST_F(SliderTest, AFaderOfTwoThumbs) {
  Make(kFader);
  const INT32 set_up[] = {0, 1000, 500, 5, 0, kTwoThumbs, kTwoThumbs, 100, 900};
  Send(kSetUp, 0, reinterpret_cast<LPARAM>(set_up));
  INT32 positions[2] = {};
  Send(kGetThumb, 0, reinterpret_cast<LPARAM>(positions));
  EXPECT_THAT(positions, testing::ElementsAre(100, 900));
  Send(0x62E, 0, 3), Send(WM_KEYDOWN, VK_PRIOR), Send(WM_KEYDOWN, 'R'), Send(WM_KEYDOWN, VK_LEFT),
      Send(WM_KEYUP, VK_LEFT);
  EXPECT_EQ(heard, "N-104.2=1000 N-104.1=995 N-104.8=995 ");
  EXPECT_EQ(Number(kGet), 200);
}

// A page may close inside any notification. What was told before it closed is all that is told.
TEST_F(SliderTest, MayBeDestroyedByWhoeverIsTold) {
  const std::function<void()> actions[] = {
      [this] { Mouse(WM_LBUTTONDOWN, 50), Mouse(WM_MOUSEMOVE, 60), Mouse(WM_LBUTTONUP, 60); },
      [this] { Mouse(WM_LBUTTONDOWN, 90), Send(WM_TIMER, 42), Mouse(WM_LBUTTONUP, 90); },
      [this] { Mouse(WM_LBUTTONDBLCLK, 50), Mouse(WM_LBUTTONUP, 50); },
      [this] { Send(WM_MOUSEWHEEL, 480 << 16); },
      [this] { Send(WM_KEYDOWN, '7'), Send(WM_KEYUP, '7'), Send(WM_KEYDOWN, 'X'); },
      [this] { SetFocus(control), Send(WM_KEYDOWN, VK_HOME), SetFocus(parent); },
  };
  for (const auto& act : actions) {
    Make(kTrackbar, kNotifies), SetFocus(parent), heard.clear(), act();
    const auto count = std::ranges::count(heard, ' ');
    DestroyWindow(control);
    for (int last = 1; last <= count; ++last) {
      std::string until_death;
      Make(kTrackbar, kNotifies), SetFocus(parent), heard.clear();
      on_hearing = [&, told = 0](const std::string&) mutable {
        if (++told != last) return;
        DestroyWindow(control);
        until_death = heard;
      };
      act();
      on_hearing = [](const std::string&) {};
      EXPECT_EQ(heard, until_death);
      EXPECT_FALSE(IsWindow(control)) << heard;
      EXPECT_EQ(GetCapture(), nullptr) << heard;
    }
  }
}

TEST_F(SliderTest, OddNumbersDoNoHarm) {
  for (const wchar_t* const name : {kTrackbar, kFader}) {
    for (const DWORD style : {DWORD{0}, kTapered, kTapered | kTwoThumbs | kVertical, kTwoThumbs}) {
      Make(name, style);
      for (UINT message = 0x600; message <= 0x640; ++message) {
        ShowWindow(control, SW_HIDE);  // nothing is drawn meanwhile
        for (const LPARAM number : {0, 1, 2, 0x7FFF, 0xFFFF, 0x30001, INT_MIN, INT_MAX, -1}) {
          const bool may_point = message == kSetThumb || message == kGetThumb;
          for (const WPARAM wparam : {WPARAM{0}, WPARAM{1}, WPARAM{0x20001}, WPARAM{0x30001}, ~WPARAM{0}}) {
            const bool is_pointer = message == kSetUp || (may_point && HIWORD(wparam) == 0);
            Send(message, wparam, is_pointer ? number & 0xFFFF : number);
          }
        }
        ShowWindow(control, SW_SHOW), UpdateWindow(control);
        Send(WM_LBUTTONDOWN, 0, MAKELPARAM(-5, 500)), Send(WM_MOUSEMOVE, 0, MAKELPARAM(77, 77)), Send(WM_LBUTTONUP);
      }
      EXPECT_TRUE(DestroyWindow(control));
    }
  }
}

TEST_F(SliderTest, ScreenReadersReadIt) {
  Make(kTrackbar);
  const ComPtr<IAccessible> accessible = Accessible();
  EXPECT_EQ(Text(accessible, &IAccessible::get_accValue), L"50");
  SetWindowTextW(control, L"70 %");
  EXPECT_EQ(Text(accessible, &IAccessible::get_accValue), L"70 %");
  DestroyWindow(control);
  BSTR text = nullptr;
  EXPECT_EQ(accessible->get_accValue(Part(0), &text), CO_E_OBJNOTCONNECTED);
}

}  // namespace
}  // namespace tervan::test
