// The compressor's page: sliders and fields, switches, automation, meters. What all pages do is in page_test.cpp, how
// an action ends in gate_page_test.cpp.
#include <cmath>

#include "module/page_rig.h"
#include "resources/ids.h"
#include "ui/controls/meter_messages.h"

namespace tervan::test {
namespace {

using testing::ElementsAre;
using CompressorPageTest = ModuleTest;

constexpr SliderRow kInputGain{2004, 2005, 0, 1}, kOutputGain{2025, 2024, 1, 1}, kThreshold{2008, 2006, 2, 10},
    kAmount{2009, 2007, 3, 10}, kAttack{2010, 2011, 4, 1}, kRelease{2012, 2013, 5, 1};
constexpr SliderRow kRows[] = {kInputGain, kOutputGain, kThreshold, kAmount, kAttack, kRelease};
constexpr int kSwitches[] = {2026, 2028};  // parameters 6 and 7
constexpr int kMeters[] = {2014, 2023, 2015};
const Settings kStart = {-12, 3, -20, 2.5, 100, 1000, 1, 0, 0, 0};

struct CompressorRig : RecordedPage {
  CompressorRig() : RecordedPage(kCompressor) { Restart(); }
  void Restart() {
    filter.Set(kStart);
    page.Command(ID_FILTER_CHANGED, 32701);
    page.Shown();
    recorder.Take();
  }
  const ParamRow& Param(DWORD param) const { return filter.effect.params[param]; }
};

TEST_F(CompressorPageTest, KeysMoveTheValueInOneEditEach) {
  CompressorRig rig;
  const auto restart = [&] { rig.Restart(); };
  rig.ExpectOneEditAKey(
      {
          {kInputGain, VK_UP, " B0 V0=-11 V0=-10", L"-10 dB"},
          {kInputGain, VK_END, " B0 V0=-60", L"-Inf."},
          {kOutputGain, VK_PRIOR, " B1 V1=4 V1=5", L"5 dB"},
          {kThreshold, VK_LEFT, " B2 V2=-20.1 V2=-20.2", L"-20.2"},
          {kThreshold, VK_NEXT, " B2 V2=-19 V2=-18", L"-18.0"},
          {kAmount, VK_RIGHT, " B3 V3=2.6 V3=2.7", L"2.7"},
          {kAmount, VK_END, " B3 V3=50", L"Inf."},
          {kAttack, VK_RIGHT, " B4 V4=101 V4=102", L"102"},
          {kRelease, VK_NEXT, " B5 V5=1010 V5=1020", L"1020"},
      },
      restart);
  rig.page.Send(WM_VSCROLL, SB_LINELEFT, reinterpret_cast<LPARAM>(rig.page.Control(kThreshold.slider)));
  EXPECT_EQ(rig.recorder.Take(), "") << "no slider of the page stands upright";
}

TEST_F(CompressorPageTest, SlidersSpanTheirParametersAndADoubleClickBringsTheDefault) {
  const double defaults[] = {0, 0, -40, 2, 15, 250};
  CompressorRig rig;
  for (const double beyond : {1e30, -1e30}) {
    rig.filter.Set(Settings{beyond, beyond, beyond, beyond, beyond, beyond, 0, 0, 0, 0});
    rig.page.Command(ID_FILTER_CHANGED, 32701);
    for (const SliderRow& row : kRows) {
      const ParamRow& param = rig.Param(row.param);
      EXPECT_EQ(rig.Position(row), (beyond < 0 ? param.min : param.max) * row.scale);
    }
  }
  for (const SliderRow& row : kRows) {
    for (const UINT message : {WM_LBUTTONDBLCLK, WM_LBUTTONUP}) {
      rig.page.SendTo(row.slider, message, 0, MAKELPARAM(10, 10));  // the thumb's place at the left end
    }
    EXPECT_EQ(rig.Value(row), defaults[row.param]);
  }
}

TEST_F(CompressorPageTest, TypedNumbersCountWhenTheFocusLeaves) {
  const struct {
    const SliderRow& row;
    const wchar_t* typed;
    double value;
    const wchar_t* text;
  } rows[] = {
      {kThreshold, L"-20.46", -20.46, L"-20.5"},
      {kThreshold, L"-70", -60, L"-60.0"},
      {kThreshold, L"loud", 0, L"0.0"},
      {kThreshold, L"-0000000000000059", 0, L"0.0"},
      {kAmount, L"2.25", 2.25, L"2.3"},
      {kAmount, L"49.97", 49.97, L"50.0"},
      {kAmount, L"70", 50, L"Inf."},
      {kAmount, L"Inf.", 50, L"Inf."},
      {kAmount, L"letters", 1, L"1.0"},
      {kAttack, L"12.5", 12.5, L"13"},
      {kAttack, L"600", 500, L"500"},
      {kAttack, L"-1", 0, L"0"},
      {kRelease, L"2,500", 2500, L"2500"},
      {kRelease, L"6000", 5000, L"5000"},
  };
  CompressorRig rig;
  for (const auto& [row, typed, value, text] : rows) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(typed)));
    rig.Restart();
    SetFocus(rig.page.Control(row.text));
    SetWindowTextW(rig.page.Control(row.text), typed);
    EXPECT_EQ(rig.recorder.Take(), "");
    SetFocus(rig.page.frame);
    EXPECT_EQ(rig.Value(row), static_cast<float>(value));
    EXPECT_EQ(rig.page.TextOf(row.text), text);
    EXPECT_EQ(rig.Position(row), std::lround(value * row.scale));
    rig.recorder.Take();
    SetFocus(rig.page.Control(row.text));
    SetFocus(rig.page.frame);
    EXPECT_EQ(rig.recorder.Take(), "") << "what is only read stays as exact as it is";
  }
}

