// The level meter from outside: messages and their answers, what is lit, menu and clicks.

#include "ui/controls/meter_messages.h"

#include <oleacc.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <map>
#include <random>
#include <string>

#include "module/module.h"
#include "resources/ids.h"

namespace tervan::test {
namespace {

using namespace tervan::ui;
using testing::ElementsAre;
using testing::StartsWith;

constexpr DWORD kInputMeter = 0x06BC;  // as on the compressor's page
constexpr int kId = 2014;

INT32 Bits(float level) { return std::bit_cast<INT32>(level); }
INT32 AtDb(double db) { return Bits(static_cast<float>(std::pow(10.0, db / 20.0))); }

// A page with a meter, and what it hears of the meter.
class MeterControl : public ModuleTest {
 protected:
  void SetUp() override {
    ModuleTest::SetUp();
    page = CreateWindowW(L"STATIC", L"", WS_POPUP, 0, 0, 400, 200, nullptr, nullptr, nullptr, nullptr);
    ShowWindow(page, SW_SHOWNOACTIVATE);
    SetWindowLongPtrW(page, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetWindowLongPtrW(page, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(OnPageMessage));
  }
  void TearDown() override {
    DestroyWindow(page);
    ModuleTest::TearDown();
  }

  HWND Make(DWORD style, int width = 300, int height = 40) {
    return meter = CreateWindowW(kMeterClassName, L"", WS_CHILD | WS_VISIBLE | style, 20, 10, width, height, page,
                                 reinterpret_cast<HMENU>(kId), nullptr, nullptr);
  }
  // Floats, two channels, 42 dB.
  HWND MakeInputMeter(DWORD style = kInputMeter) {
    Make(style);
    Send(kMeterSetChannelCount, 0, 2);
    Send(kMeterSetRange, MAKEWPARAM(0, 1), 32767);
    Send(kMeterSetDisplayRange, 0, 128);
    return meter;
  }
  LRESULT Send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
    return SendMessageW(meter, message, wparam, lparam);
  }
  void Set(std::vector<INT32> levels) const {
    Send(kMeterSetLevels, MAKEWPARAM(1, levels.size()), reinterpret_cast<LPARAM>(levels.data()));
  }
  std::vector<INT32> Get(UINT message, int count) const {
    std::vector<INT32> values(static_cast<std::size_t>(count), 77);
    values.resize(
        static_cast<std::size_t>(Send(message, MAKEWPARAM(0, count), reinterpret_cast<LPARAM>(values.data()))));
    return values;
  }

  // The pixels along the middle of the first channel, from the left edge of the meter to the right one.
  std::vector<COLORREF> Row() const {
    RECT bar = {};
    EXPECT_TRUE(Send(kMeterGetBarBounds, kMeterBarArea, reinterpret_cast<LPARAM>(&bar)));
    const HDC dc = GetDC(meter);
    std::vector<COLORREF> row;
    for (int x = 0; x < 300; ++x) row.push_back(GetPixel(dc, x, (bar.top + bar.bottom) / 2));
    ReleaseDC(meter, dc);
    return row;
  }

  // Opens the menu and presses these keys in it.
  void UseMenu(std::vector<WPARAM> pressed) {
    keys = std::move(pressed);
    Send(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(meter), -1);
    EXPECT_TRUE(keys.empty()) << "the menu never waited";
  }

  HWND page = nullptr;
  HWND meter = nullptr;
  std::vector<WPARAM> keys;          // to press when the menu waits; VK_DELETE destroys the meter
  std::vector<std::string> helps;    // of the highlighted items
  std::map<UINT, UINT> item_states;  // of the menu that was seen last
  int range_notifications = 0;
  int menus_for_page = 0;

