// The level meter from outside: messages and their answers, what is lit, menu and clicks.

#include "ui/controls/meter_messages.h"

#include <bit>
#include <cmath>
#include <map>
#include <random>
#include <string>

#include "module/control_rig.h"
#include "resources/ids.h"

namespace tervan::test {
namespace {

using namespace tervan::ui;
using testing::ElementsAre;
using testing::StartsWith;

constexpr DWORD kInputMeter = 0x06BC;  // as on the compressor's page

INT32 Bits(float level) { return std::bit_cast<INT32>(level); }
INT32 AtDb(double db) { return Bits(static_cast<float>(std::pow(10.0, db / 20.0))); }

class MeterControl : public ControlTest {
 protected:
  void Make(DWORD style) {
    ControlTest::Make(kMeterClassName, style, 300, 40);
    SetWindowPos(control, nullptr, 20, 10, 300, 40, SWP_NOZORDER);
  }
  // Floats, two channels, 42 dB.
  void MakeInputMeter(DWORD style = kInputMeter) {
    Make(style);
    Send(kMeterSetChannelCount, 0, 2);
    Send(kMeterSetRange, MAKEWPARAM(0, 1), 32767);
    Send(kMeterSetDisplayRange, 0, 128);
  }
  LRESULT Pass(UINT message, WPARAM wparam, const void* place) const {
    return Send(message, wparam, reinterpret_cast<LPARAM>(place));
  }
  void Set(std::vector<INT32> levels, UINT message = kMeterSetLevels) const {
    Pass(message, MAKEWPARAM(1, levels.size()), levels.data());
  }
  std::vector<INT32> Get(UINT message, WORD count) const {
    std::vector<INT32> values(count, 77);
    values.resize(static_cast<std::size_t>(Pass(message, MAKEWPARAM(0, count), values.data())));
    return values;
  }
  RECT Bar() const {
    RECT bar = {};
    EXPECT_TRUE(Pass(kMeterGetBarBounds, kMeterBarArea, &bar));
    return bar;
  }
  // How many pixels of a bar so many decibels below full scale light, of 42.
  int Place(double db_below) const {
    const int length = static_cast<int>(Bar().right - Bar().left);
    return length - static_cast<int>(db_below / 42 * length + 0.45);
  }
  // The middle of the first channel, from the left edge of the meter to the right one.
  std::vector<COLORREF> Row() const {
    UpdateWindow(control);
    const RECT bar = Bar();
    const HDC dc = GetDC(control);
    std::vector<COLORREF> row;
    for (int x = 0; x < 300; ++x) row.push_back(GetPixel(dc, x, (bar.top + bar.bottom) / 2));
    ReleaseDC(control, dc);
    return row;
  }
  std::vector<int> ChangesSince(const std::vector<COLORREF>& before) const {
    const std::vector<COLORREF> now = Row();
    std::vector<int> places;
    for (std::size_t x = 0; x < now.size(); ++x) {
      if (now[x] != before[x]) places.push_back(static_cast<int>(x));
    }
    return places;
  }

  // Opens the menu and presses these keys in it.
  void UseMenu(std::vector<WPARAM> pressed) {
    keys = std::move(pressed);
    Send(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(control), MAKELPARAM(-1, -1));
    EXPECT_TRUE(keys.empty()) << "the menu never waited";
  }

  std::vector<WPARAM> keys;          // to press when the menu waits; VK_DELETE destroys the meter
  std::vector<std::string> helps;    // of the highlighted items
  std::map<UINT, UINT> item_states;  // of the menu that was seen last
  int range_notifications = 0;
  int menus_for_page = 0;

