// The EQ's page: the graph, the tabs and the controls of one band tell the same story, whoever changes it.
#include <algorithm>
#include <cmath>

#include "module/page_rig.h"
#include "resources/ids.h"
#include "ui/controls/eq_graph_messages.h"
#include "ui/controls/slider_messages.h"
#include "ui/controls/tab_strip_messages.h"

namespace tervan::test {
namespace {

using EqPageTest = ModuleTest;

// A band's parameters, in the order of their rows; band n has rows from 6 n on.
enum Row { kFrequency, kGain, kBandwidth, kRolloff, kMode, kEnable };
constexpr DWORD kBypass = 24;

struct EqRig : RecordedPage {
  EqRig() : RecordedPage(kEq) { recorder.Take(); }
  double Value(int band, Row row) const {
    const ParamRow& param = filter.effect.params[6 * band + row];
    return filter.GetAt(param) / param.scale;
  }
  std::vector<double> Values(int band) const {
    std::vector<double> values;
    for (const Row row : {kFrequency, kGain, kBandwidth, kRolloff, kMode, kEnable}) values.push_back(Value(band, row));
    return values;
  }
  void SetByHost(int band, Row row, float value) const {
    ASSERT_EQ(filter.values->SetParam(6 * band + row, value), S_OK);
    page.Send(WM_TIMER);
  }
  void Choose(int band) const {
    page.SendTo(IDC_EQ_TABS, ui::kTabSelect, band);
    page.Command(IDC_EQ_TABS, band);
  }
  void Type(int field, const std::wstring& text) const {
    SetFocus(page.Control(field));
    SetWindowTextW(page.Control(field), text.c_str());
    SetFocus(page.frame);
  }
  int Selected() const {
    int band = -1;
    filter.Slot(127, &band);
    EXPECT_EQ(page.SendTo(IDC_EQ_GRAPH, ui::kGraphGetSelectedNode), band);
    EXPECT_EQ(page.SendTo(IDC_EQ_TABS, ui::kTabGetSelected), band);
    return band;
  }