TEST_F(CompressorPageTest, SwitchesAreSetAsTheirBoxesAreChecked) {
  CompressorRig rig;
  for (const int i : {0, 1, 0, 1}) {
    const bool checked = rig.page.SendTo(kSwitches[i], BM_GETCHECK) == BST_CHECKED;
    EXPECT_EQ(rig.filter.GetAt(rig.Param(6 + i)), checked);
    rig.page.SendTo(kSwitches[i], BM_CLICK);
    EXPECT_EQ(rig.filter.GetAt(rig.Param(6 + i)), !checked);
  }
}

TEST_F(CompressorPageTest, FollowsAutomationAndLetsNobodyInterfere) {
  for (DWORD index = 0; index <= 8; ++index) {
    SCOPED_TRACE(index);
    CompressorRig rig;
    const ParamRow& param = rig.Param(index);
    const bool is_slider = index < 6, is_bypass = index == 8;
    const float target = index == 6 ? param.min : param.max;  // something else than before
    const int id = is_slider ? kRows[index].text : is_bypass ? 0 : kSwitches[index - 6];
    const HWND disabled = index >= 2 && !is_bypass ? rig.page.Control(id) : nullptr;
    SetFocus(disabled);
    MP_ENVELOPE_SEGMENT segment{0, 1000000, target, target, MP_CURVE_JUMP, 0};
    float silence[480] = {};
    ASSERT_EQ(rig.filter.values->AddEnvelope(index, 1, &segment), S_OK);
    ASSERT_EQ(rig.filter.direct->BeginStream(1, 48000), S_OK);
    HandlePostedMessages();
    for (const bool is_automated : {true, false}) {
      ASSERT_EQ(rig.filter.direct->ProcessBuffer(silence, 480, 0), S_OK);
      rig.page.Send(WM_TIMER, 1);
      if (is_slider) {
        EXPECT_EQ(rig.Position(kRows[index]), target * kRows[index].scale);
      } else if (!is_bypass) {
        EXPECT_EQ(rig.page.SendTo(id, BM_GETCHECK), target);
      }
      if (disabled) {
        EXPECT_NE(IsWindowEnabled(disabled) != FALSE, is_automated);
        EXPECT_NE(GetFocus(), disabled) << "a disabled control would swallow every key";
      }
      // Every second click puts it back; the one while bypass is automated, and on, does nothing.
      rig.page.Command(ID_BYPASS);
      EXPECT_EQ(rig.filter.GetAt(rig.Param(8)), is_automated);
      EXPECT_EQ(rig.filter.values->FlushEnvelope(index, 0, 1000000), S_OK);
    }
    EXPECT_EQ(rig.filter.direct->EndStream(), S_OK);
  }
}