  void Hear(UINT message, WPARAM, LPARAM lparam) override {
    if (message == WM_NOTIFY) OnNotify(*reinterpret_cast<const MenuHelpNotification*>(lparam));
    if (message == WM_ENTERIDLE) OnMenu(reinterpret_cast<HWND>(lparam));
    if (message == WM_CONTEXTMENU) ++menus_for_page;
  }
  void OnNotify(const MenuHelpNotification& help) {
    EXPECT_TRUE(help.header.hwndFrom == control && help.header.idFrom == kId);
    if (help.header.code == kNotifyMeterRange) ++range_notifications;
    if (help.header.code != kNotifyMenuHelp) return;
    helps.emplace_back(help.help_text);
    for (UINT id = ID_METER_RANGE_12_DB; id <= ID_METER_HOLD_VALLEYS; ++id) {
      item_states[id] = GetMenuState(help.menu, id, MF_BYCOMMAND);
    }
  }
  void OnMenu(HWND menu) {
    RECT popup = {};
    GetWindowRect(menu, &popup);
    EXPECT_TRUE(popup.left == 20 + 16 && popup.top == 10 + 16) << popup.left << ", " << popup.top;
    for (const WPARAM key : std::exchange(keys, {})) {
      if (key == VK_DELETE) DestroyWindow(control);
      PostMessageW(control, WM_KEYDOWN, key, 0);
    }
  }
};

TEST_F(MeterControl, DoesWhatItIsTold) {
  Make(kInputMeter);
  EXPECT_EQ(Send(kMeterSetChannelCount, 0, 9), kMaxMeterChannels);
  EXPECT_EQ(Send(kMeterSetRange, MAKEWPARAM(0, 1), 400), 400);
  INT32 is_float = 0;
  float step = 0;
  Pass(kMeterGetRange, reinterpret_cast<WPARAM>(&is_float), &step);
  EXPECT_EQ(is_float, -1);
  EXPECT_EQ(step, 0.0025F);
  EXPECT_EQ(Send(kMeterSetDisplayRange, 1, 16), 16);
  EXPECT_EQ(Send(kMeterChangeStyle, kMeterHoldValleys, 1), 0x07BC);
  EXPECT_EQ(Send(kMeterChangeStyle, kMeterHoldPeaks | kMeterMenu, 0), 0x05B8);

  char format[16];
  Pass(kMeterGetLabelFormat, sizeof format, format);
  EXPECT_STREQ(format, "$.1f");
  Pass(kMeterSetLabelFormat, 0, "$.0f decibels and more");
  EXPECT_EQ(Pass(kMeterGetLabelFormat, 6, format), 5);
  EXPECT_STREQ(format, "$.0f ");

  Set({Bits(0.5F), Bits(1.5F), -1});
  EXPECT_THAT(Get(kMeterGetLevels, 3), ElementsAre(Bits(0.5F), Bits(1.0F), 0));
  EXPECT_EQ(Get(kMeterGetLevels, 9).size(), 6U);
  Set({-1, Bits(0.75F)}, kMeterSetExtremes);
  Send(kMeterResetHolds);
  EXPECT_THAT(Get(kMeterGetExtremes, 2), ElementsAre(0, Bits(0.75F)));
  Send(kMeterResetClip);
  EXPECT_THAT(Get(kMeterGetExtremes, 2), ElementsAre(Bits(0.5F), Bits(1.0F)));
  Make(0x051E);
  EXPECT_EQ(Send(kMeterGetExtremes), 32767);
  Send(kMeterChangeStyle, kMeterInverted, 0);
  EXPECT_EQ(Send(kMeterGetExtremes), 0);
  for (const UINT message : {kMeterSetLevels, kMeterSetDisplayRange, kMeterSetChannelCount, kMeterResetClip,
                             kMeterResetHolds, kMeterSwitchPlainBars, kMeterSwitchNoTicks}) {
    for (const WORD at_once : {0, 1}) {
      Send(message, at_once, 1);
      EXPECT_EQ(GetUpdateRect(control, nullptr, FALSE), !at_once) << message;
    }
  }
}

TEST_F(MeterControl, LightsUpToTheLevelAndForAReductionFromTheLevelOn) {
  for (const bool is_reduction : {false, true}) {
    MakeInputMeter(is_reduction ? 0x0016 : 0x0014);  // clip indicators, no markers
    Set({-1, -1});
    const std::vector<COLORREF> dark = Row();
    const int length = Place(0);
    Set({AtDb(-14), 0});
    const std::vector<int> lit = ChangesSince(dark);
    EXPECT_EQ(lit.front(), is_reduction ? 1 + Place(14) : 1);
    EXPECT_EQ(std::ssize(lit), is_reduction ? length - Place(14) : Place(14));
    Set({AtDb(0), 0});
    EXPECT_EQ(std::ssize(ChangesSince(dark)), is_reduction ? 0 : length) << "the clip indicator stays dark";
    Set({Bits(1.5F), 0});
    EXPECT_GT(std::ssize(ChangesSince(dark)), (is_reduction ? 0 : length) + 5);
    Send(WM_LBUTTONDOWN, 0, MAKELPARAM(Bar().right + 5, Bar().top));
    EXPECT_EQ(std::ssize(ChangesSince(dark)), is_reduction ? 0 : length) << "a click resets the indicator";
    EXPECT_EQ(Send(kMeterGetExtremes), Bits(1.0F));
    DestroyWindow(control);
  }
}

TEST_F(MeterControl, MarksThePeakOrTheValleyOfItsStyle) {
  const auto marks = [this](DWORD style, double first_db, double then_db, UINT reset) {
    for (;;) {
      DestroyWindow(control);
      MakeInputMeter(0);
      const DWORD start = GetTickCount();
      Set({AtDb(first_db), 0});
      Set({AtDb(then_db), 0});
      Send(reset);
      const std::vector<COLORREF> bare = Row();
      Send(kMeterChangeStyle, style, 1);
      const std::vector<int> changes = ChangesSince(bare);
      if (GetTickCount() - start < kMeterHoldMs) return changes;  // later nothing is held any more
    }
  };
  MakeInputMeter(0);
  EXPECT_THAT(marks(kMeterHoldPeaks, -7, -28, WM_NULL), ElementsAre(Place(7)));
  EXPECT_THAT(marks(kMeterHoldValleys, -28, -7, WM_NULL), ElementsAre(Place(28)));
  EXPECT_THAT(marks(kMeterHoldPeaks, -7, -28, kMeterResetHolds), ElementsAre(Place(28)));
}

// A page tells a meter its levels many times a second, and most of the time nothing has changed.
TEST_F(MeterControl, IsPaintedOnlyWhenTheTellingChangesItsPicture) {
  MakeInputMeter();
  const auto is_painted_for = [this](double left_db) {
    const INT32 levels[] = {AtDb(left_db), 0};
    Pass(kMeterSetLevels, MAKEWPARAM(0, 2), levels);
    return GetUpdateRect(control, nullptr, FALSE) != FALSE;
  };
  EXPECT_TRUE(is_painted_for(-7));
  UpdateWindow(control);
  // Longer than a peak is held; yet it is the same peak, and so it is still held when the level falls.
  for (const DWORD start = GetTickCount(); GetTickCount() - start < kMeterHoldMs + 200; Sleep(20)) {
    EXPECT_FALSE(is_painted_for(-7));
  }
  EXPECT_TRUE(is_painted_for(-28));
  const std::vector<COLORREF> marked = Row();
  EXPECT_FALSE(is_painted_for(-28)) << "the marker is not due yet";
  Sleep(kMeterHoldMs);
  EXPECT_TRUE(is_painted_for(-28));
  EXPECT_THAT(ChangesSince(marked), ElementsAre(Place(28), Place(7)));
  const RECT corner = {0, 0, 5, 5};
  for (const double db : {-14, -21}) {
    is_painted_for(-14);
    ValidateRect(control, nullptr);
    InvalidateRect(control, &corner, FALSE);
    UpdateWindow(control);
    EXPECT_TRUE(is_painted_for(db)) << "only a corner of the last picture is there";
  }
}

TEST_F(MeterControl, LeavesToThePageWhatIsNotItsOwn) {
  Make(kMeterClip);
  const LONG end = Bar().right;
  const auto hit = [this](LONG x) { return Send(WM_NCHITTEST, 0, MAKELPARAM(20 + x, 10 + 3)); };
  EXPECT_TRUE(hit(end - 1) == HTTRANSPARENT && hit(end + 5) == HTCLIENT);
  Send(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(control), -1);
  Send(kMeterChangeStyle, kMeterMenu, 1);
  EXPECT_EQ(hit(end - 1), HTCLIENT);
  Send(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(parent), -1);
  EXPECT_EQ(menus_for_page, 2);
}

TEST_F(MeterControl, MenuSetsRangesAndStyles) {
  MakeInputMeter(kInputMeter | WS_BORDER);
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
  EXPECT_FALSE(IsWindow(control));
}

TEST_F(MeterControl, TellsScreenReadersItsLevels) {
  MakeInputMeter();
  const ComPtr<IAccessible> accessible = Accessible();
  const auto value = [&] { return Text(accessible, &IAccessible::get_accValue); };
  Set({AtDb(-12.34), Bits(0.0F)});
  EXPECT_EQ(value(), L"-12.3 dB, -Inf. dB");
  Set({Bits(0.999F), Bits(7.0F)});
  EXPECT_EQ(value(), L"0.0 dB, 0.0 dB, clipped");
  EXPECT_EQ(accessible->accDoDefaultAction(Part(0)), S_OK);
  EXPECT_EQ(value(), L"0.0 dB, 0.0 dB");
}

TEST_F(MeterControl, SurvivesWhateverItIsTold) {
  std::mt19937 random(244);
  constexpr UINT kNumbers[] = {0, 1, 2, 3, 128, 400, 32768, 0x3F800000, 0x7F800000, 0x7FC00000, 0x7FFFFFFF, 0xFFFFFFFF};
  Make(kInputMeter);
  for (int turn = 0; turn < 10000; ++turn) {
    const UINT message = kMeterGetLevels + random() % (kMeterChangeOptions - kMeterGetLevels + 1);
    const bool takes_place = message == kMeterSetLabelFormat || message == kMeterGetLabelFormat ||
                             message == kMeterGetRange || message == kMeterGetBarBounds;
    const UINT number = kNumbers[random() % (takes_place ? 6 : std::size(kNumbers))];  // no place is so low
    Send(message, MAKEWPARAM(turn % 9 == 0, message == kMeterSetRange && number % 2 == 1), number);
    if (turn % 50 == 0) SetWindowPos(control, nullptr, 0, 0, number % 301, random() % 99, SWP_NOMOVE);
    ASSERT_LE(Send(kMeterGetChannelCount), kMaxMeterChannels);
    ASSERT_GE(Send(kMeterGetLevels), 0);
  }
}

}  // namespace
}  // namespace tervan::test