  RECT Plot() const {
    RECT plot{};
    page.SendTo(IDC_EQ_GRAPH, ui::kGraphGetPlot, 0, reinterpret_cast<LPARAM>(&plot));
    return plot;
  }
  // Where a frequency and a gain lie on the graph: 20 Hz to 20 kHz in equal octaves, 15 dB at the top.
  POINT At(double frequency_hz, double gain_db) const {
    const RECT plot = Plot();
    return {static_cast<LONG>(std::log(frequency_hz / 20) / std::log(1000) * plot.right),
            static_cast<LONG>(plot.bottom * (15 - gain_db) / 30)};
  }
  double FrequencyAt(int x) const { return 20 * std::pow(1000, x / static_cast<double>(Plot().right)); }
  double GainAt(int y) const { return 15 - 30.0 * y / Plot().bottom; }
  POINT Handle(int band) const { return At(Value(band, kFrequency), Value(band, kGain)); }
  void Mouse(UINT message, POINT at, WPARAM keys = MK_LBUTTON) const {
    page.SendTo(IDC_EQ_GRAPH, message, keys, MAKELPARAM(at.x, at.y));
  }
  void Grab(int band) const { Mouse(WM_LBUTTONDOWN, Handle(band)); }
};

TEST_F(EqPageTest, TypedNumbersCountWhenTheFocusLeaves) {
  const struct {
    int band;
    int field;
    const wchar_t* typed;
    Row row;
    double value;
    const wchar_t* text;
  } rows[] = {
      {0, IDC_EQ_GAIN_EDIT, L"-Inf.", kGain, -15, L"-Inf."},
      {0, IDC_EQ_GAIN_EDIT, L"3.25", kGain, 3.2, L"3.2"},
      {0, IDC_EQ_GAIN_EDIT, L"-20", kGain, -15, L"-Inf."},
      {0, IDC_EQ_GAIN_EDIT, L"loud", kGain, 0, L"0.0"},
      {0, IDC_EQ_FREQUENCY_EDIT, L"1000.4", kFrequency, 1000, L"1,000"},
      {1, IDC_EQ_FREQUENCY_EDIT, L"1000.5", kFrequency, 1001, L"1,001"},
      {1, IDC_EQ_FREQUENCY_EDIT, L"99999999999999", kFrequency, 20000, L"20,000"},
      {1, IDC_EQ_WIDTH_EDIT, L"2.57", kBandwidth, 2.5, L"2.5"},
      {2, IDC_EQ_WIDTH_EDIT, L"0", kBandwidth, 0.1, L"0.1"},
      {3, IDC_EQ_WIDTH_EDIT, L"20", kRolloff, 3, L"18"},
      {3, IDC_EQ_WIDTH_EDIT, L"x", kRolloff, 1, L"6"},
  };
  EqRig rig;
  for (const auto& [band, field, typed, row, value, text] : rows) {
    SCOPED_TRACE(typed);
    rig.Choose(band);
    rig.Type(field, typed);
    EXPECT_NEAR(rig.Value(band, row), value, 1e-6);
    EXPECT_EQ(rig.page.TextOf(field), text);
  }
  // Left as it was, even though the host has changed the value unheard.
  SetFocus(rig.page.Control(IDC_EQ_GAIN_EDIT));
  ASSERT_EQ(rig.filter.values->SetParam(6 * 3 + kGain, 5), S_OK);
  SetFocus(rig.page.frame);
  EXPECT_EQ(rig.Value(3, kGain), 5);
  // More than a field shows: a full cut deeper than any.
  rig.filter.presets->ApplyPreset(11);
  rig.page.Shown();
  SetFocus(rig.page.Control(IDC_EQ_GAIN_EDIT));
  SetFocus(rig.page.frame);
  EXPECT_EQ(rig.Value(0, kGain), -25);
}

TEST_F(EqPageTest, KeysMoveTheChosenBandInOneEditEach) {
  const struct {
    int band;
    int slider;
    WORD key;
    const char* heard;
    const wchar_t* text;
  } rows[] = {
      {0, IDC_EQ_GAIN, VK_RIGHT, " B1 V1=0.1 V1=0.2 E1", L"0.2"},
      {1, IDC_EQ_GAIN, VK_PRIOR, " B7 V7=-1 V7=-2 E7", L"-2.0"},
      {2, IDC_EQ_FREQUENCY, VK_NEXT, " B12 V12=1100 V12=1200 E12", L"1,200"},
      {2, IDC_EQ_WIDTH, VK_NEXT, " B14 V14=2 V14=3 E14", L"3.0"},
      {3, IDC_EQ_WIDTH, VK_NEXT, " B21 V21=3 V21=4 E21", L"24"},
  };
  for (const auto& [band, slider, key, heard, text] : rows) {
    SCOPED_TRACE(heard);
    EqRig rig;
    rig.Choose(band);
    EXPECT_EQ(rig.Selected(), band);
    for (int times = 0; times < 2; ++times) rig.page.SendTo(slider, WM_KEYDOWN, key);
    const int field = slider == IDC_EQ_GAIN        ? IDC_EQ_GAIN_EDIT
                      : slider == IDC_EQ_FREQUENCY ? IDC_EQ_FREQUENCY_EDIT
                                                   : IDC_EQ_WIDTH_EDIT;
    EXPECT_EQ(rig.page.TextOf(field), text);
    rig.page.SendTo(slider, WM_KEYUP, key);
    EXPECT_EQ(rig.recorder.Take(), heard);
  }
}

TEST_F(EqPageTest, AShelfHasARolloffInsteadOfABandwidth) {
  EqRig rig;
  const auto choose_mode = [&](int entry) {
    rig.page.SendTo(IDC_EQ_MODE, CB_SETCURSEL, entry);
    rig.page.Command(IDC_EQ_MODE, CBN_SELCHANGE);
  };
  const auto width = [&] {
    return std::tuple(rig.page.TextOf(IDC_EQ_WIDTH_LABEL), rig.page.SendTo(IDC_EQ_WIDTH, ui::kSliderGetMaximum),
                      rig.page.SendTo(IDC_EQ_WIDTH, ui::kSliderGetPosition), rig.page.TextOf(IDC_EQ_WIDTH_EDIT));
  };
  const auto topic = [&] {
    HELPINFO help = {sizeof help, HELPINFO_WINDOW, IDC_EQ_WIDTH_LABEL, rig.page.Control(IDC_EQ_WIDTH_LABEL), 0, {}};
    rig.page.Send(WM_HELP, 0, reinterpret_cast<LPARAM>(&help));
    const std::wstring text = TextOf(FindWindowW(L"TervanHelpPopup", nullptr));
    return text.substr(0, text.find(L'\n'));
  };
  rig.Choose(1);
  EXPECT_EQ(width(), std::tuple(L"&Bandwidth (oct):", 40, 10, L"1.0"));
  const std::wstring bandwidth_help = topic();
  choose_mode(2);
  EXPECT_EQ(rig.Value(1, kMode), 3);
  EXPECT_EQ(width(), std::tuple(L"&Rolloff (dB/oct):", 4, 1, L"6"));
  EXPECT_NE(topic(), bandwidth_help);
  rig.Choose(0);
  EXPECT_EQ(width(), std::tuple(L"&Rolloff (dB/oct):", 4, 2, L"12"));
}

TEST_F(EqPageTest, DraggingAHandleSetsFrequencyAndGainAsItGoes) {
  EqRig rig;
  rig.filter.presets->ApplyPreset(11);  // band 1 cuts deeper than the graph shows
  rig.page.Shown();
  const std::vector<double> first = rig.Values(0), last = rig.Values(3);
  rig.recorder.Take();
  rig.SetByHost(2, kEnable, 1);
  rig.Grab(2);
  EXPECT_EQ(rig.Selected(), 2);
  EXPECT_EQ(rig.recorder.Take(), "") << "nothing has moved";
  const POINT to = rig.At(3000, 7.5);
  rig.Mouse(WM_MOUSEMOVE, to);
  const double frequency = rig.Value(2, kFrequency), gain = rig.Value(2, kGain);
  EXPECT_NEAR(frequency, rig.FrequencyAt(to.x), 1);
  EXPECT_NEAR(gain, rig.GainAt(to.y), 0.051);
  std::ostringstream heard;
  heard << " B13 B12 B14 B17 V12=" << frequency << " V13=" << gain;
  EXPECT_EQ(rig.recorder.Take(), heard.str());
  EXPECT_EQ(rig.page.SendTo(IDC_EQ_FREQUENCY, ui::kSliderGetPosition), frequency);
  EXPECT_EQ(rig.page.SendTo(IDC_EQ_GAIN, ui::kSliderGetPosition), std::round(gain * 10));
  rig.Mouse(WM_MOUSEMOVE, {to.x, rig.Plot().top - 50});
  EXPECT_EQ(rig.page.TextOf(IDC_EQ_GAIN_EDIT), L"15.0");
  rig.recorder.Take();
  rig.Mouse(WM_LBUTTONUP, to, 0);
  EXPECT_EQ(rig.recorder.Take(), " E12 E13 E14 E17");
  EXPECT_EQ(rig.Values(0), first);
  EXPECT_EQ(rig.Values(3), last);
  // Taken back, but not what the host has done to another band meanwhile.
  rig.Grab(2);
  rig.Mouse(WM_MOUSEMOVE, rig.At(500, -3));
  rig.SetByHost(3, kGain, 5);
  rig.Mouse(WM_CANCELMODE, {}, 0);
  EXPECT_EQ(rig.page.TextOf(IDC_EQ_GAIN_EDIT), L"15.0");
  EXPECT_EQ(rig.Value(3, kGain), 5);
}

// While the user drags, presets and automation change what is under the hand.
TEST_F(EqPageTest, ADragOutlivesWhateverElseChangesTheSettings) {
  EqRig rig;
  float silence[480] = {};
  MP_ENVELOPE_SEGMENT segment{0, 1000000, 100, 9000, MP_CURVE_LINEAR, 0};
  ASSERT_EQ(rig.filter.values->AddEnvelope(6 * 1 + kFrequency, 1, &segment), S_OK);
  ASSERT_EQ(rig.filter.direct->BeginStream(1, 48000), S_OK);
  rig.Grab(2);
  for (int step = 1; step <= 8; ++step) {
    rig.Mouse(WM_MOUSEMOVE, rig.At(1000 + 200 * step, step));
    rig.filter.direct->ProcessBuffer(silence, 480, 0);
    if (step == 4) rig.filter.presets->ApplyPreset(1);
    rig.page.Shown();
    rig.page.Send(WM_TIMER);
  }
  EXPECT_NEAR(rig.Value(2, kGain), 8, 0.3);
  EXPECT_NEAR(rig.Value(2, kFrequency), 2600, 60);
  EXPECT_EQ(rig.page.TextOf(IDC_EQ_MODE), L"Low Shelf") << "the preset has chosen the first band";
  rig.Mouse(WM_LBUTTONUP, rig.At(2600, 8), 0);
  const std::string heard = rig.recorder.Take();
  EXPECT_EQ(std::count(heard.begin(), heard.end(), 'B'), std::count(heard.begin(), heard.end(), 'E')) << heard;
  EXPECT_EQ(rig.filter.direct->EndStream(), S_OK);
}

// What the user is doing ends with the page, and so does every edit that a host has heard of.
TEST_F(EqPageTest, EndsWhatTheUserIsDoing) {
  using Step = void (*)(EqRig&);
  const Step actions[] = {
      [](EqRig& rig) { rig.Grab(1), rig.Mouse(WM_MOUSEMOVE, rig.At(700, 3)); },
      [](EqRig& rig) { rig.Mouse(WM_LBUTTONDBLCLK, rig.Handle(3)); },
      [](EqRig& rig) { rig.page.SendTo(IDC_EQ_MODE, CB_SHOWDROPDOWN, TRUE); },  // by a program: without the focus
      [](EqRig& rig) { rig.page.SendTo(IDC_EQ_ENABLED, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3)); },
      [](EqRig& rig) { SetFocus(rig.page.Control(IDC_EQ_GAIN)), rig.page.SendTo(IDC_EQ_GAIN, WM_KEYDOWN, VK_RIGHT); },
  };
  const Step ends[] = {
      [](EqRig& rig) { rig.page.Close(); },
      [](EqRig& rig) { rig.page.page->Show(SW_HIDE); },
      [](EqRig& rig) { rig.page.Connect(nullptr); },
      [](EqRig& rig) { rig.page.page = nullptr; },
  };
  const auto expect_balance = [](EqRig& rig) {
    const std::string heard = rig.recorder.Take();
    const auto begins = std::count(heard.begin(), heard.end(), 'B');
    EXPECT_GT(begins, 0);
    EXPECT_EQ(begins, std::count(heard.begin(), heard.end(), 'E')) << heard;
    EXPECT_EQ(GetCapture(), nullptr);
  };
  for (const Step action : actions) {
    for (const Step end : ends) {
      SCOPED_TRACE(10 * (&action - actions) + (&end - ends));
      EqRig rig;
      action(rig);
      end(rig);
      expect_balance(rig);
    }
    // A host that is told of an edit may close the page there and then.
    for (const char call : {'B', 'V', 'E'}) {
      SCOPED_TRACE(call);
      EqRig rig;
      rig.recorder.acts_at = call;
      rig.recorder.act = [&] { rig.page.Close(), rig.page.Connect(nullptr), rig.page.page = nullptr; };
      action(rig);
      if (const auto held = rig.page.page) held->SetObjects(0, nullptr);
      expect_balance(rig);
    }
  }
}

TEST_F(EqPageTest, TheCheckBoxSwitchesAtThePress) {
  EqRig rig;
  rig.Choose(2);
  const auto send = [&](UINT message, WPARAM wparam, LPARAM lparam) {
    rig.page.SendTo(IDC_EQ_ENABLED, message, wparam, lparam);
  };
  const struct {
    UINT press, release;
    WPARAM key;
    LPARAM repeat;
  } ways[] = {{WM_LBUTTONDOWN, WM_LBUTTONUP, MK_LBUTTON, 0},
              {WM_KEYDOWN, WM_KEYUP, VK_SPACE, 1 << 30},
              {WM_KEYDOWN, WM_KILLFOCUS, VK_SPACE, 1 << 30}};
  int enabled = 1;
  for (const auto& way : ways) {
    SCOPED_TRACE(way.release);
    enabled = 1 - enabled;
    send(way.press, way.key, 0);
    if (way.repeat) send(way.press, way.key, way.repeat);
    EXPECT_EQ(rig.Value(2, kEnable), enabled);
    EXPECT_EQ(rig.recorder.Take(), enabled ? " B17 V17=1" : " B17 V17=0");
    send(way.release, way.key, 0);
    EXPECT_EQ(rig.recorder.Take(), " E17");
    EXPECT_EQ(rig.Value(2, kEnable), enabled) << "once a press, not again at the release";
    EXPECT_EQ(rig.page.SendTo(IDC_EQ_ENABLED, BM_GETCHECK), enabled);
    for (const int id : {IDC_EQ_GAIN, IDC_EQ_GAIN_EDIT, IDC_EQ_FREQUENCY, IDC_EQ_WIDTH_EDIT, IDC_EQ_MODE}) {
      EXPECT_EQ(IsWindowEnabled(rig.page.Control(id)), enabled) << id;
    }
  }
}

TEST_F(EqPageTest, FollowsAutomationAndTheHost) {
  const struct {
    Row row;
    float value;
    int control, field;
    LRESULT position;
    const wchar_t* text;
  } rows[] = {
      {kFrequency, 5000, IDC_EQ_FREQUENCY, IDC_EQ_FREQUENCY_EDIT, 5000, L"5,000"},
      {kGain, -7.5f, IDC_EQ_GAIN, IDC_EQ_GAIN_EDIT, -75, L"-7.5"},
      {kBandwidth, 2, IDC_EQ_WIDTH, IDC_EQ_WIDTH_EDIT, 20, L"2.0"},
      {kMode, 3, IDC_EQ_WIDTH, IDC_EQ_MODE, 1, L"High Shelf"},
      {kEnable, 0, IDC_EQ_GAIN, IDC_EQ_ENABLED, 0, L"&Enabled"},
  };
  for (const auto& [row, value, control, field, position, text] : rows) {
    SCOPED_TRACE(row);
    EqRig rig;
    rig.Choose(2);
    MP_ENVELOPE_SEGMENT segment{0, 1000000, value, value, MP_CURVE_JUMP, 0};
    float silence[480] = {};
    ASSERT_EQ(rig.filter.values->AddEnvelope(6 * 2 + row, 1, &segment), S_OK);
    ASSERT_EQ(rig.filter.direct->BeginStream(1, 48000), S_OK);
    for (const bool is_automated : {true, false}) {
      ASSERT_EQ(rig.filter.direct->ProcessBuffer(silence, 480, 0), S_OK);
      rig.page.Send(WM_TIMER);
      EXPECT_EQ(rig.page.SendTo(control, ui::kSliderGetPosition), position);
      EXPECT_EQ(rig.page.TextOf(field), text);
      if (row < kRolloff) {
        EXPECT_NE(IsWindowEnabled(rig.page.Control(field)) != FALSE, is_automated);
      }
      if (row == kEnable) {
        EXPECT_EQ(rig.page.SendTo(IDC_EQ_ENABLED, BM_GETCHECK), 0);
      }
      EXPECT_EQ(rig.filter.values->FlushEnvelope(6 * 2 + row, 0, 1000000), S_OK);
    }
    EXPECT_EQ(rig.filter.direct->EndStream(), S_OK);
    EXPECT_EQ(rig.recorder.Take(), "") << "nobody has edited anything";
  }
  EqRig rig;
  rig.SetByHost(0, kGain, 6);
  EXPECT_EQ(rig.page.TextOf(IDC_EQ_GAIN_EDIT), L"6.0");
  rig.Choose(3);
  rig.filter.presets->ApplyPreset(2);
  rig.page.Shown();
  EXPECT_EQ(rig.Selected(), 0) << "new settings begin at the first band";
}

TEST_F(EqPageTest, TheToggleBypassesUnlessAutomationDoes) {
  EqRig rig;
  for (const char* heard : {" B24 V24=1 E24", " B24 V24=0 E24"}) {
    rig.page.Command(ID_EQ_BYPASS);
    EXPECT_EQ(rig.recorder.Take(), heard);
  }
  MP_ENVELOPE_SEGMENT segment{0, 1000000, 1, 1, MP_CURVE_JUMP, 0};
  float silence[480] = {};
  ASSERT_EQ(rig.filter.values->AddEnvelope(kBypass, 1, &segment), S_OK);
  ASSERT_EQ(rig.filter.direct->BeginStream(1, 48000), S_OK);
  ASSERT_EQ(rig.filter.direct->ProcessBuffer(silence, 480, 0), S_OK);
  rig.page.Command(ID_EQ_BYPASS);
  EXPECT_EQ(rig.filter.Get().back(), 1);
  EXPECT_EQ(rig.recorder.Take(), "");
  EXPECT_EQ(rig.filter.direct->EndStream(), S_OK);
}

// From the graph's own pixels: white ground, a black centre line, shades of blue from there to the response.
TEST_F(EqPageTest, DrawsTheResponse) {
  EqRig rig;
  UpdateWindow(rig.page.Control(IDC_EQ_GRAPH));
  const RECT plot = rig.Plot();
  const int centre = (plot.top + plot.bottom) / 2;
  const auto pixel = [&](int x, int y) {
    const HDC dc = GetDC(rig.page.Control(IDC_EQ_GRAPH));
    const COLORREF colour = GetPixel(dc, x, y);
    ReleaseDC(rig.page.Control(IDC_EQ_GRAPH), dc);
    return colour;
  };
  const auto shown_with = [&](int band, float gain) {
    rig.SetByHost(band, kGain, gain);
    RedrawWindow(rig.page.Control(IDC_EQ_GRAPH), nullptr, nullptr, RDW_UPDATENOW);
  };
  const int far_x = rig.At(4000, 0).x, peak_x = rig.At(1000, 0).x;
  EXPECT_EQ(pixel(far_x, centre), RGB(0, 0, 0));
  EXPECT_EQ(pixel(far_x, centre - 2), RGB(255, 255, 255));
  shown_with(2, 15);
  EXPECT_EQ(GetBValue(pixel(peak_x, centre / 2)), 255);  // past the middle of the plot, where the blue is full
  EXPECT_LT(GetRValue(pixel(peak_x, centre / 2)), 3);
  shown_with(0, 10);
  EXPECT_LT(GetRValue(pixel(3, centre - 3)), 3) << "a low shelf lifts the left edge";
  EXPECT_EQ(pixel(far_x, centre - 2), RGB(255, 255, 255));
}

}  // namespace
}  // namespace tervan::test
