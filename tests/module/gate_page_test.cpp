// The noise gate's page: sliders, edit boxes, automation, and how an action ends that the user is in the middle of.
#include <algorithm>

#include "module/page_rig.h"
#include "resources/ids.h"

namespace tervan::test {
namespace {

using GatePageTest = ModuleTest;

constexpr SliderRow kThreshold{7008, 7005, 0}, kAttack{7002, 7010, 1}, kRelease{7003, 7009, 2};
constexpr LONG kStart = 3;  // a preset: -38 dB, 10 ms, 1000 ms

struct GateRig : RecordedPage {
  GateRig() : RecordedPage(kGate) { Restart(); }
  void Restart() {
    filter.presets->ApplyPreset(kStart);
    page.Shown();
    recorder.Take();
  }
  void Type(const SliderRow& row, const std::wstring& text) const {
    SetFocus(page.Control(row.text));
    SetWindowTextW(page.Control(row.text), text.c_str());
  }
};

TEST_F(GatePageTest, KeysMoveTheValueInOneEditEach) {
  GateRig rig;
  const auto restart = [&] { rig.Restart(); };
  rig.ExpectOneEditAKey(
      {
          {kThreshold, VK_UP, " B0 V0=-37.9 V0=-37.8", L"-37.8 dB"},
          {kThreshold, VK_DOWN, " B0 V0=-38.1 V0=-38.2", L"-38.2 dB"},
          {kThreshold, VK_PRIOR, " B0 V0=-37 V0=-36", L"-36.0 dB"},
          {kThreshold, VK_HOME, " B0 V0=0", L"0.0 dB"},
          {kThreshold, VK_END, " B0 V0=-80", L"-Inf."},
          {kAttack, VK_RIGHT, " B1 V1=11 V1=12", L"12"},
          {kAttack, VK_NEXT, " B1 V1=20 V1=30", L"30"},
          {kAttack, VK_PRIOR, " B1 V1=0", L"0"},
          {kAttack, '5', " B1 V1=250", L"250"},
          {kRelease, VK_LEFT, " B2 V2=999 V2=998", L"998"},
          {kRelease, VK_NEXT, " B2 V2=1100 V2=1200", L"1,200"},
          {kRelease, VK_HOME, " B2 V2=1", L"1"},
          {kRelease, VK_END, " B2 V2=5000", L"5,000"},
      },
      restart);
}

// While the user is in the middle of something, the page goes, one way or another, or somebody takes the mouse.
TEST_F(GatePageTest, EndsWhatTheUserIsDoing) {
  using End = void (*)(GateRig&);
  const End ends[] = {
      [](GateRig& rig) { rig.page.SendTo(kAttack.slider, WM_LBUTTONUP); },
      [](GateRig&) { ReleaseCapture(); },
      [](GateRig& rig) { rig.page.Close(); },
      [](GateRig& rig) { rig.page.page->Show(SW_HIDE); },
      [](GateRig& rig) { rig.page.Connect(nullptr); },
      [](GateRig& rig) { rig.page.Connect(Filter(kGate).control.Get()); },
      [](GateRig& rig) { rig.page.page = nullptr; },
  };
  for (const End end : ends) {
    SCOPED_TRACE(&end - ends);
    GateRig rig;
    EXPECT_HRESULT_SUCCEEDED(rig.filter.values->SetParam(kAttack.param, 250));
    rig.page.Shown();
    RECT slider;
    GetClientRect(rig.page.Control(kAttack.slider), &slider);
    rig.page.SendTo(kAttack.slider, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(slider.right / 2, slider.bottom / 2));
    rig.page.SendTo(kAttack.slider, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(slider.right / 2 + 20, slider.bottom / 2));
    EXPECT_GT(rig.Value(kAttack), 260);
    end(rig);
    std::ostringstream heard;
    heard << " B1 V1=" << rig.Value(kAttack) << " E1";
    EXPECT_EQ(rig.recorder.Take(), heard.str());
    EXPECT_EQ(GetCapture(), nullptr);
  }
  GateRig rig;
  SetFocus(rig.page.Control(kAttack.slider));
  rig.page.SendTo(kAttack.slider, WM_KEYDOWN, VK_RIGHT);
  rig.page.Close();
  EXPECT_EQ(rig.recorder.Take(), " B1 V1=11 E1");
  rig.page.Open();
  rig.Type(kRelease, L"77");
  rig.page.Close();
  EXPECT_EQ(rig.recorder.Take(), " B2 V2=77 E2");
}

// A host that is told of an edit may close the page there and then.
TEST_F(GatePageTest, MayBeClosedByWhoeverIsToldOfAnEdit) {
  using Action = void (*)(GateRig&);
  const Action actions[] = {
      [](GateRig& rig) { rig.page.SendTo(kAttack.slider, WM_KEYDOWN, VK_RIGHT); },
      [](GateRig& rig) { rig.page.SendTo(kAttack.slider, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA)); },
      [](GateRig& rig) { rig.Type(kRelease, L"1234"), SetFocus(rig.page.frame); },
      [](GateRig& rig) { rig.page.Command(ID_BYPASS); },
      [](GateRig& rig) { rig.page.Command(ID_PRESET_FIRST + 3); },
  };
  for (const Action action : actions) {
    for (const char call : {'B', 'V', 'E'}) {
      SCOPED_TRACE(call);
      GateRig rig;
      rig.recorder.acts_at = call;
      rig.recorder.act = [&] { rig.page.Close(), rig.page.Connect(nullptr), rig.page.page = nullptr; };
      SetFocus(rig.page.Control(kAttack.slider));
      action(rig);
      if (rig.page.page) rig.page.SendTo(kAttack.slider, WM_KEYUP, VK_RIGHT);  // a key's edit ends with the key
      EXPECT_EQ(rig.page.page.Get(), nullptr);
      const std::string heard = rig.recorder.Take();
      EXPECT_EQ(std::count(heard.begin(), heard.end(), 'B'), std::count(heard.begin(), heard.end(), 'E')) << heard;
    }
  }
}

// The user's own digit grouping, set for as long as this lives.
class GroupSeparator {
 public:
  explicit GroupSeparator(const wchar_t* separator) {
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_STHOUSAND, before_, 8);
    EXPECT_TRUE(SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_STHOUSAND, separator));
  }
  ~GroupSeparator() { SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_STHOUSAND, before_); }

 private:
  wchar_t before_[8] = L"";
};