 private:
  static LRESULT CALLBACK OnPageMessage(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    auto& test = *reinterpret_cast<MeterControl*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    switch (message) {
      case WM_NOTIFY: test.OnNotify(reinterpret_cast<const NMHDR*>(lparam)); return 0;
      case WM_ENTERIDLE: test.OnIdle(); return 0;
      case WM_CONTEXTMENU: ++test.menus_for_page; return 0;
    }
    return DefWindowProcW(window, message, wparam, lparam);
  }
  void OnNotify(const NMHDR* header) {
    EXPECT_EQ(header->hwndFrom, meter);
    EXPECT_EQ(header->idFrom, static_cast<UINT_PTR>(kId));
    if (header->code == kNotifyMeterRange) ++range_notifications;
    if (header->code != kNotifyMenuHelp) return;
    const auto& help = *reinterpret_cast<const MenuHelpNotification*>(header);
    helps.emplace_back(help.help_text);
    for (UINT id = ID_METER_RANGE_12_DB; id <= ID_METER_HOLD_VALLEYS; ++id) {
      item_states[id] = GetMenuState(help.menu, id, MF_BYCOMMAND);
    }
  }
  void OnIdle() {
    for (const WPARAM key : std::exchange(keys, {})) {
      if (key == VK_DELETE) DestroyWindow(meter);
      PostMessageW(meter, WM_KEYDOWN, key, 0);
    }
  }
};

TEST_F(MeterControl, RemembersWhatItIsTold) {
  Make(kInputMeter);
  EXPECT_EQ(Send(kMeterSetChannelCount, 0, 9), kMaxMeterChannels);
  EXPECT_EQ(Send(kMeterSetRange, MAKEWPARAM(0, 1), 400), 400);
  INT32 is_float = 0;
  float step = 0;
  Send(kMeterGetRange, reinterpret_cast<WPARAM>(&is_float), reinterpret_cast<LPARAM>(&step));
  EXPECT_EQ(is_float, -1);
  EXPECT_EQ(step, 0.0025F);
  EXPECT_EQ(Send(kMeterSetDisplayRange, 1, 16), 16);
  EXPECT_EQ(Send(kMeterGetDisplayRange), 16);
  EXPECT_EQ(Send(kMeterChangeStyle, kMeterHoldValleys, 1), 0x07BC);
  EXPECT_EQ(Send(kMeterChangeStyle, kMeterHoldPeaks | kMeterMenu, 0), 0x05B8);

  char format[16];
  Send(kMeterGetLabelFormat, sizeof format, reinterpret_cast<LPARAM>(format));
  EXPECT_STREQ(format, "$.1f");
  Send(kMeterSetLabelFormat, 0, reinterpret_cast<LPARAM>("$.0f decibels and more"));
  EXPECT_EQ(Send(kMeterGetLabelFormat, 6, reinterpret_cast<LPARAM>(format)), 5);
  EXPECT_STREQ(format, "$.0f ");

  Set({Bits(0.5F), Bits(1.5F), -1});
  EXPECT_THAT(Get(kMeterGetLevels, 3), ElementsAre(Bits(0.5F), Bits(1.0F), 0));
  EXPECT_EQ(Get(kMeterGetLevels, 9).size(), 6U);
  EXPECT_THAT(Get(kMeterGetExtremes, 2), ElementsAre(Bits(0.5F), Bits(1.5F)));
  Make(0x051E);
  EXPECT_EQ(Send(kMeterGetExtremes), 32767);
}

TEST_F(MeterControl, LightsUpToTheLevelAndForAReductionFromTheLevelOn) {
  for (const bool is_reduction : {false, true}) {
    MakeInputMeter(is_reduction ? 0x0016 : 0x0014);  // clip indicators, no markers
    Set({-1, -1});
    const std::vector<COLORREF> dark = Row();
    const auto lit = [&] {  // how many pixels, and where they begin
      const std::vector<COLORREF> row = Row();
      const auto first = std::ranges::mismatch(row, dark).in1;
      int count = 0;
      for (std::size_t x = 0; x < row.size(); ++x) count += row[x] != dark[x];
      return std::pair(static_cast<int>(first - row.begin()), count);
    };
    RECT bar = {};
    Send(kMeterGetBarBounds, kMeterBarArea, reinterpret_cast<LPARAM>(&bar));
    const int length = static_cast<int>(bar.right - bar.left);
    const int quiet_part = length - static_cast<int>(length / 3.0 + 0.45);  // 14 of 42 dB are dark

    Set({AtDb(-14), 0});
    EXPECT_EQ(lit(), is_reduction ? std::pair(1 + quiet_part, length - quiet_part) : std::pair(1, quiet_part));
    Set({AtDb(0), 0});
    const int at_full_scale = lit().second;
    EXPECT_EQ(at_full_scale, is_reduction ? 0 : length) << "the clip indicator stays dark";
    Set({Bits(1.5F), 0});
    EXPECT_GT(lit().second, at_full_scale + 5);
    Send(WM_LBUTTONDOWN, 0, MAKELPARAM(bar.right + 5, bar.top));
    EXPECT_EQ(lit().second, at_full_scale) << "a click resets the indicator";
    EXPECT_EQ(Send(kMeterGetExtremes), Bits(1.0F));
    DestroyWindow(meter);
  }
}

TEST_F(MeterControl, LeavesToThePageWhatIsNotItsOwn) {
  Make(kMeterClip);
  RECT bar = {};
  Send(kMeterGetBarBounds, kMeterBarArea, reinterpret_cast<LPARAM>(&bar));
  const auto hit = [this](LONG x) {
    POINT p = {x, 3};
    ClientToScreen(meter, &p);
    return Send(WM_NCHITTEST, 0, MAKELPARAM(p.x, p.y));
  };
  EXPECT_EQ(hit(bar.right - 1), HTTRANSPARENT);
  EXPECT_EQ(hit(bar.right + 5), HTCLIENT);
  Send(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(meter), -1);
  Send(kMeterChangeStyle, kMeterMenu, 1);
  EXPECT_EQ(hit(bar.right - 1), HTCLIENT);
  Send(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(page), -1);
  EXPECT_EQ(menus_for_page, 2);
}

TEST_F(MeterControl, MenuSetsRangesAndStyles) {
  MakeInputMeter();
  UseMenu({VK_DOWN, VK_DOWN, VK_DOWN, VK_RETURN});
  EXPECT_EQ(Send(kMeterGetDisplayRange), 16);
  EXPECT_EQ(range_notifications, 1);
  EXPECT_THAT(helps, ElementsAre(StartsWith("Turns"), StartsWith("Shows levels from -12"),
                                 StartsWith("Shows levels from -24")));
  const auto is_checked = [this](UINT id) { return (item_states.at(id) & MF_CHECKED) != 0; };
  EXPECT_EQ(item_states.at(ID_METER_RANGE_90_DB), static_cast<UINT>(-1)) << "is not there";
  EXPECT_TRUE(is_checked(ID_METER_RANGE_42_DB) && is_checked(ID_METER_HOLD_PEAKS));
  EXPECT_FALSE(is_checked(ID_METER_RANGE_24_DB) || is_checked(ID_METER_HOLD_VALLEYS));

  UseMenu({VK_UP, VK_RETURN});
  EXPECT_EQ(Send(kMeterGetStyle), static_cast<LRESULT>(kInputMeter | kMeterHoldValleys));
  Set({Bits(2.0F), Bits(0.5F)});
  UseMenu({VK_DOWN, VK_RETURN});
  EXPECT_EQ(Send(kMeterGetExtremes), Bits(1.0F));
  UseMenu({VK_ESCAPE});
  EXPECT_EQ(range_notifications, 1);
  UseMenu({VK_DELETE});
  EXPECT_FALSE(IsWindow(meter));
}

TEST_F(MeterControl, TellsScreenReadersItsLevels) {
  MakeInputMeter();
  Set({AtDb(-12.34), Bits(0.0F)});
  ComPtr<IAccessible> accessible;
  ASSERT_HRESULT_SUCCEEDED(
      AccessibleObjectFromWindow(meter, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible), accessible.PutVoid()));
  VARIANT self = {};
  self.vt = VT_I4;
  const auto value = [&] {
    BSTR text = nullptr;
    EXPECT_EQ(accessible->get_accValue(self, &text), S_OK);
    const std::wstring copy = text ? text : L"";
    SysFreeString(text);
    return copy;
  };
  EXPECT_EQ(value(), L"-12.3 dB, -Inf. dB");
  Set({Bits(1.0F), Bits(7.0F)});
  EXPECT_EQ(value(), L"0.0 dB, 0.0 dB, clipped");
  EXPECT_EQ(accessible->accDoDefaultAction(self), S_OK);
  EXPECT_EQ(value(), L"0.0 dB, 0.0 dB");
}

TEST_F(MeterControl, SurvivesWhateverItIsTold) {
  std::mt19937 random(244);
  const auto any_of = [&random](std::initializer_list<UINT> numbers) {
    return static_cast<LPARAM>(numbers.begin()[random() % numbers.size()]);
  };
  Make(kInputMeter);
  for (int turn = 0; turn < 10000; ++turn) {
    const UINT message = kMeterGetLevels + random() % (kMeterChangeOptions - kMeterGetLevels + 1);
    const bool takes_place = message == kMeterSetLabelFormat || message == kMeterGetLabelFormat ||
                             message == kMeterGetRange || message == kMeterGetBarBounds;
    const auto number =
        any_of({0, 1, 2, 3, 128, 400, 32768, 0x3F800000, 0x7F800000, 0x7FC00000, 0x7FFFFFFF, 0xFFFFFFFF});
    const auto count = message == kMeterSetRange ? any_of({0, 1}) : 0;
    Send(message, MAKEWPARAM(turn % 9 == 0 && !takes_place, count), takes_place ? 0 : number);
    if (turn % 50 == 0) SetWindowPos(meter, nullptr, 0, 0, any_of({0, 1, 7, 300}), any_of({0, 1, 9, 40, 99}), 0);
    ASSERT_LE(Send(kMeterGetChannelCount), kMaxMeterChannels);
    ASSERT_GE(Send(kMeterGetLevels), 0);
  }
}

TEST_F(MeterControl, MetersThatComeAndGoLeaveNothingBehind) {
  const auto next_handle = [] {  // numbers grow with the objects that live
    const HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
    DeleteObject(brush);
    return LOWORD(reinterpret_cast<ULONG_PTR>(brush));
  };
  MakeInputMeter();  // what the module keeps, its font, is there
  UpdateWindow(meter);
  const WORD before = next_handle();
  for (int i = 0; i < 500; ++i) {
    const HWND first = meter;
    ASSERT_NE(MakeInputMeter(i % 2 ? 0x051E : 0x07BD), nullptr);
    Set({AtDb(-6), AtDb(-9)});
    DestroyWindow(first);
  }
  EXPECT_LT(next_handle() - before, 100);
}

}  // namespace
}  // namespace tervan::test