using Values = std::vector<std::vector<float>>;
Values MeterValues(const Page& page, UINT message) {
  Values all;
  for (const int meter : kMeters) {
    float values[2] = {-1, -1};
    const LRESULT count = page.SendTo(meter, message, MAKEWPARAM(0, 2), reinterpret_cast<LPARAM>(values));
    all.emplace_back(values, values + count);
  }
  return all;
}

TEST_F(CompressorPageTest, MetersShowTheStreamAndForgetClipsWhenItStarts) {
  CompressorRig rig;
  const Values at_rest = {{0, 0}, {0, 0}, {1}};
  EXPECT_EQ(MeterValues(rig.page, ui::kMeterGetLevels), at_rest);
  rig.filter.Set({0, -6.0206, -6.0206, 50, 0, 250, 0, 0, 0, 0});
  for (const float left : {1.0f, 0.8f}) {
    ASSERT_EQ(rig.filter.direct->BeginStream(2, 48000), S_OK);
    HandlePostedMessages();
    EXPECT_EQ(MeterValues(rig.page, ui::kMeterGetExtremes), at_rest) << "of the stream before";
    for (int i = 0; i < 2; ++i) {
      std::vector<float> frames(9600);
      for (std::size_t frame = 0; frame < frames.size(); frame += 2) frames[frame] = left;
      ASSERT_EQ(rig.filter.direct->ProcessBuffer(frames.data(), 4800, 0), S_OK);
    }
    rig.page.Send(WM_TIMER, 1);
    const auto channels = [](auto... values) { return ElementsAre(testing::FloatNear(values, 1e-3f)...); };
    EXPECT_THAT(MeterValues(rig.page, ui::kMeterGetLevels),
                ElementsAre(channels(left, 0.0f), channels(0.25f, 0.0f), channels(0.5f / left)));
    EXPECT_EQ(rig.filter.direct->EndStream(), S_OK);
    rig.page.Send(WM_TIMER, 1);
    EXPECT_EQ(MeterValues(rig.page, ui::kMeterGetLevels), at_rest);
  }
}

TEST_F(CompressorPageTest, NotificationsRefreshOrReset) {
  const struct {
    int code;
    const wchar_t* text;
    bool resets_clips;
    std::vector<int> painted;  // at once
  } rows[] = {{0, L"-20.0", false, {}},
              {32701, L"-7.0", false, {}},
              {32702, L"-7.0", true, {2014, 2023, 2015}},
              {32703, L"-20.0", false, {2015}}};
  CompressorRig rig;
  for (const auto& row : rows) {
    SCOPED_TRACE(row.code);
    rig.Restart();
    rig.filter.SetAt(rig.Param(kThreshold.param), -7);
    const float clip = 2;
    for (const int id : kMeters) {
      rig.page.SendTo(id, ui::kMeterSetExtremes, MAKEWPARAM(0, 1), reinterpret_cast<LPARAM>(&clip));
      InvalidateRect(rig.page.Control(id), nullptr, FALSE);
    }
    rig.page.Command(ID_FILTER_CHANGED, row.code);
    EXPECT_EQ(rig.page.TextOf(kThreshold.text), row.text);
    for (const auto& extremes : MeterValues(rig.page, ui::kMeterGetExtremes)) {
      EXPECT_NE(extremes[0] == clip, row.resets_clips);
    }
    std::vector<int> painted;
    for (const int id : kMeters) {
      if (!GetUpdateRect(rig.page.Control(id), nullptr, FALSE)) painted.push_back(id);
    }
    EXPECT_EQ(painted, row.painted);
  }
}

}  // namespace
}  // namespace tervan::test