TEST_F(GatePageTest, TypedTimesCountWhenTheFocusLeaves) {
  const std::wstring overlong = std::wstring(40, L'0') + L"7";
  const struct {
    const SliderRow& row;
    std::wstring typed;
    double value;
    const wchar_t* text;
    const wchar_t* separator = L",";
  } rows[] = {
      {kAttack, L"77", 77, L"77"},   {kAttack, L"6000", 500, L"500"},      {kAttack, L"1,000", 1, L"1"},
      {kAttack, L"-5", 0, L"0"},     {kAttack, L"five", 0, L"0"},          {kAttack, L"", 0, L"0"},
      {kRelease, L"77", 77, L"77"},  {kRelease, L"6000", 5000, L"5,000"},  {kRelease, L"0", 1, L"1"},
      {kRelease, L"-5", 1, L"1"},    {kRelease, L"five", 1, L"1"},         {kRelease, L"", 1, L"1"},
      {kRelease, overlong, 1, L"1"}, {kRelease, L"2,500", 2500, L"2,500"}, {kRelease, L"2'500", 2500, L"2'500", L"'"},
  };
  GateRig rig;
  for (const auto& [row, typed, value, text, separator] : rows) {
    SCOPED_TRACE(typed);
    const GroupSeparator user_format(separator);
    rig.Restart();
    SetFocus(rig.page.Control(row.text));
    SetFocus(rig.page.frame);
    EXPECT_EQ(rig.recorder.Take(), "") << "what the page itself wrote reads back as the same";
    rig.Type(row, typed);
    EXPECT_EQ(rig.recorder.Take(), "");
    SetFocus(rig.page.frame);
    EXPECT_EQ(rig.Value(row), value);
    EXPECT_EQ(rig.page.TextOf(row.text), text);
    EXPECT_EQ(rig.Position(row), value);
  }
}

TEST_F(GatePageTest, FollowsAutomationAndLetsNobodyInterfere) {
  for (const SliderRow& row : {kThreshold, kAttack, kRelease, SliderRow{0, 0, 3}}) {
    SCOPED_TRACE(row.param);
    GateRig rig;
    const ParamRow& param = rig.filter.effect.params[row.param];
    MP_ENVELOPE_SEGMENT segment{0, 1000000, param.max, param.max, MP_CURVE_JUMP, 0};
    float silence[480] = {};
    const bool is_bypass = row.slider == 0, is_edit = !is_bypass && row.slider != kThreshold.slider;
    if (is_edit) SetFocus(rig.page.Control(row.text));
    ASSERT_EQ(rig.filter.values->AddEnvelope(row.param, 1, &segment), S_OK);
    ASSERT_EQ(rig.filter.direct->BeginStream(1, 48000), S_OK);
    for (const bool is_automated : {true, false}) {
      ASSERT_EQ(rig.filter.direct->ProcessBuffer(silence, 480, 0), S_OK);
      rig.page.Send(WM_TIMER);
      EXPECT_EQ(rig.recorder.Take(), "") << "nobody has edited anything";
      if (!is_bypass) {
        EXPECT_EQ(rig.Position(row), param.max * param.scale);
      }
      if (is_edit) {
        EXPECT_EQ(rig.page.TextOf(row.text), row.slider == kAttack.slider ? L"500" : L"5,000");
        EXPECT_NE(IsWindowEnabled(rig.page.Control(row.text)) != FALSE, is_automated);
        EXPECT_NE(GetFocus(), rig.page.Control(row.text)) << "a disabled control would swallow every key";
      }
      // Every second click puts it back; the one while bypass is automated, and on, does nothing.
      rig.page.Command(ID_BYPASS);
      EXPECT_EQ(rig.filter.Get()[3], is_automated);
      rig.recorder.Take();
      EXPECT_EQ(rig.filter.values->FlushEnvelope(row.param, 0, 1000000), S_OK);
    }
    EXPECT_EQ(rig.filter.direct->EndStream(), S_OK);
  }
}

}  // namespace
}  // namespace tervan::test
