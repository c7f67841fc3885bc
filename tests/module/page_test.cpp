// Property pages in a frame's window, driven by the messages that users and filters cause.
#include "module/page_rig.h"
#include "resources/ids.h"
#include "ui/controls/slider_messages.h"

namespace tervan::test {
namespace {

using testing::ElementsAre;
using testing::Pair;

using PageTest = EffectTest;
using DitherPageTest = ModuleTest;
using GatePageTest = ModuleTest;
TERVAN_FOR_EFFECTS(PageTest, kDither, kGate);

TEST_P(PageTest, TellsAFrameWhatItNeeds) {
  const Page page(GetParam());
  PROPPAGEINFO info;
  std::memset(&info, 0xCC, sizeof info);
  ASSERT_EQ(page.page->GetPageInfo(&info), S_OK);
  EXPECT_EQ(info.cb, sizeof info);
  EXPECT_EQ(std::wstring(info.pszTitle), page.row.title);
  EXPECT_EQ(info.pszDocString, nullptr);
  EXPECT_THAT(std::wstring(info.pszHelpFile), testing::EndsWith(L"\\tervanfx.chm"));
  EXPECT_EQ(info.dwHelpContext, page.row.help_context);
  ComPtr<IMalloc> task_memory;
  ASSERT_EQ(CoGetMalloc(1, task_memory.Put()), S_OK);
  EXPECT_EQ(task_memory->GetSize(info.pszHelpFile), 520u);
  CoTaskMemFree(info.pszTitle);
  CoTaskMemFree(info.pszHelpFile);
  EXPECT_EQ(page.page->GetPageInfo(nullptr), E_POINTER);
  ASSERT_EQ(page.Open(), S_OK);
  RECT size = {0, 0, page.row.size.cx, page.row.size.cy};
  MapDialogRect(page.Dialog(), &size);
  EXPECT_EQ(info.size.cx, size.right);
  EXPECT_EQ(info.size.cy, size.bottom);
  EXPECT_NE(GetWindowLongW(page.Dialog(), GWL_EXSTYLE) & WS_EX_CONTROLPARENT, 0) << "Tab walks into the page";
  MSG message = {};
  EXPECT_EQ(page.page->TranslateAccelerator(&message), E_NOTIMPL);
}

TEST_P(PageTest, ShowsItsFilterWhicheverIsThereFirst) {
  for (const bool connects_first : {false, true}) {
    SCOPED_TRACE(connects_first);
    const Filter filter(effect);
    const Page page(GetParam());
    filter.presets->ApplyPreset(page.row.preset);
    if (connects_first) {
      EXPECT_EQ(page.Connect(filter.control.Get()), S_OK);
    }
    ASSERT_EQ(page.Open(), S_OK);
    if (!connects_first) {
      EXPECT_EQ(page.Connect(filter.control.Get()), S_OK);
    }
    EXPECT_EQ(page.Shown(), page.row.of_preset);
    filter.presets->ApplyPreset(0);
    EXPECT_EQ(page.Shown(), page.row.fresh) << "the filter posts a change";
    page.Command(ID_PRESET_FIRST + page.row.preset - 1);
    EXPECT_EQ(filter.Get(), effect.presets[page.row.preset].settings);
    EXPECT_EQ(page.Shown(), page.row.of_preset);
    EXPECT_EQ(page.page->IsPageDirty(), S_FALSE);
  }
}

TEST_P(PageTest, IgnoresCommandsWhileNoFilterIsConnected) {
  const Filter filter(effect), other(effect), wrong(PageOf(GetParam()).wrong);
  const Page page(GetParam());
  page.OpenFor(filter);
  const auto change_nothing = [&] {
    for (const auto& [topic, controls] : page.row.topics) {
      for (const int id : controls) {
        page.Command(id, EN_KILLFOCUS);
        page.Command(id, CBN_SELCHANGE);
        for (const UINT scroll : {WM_HSCROLL, WM_VSCROLL}) {
          page.Send(scroll, SB_LINEDOWN, reinterpret_cast<LPARAM>(page.Control(id)));
        }
      }
    }
    for (const int id : {ID_PRESET_FIRST + 2, ID_BYPASS, ID_FILTER_CHANGED, ID_ABOUT}) page.Command(id);
    page.Send(WM_TIMER);
    EXPECT_EQ(filter.Get(), effect.presets[0].settings);
    EXPECT_EQ(page.Shown(), page.row.fresh);
  };
  EXPECT_EQ(page.Connect(nullptr), S_OK);
  EXPECT_EQ(page.Connect(nullptr), E_UNEXPECTED);
  change_nothing();
  ASSERT_EQ(page.Connect(filter.control.Get()), S_OK);
  EXPECT_EQ(page.Connect(wrong.control.Get()), E_NOINTERFACE);
  change_nothing();
  other.presets->ApplyPreset(page.row.preset);
  ASSERT_EQ(page.Connect(filter.control.Get()), S_OK);
  ASSERT_EQ(page.Connect(other.control.Get()), S_OK) << "from one filter to the next";
  EXPECT_EQ(page.Shown(), page.row.of_preset);
  filter.presets->ApplyPreset(0);
  EXPECT_EQ(page.Shown(), page.row.of_preset);
}

// Two windows fit. The page takes one place, and gives it back however it ends.
TEST_P(PageTest, GivesItsPlaceAmongTheFiltersWindowsBack) {
  const Filter filter(effect), other(effect);
  const Window first, second;
  const std::pair<const char*, std::function<void(Page&)>> ends[] = {
      {"disconnected", [](Page& page) { page.Connect(nullptr); }},
      {"connected to another", [&](Page& page) { page.Connect(other.control.Get()); }},
      {"closed", [](Page& page) { page.Close(); }},
      {"frame destroyed", [](Page& page) { DestroyWindow(page.frame); }},
      {"page released", [](Page& page) { page.page = nullptr; }}};
  for (const auto& [what, end] : ends) {
    SCOPED_TRACE(what);
    Page page(GetParam());
    page.OpenFor(filter);
    EXPECT_EQ(filter.Register(first, 1), S_OK);
    EXPECT_EQ(filter.Register(second, 1), E_OUTOFMEMORY);
    end(page);
    EXPECT_EQ(filter.Register(second, 1), S_OK);
    for (const Window* window : {&first, &second}) filter.Register(*window, 0);
  }
}

// Answers as the filter does, except that its presets are other ones, or none.
class OtherPresets final : public CountedFake<IPluginPresets> {
 public:
  OtherPresets(IUnknown* filter, Texts names) : filter_(filter), names_(std::move(names)) {}
  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    if (iid != __uuidof(IPluginPresets)) return filter_->QueryInterface(iid, out);
    return names_.empty() ? *out = nullptr, E_NOINTERFACE : CountedFake::QueryInterface(iid, out);
  }
  STDMETHODIMP GetPresetCount(LONG* count) override { return *count = static_cast<LONG>(names_.size()), S_OK; }
  STDMETHODIMP GetPresetName(LONG index, WCHAR* name, LONG length) override {
    if (names_[index] == L"(unreadable)") return E_FAIL;
    return lstrcpynW(name, names_[index].c_str(), length), S_OK;
  }
  STDMETHODIMP ApplyPreset(LONG) override { return E_FAIL; }

 private:
  IUnknown* const filter_;
  const Texts names_;
};

TEST_P(PageTest, OffersAllPresetsButTheFirstInItsMenu) {
  const Filter filter(effect);
  const Page page(GetParam());
  page.OpenFor(filter);
  std::vector<WORD> keys(page.row.preset - 1, VK_DOWN);
  keys.insert(keys.begin(), {VK_DOWN, VK_RIGHT});
  keys.push_back(VK_RETURN);
  const Menu menu = page.PopUpMenu(MAKELPARAM(150, 160), keys);
  EXPECT_EQ(menu.place.x, 150);
  EXPECT_EQ(menu.place.y, 160);
  EXPECT_THAT(menu.items, ElementsAre(Pair(static_cast<UINT>(-1), L"Presets"), Pair(0u, L""), Pair(41000u, L"Help"),
                                      Pair(41001u, L"About...")));
  ASSERT_EQ(menu.presets.size(), effect.presets.size() - 1);
  for (std::size_t i = 1; i < effect.presets.size(); ++i) {
    EXPECT_THAT(menu.presets[i - 1], Pair(40499u + i, effect.presets[i].name));
  }
  EXPECT_EQ(page.Shown(), page.row.of_preset);
  RECT bounds;
  GetWindowRect(page.Dialog(), &bounds);
  for (const LPARAM keyboard : {LPARAM{-1}, MAKELPARAM(-1, 50), MAKELPARAM(50, -1)}) {
    const POINT place = page.PopUpMenu(keyboard).place;
    EXPECT_EQ(place.x, bounds.left + (bounds.right - bounds.left) / 2);
    EXPECT_EQ(place.y, bounds.top + (bounds.bottom - bounds.top) / 4);
  }
}

TEST_P(PageTest, ShowsForeignPresetNamesAsTheyAre) {
  const std::wstring full(259, L'x');
  const struct {
    Texts names;
    std::vector<std::pair<UINT, std::wstring>> items;
  } rows[] = {
      {{}, {}},
      {{L"(Default)"}, {}},
      {{L"0", L"Rock & Roll", L"(unreadable)", L"", L"&" + full},
       {{40500, L"Rock && Roll"}, {40501, L""}, {40502, L"&&" + full.substr(2)}}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.names.size());
    const Filter filter(effect);
    OtherPresets object(filter.control.Get(), row.names);
    const Page page(GetParam());
    ASSERT_EQ(page.Connect(&object), S_OK);
    ASSERT_EQ(page.Open(), S_OK);
    EXPECT_EQ(page.PopUpMenu(MAKELPARAM(150, 160)).presets, row.items);
    page.Command(ID_PRESET_FIRST);
    EXPECT_EQ(page.Shown(), page.row.fresh);
  }
}

HWND HelpPopup() { return FindWindowW(L"TervanHelpPopup", nullptr); }

TEST_P(PageTest, ExplainsEachControlUntilAKeyIsPressed) {
  const Filter filter(effect);
  const Page page(GetParam());
  page.OpenFor(filter);
  const HWND focused = SetFocus(page.Control(page.row.value_controls[1])), control = GetFocus();
  const auto ask = [&](int id, HWND handle) {
    HELPINFO help = {sizeof help, HELPINFO_WINDOW, id, handle, 0, {200, 200}};
    page.Send(WM_HELP, 0, reinterpret_cast<LPARAM>(&help));
  };
  for (const auto& [string, controls] : page.row.topics) {
    wchar_t text[1000] = L"";
    EXPECT_GT(LoadStringW(TheModule(), string, text, 1000), 20) << string;
    for (const int id : controls) {
      ask(id, page.Control(id));
      EXPECT_EQ(TextOf(HelpPopup()), text) << id;
      EXPECT_EQ(GetFocus(), HelpPopup());
      SendMessageW(HelpPopup(), WM_KEYDOWN, VK_ESCAPE, 0);
      EXPECT_EQ(HelpPopup(), nullptr);
      EXPECT_EQ(GetFocus(), control);
    }
  }
  for (const int id : {0, -1, 2, 9999}) {
    ask(id, page.Dialog());
    EXPECT_EQ(HelpPopup(), nullptr) << id;
  }
  SetFocus(focused);
}

HWND AboutBox() { return FindWindowW(L"#32770", L"About Tervan Strata 1"); }

TEST_P(PageTest, NamesTheProductInABox) {
  const Filter filter(effect);
  const Page page(GetParam());
  page.OpenFor(filter);
  page.Meanwhile(WM_COMMAND, ID_ABOUT, 0, [&] {
    ASSERT_NE(AboutBox(), nullptr);
    EXPECT_FALSE(IsWindowEnabled(page.frame));
    EXPECT_EQ(TextOf(GetDlgItem(AboutBox(), IDC_ABOUT_PRODUCT)), L"Tervan Strata 1");
    EXPECT_EQ(TextOf(GetDlgItem(AboutBox(), IDC_ABOUT_VERSION)), L"Version 1.0 (Build 244)");
    EXPECT_THAT(TextOf(GetDlgItem(AboutBox(), IDC_ABOUT_RIGHTS)), testing::HasSubstr(L"\x00A9 Lumarch"));
    PostMessageW(GetDlgItem(AboutBox(), IDOK), WM_KEYDOWN, VK_ESCAPE, 0);
  });
  EXPECT_EQ(AboutBox(), nullptr);
  EXPECT_TRUE(IsWindowEnabled(page.frame));
}

// The host closes and forgets the page while its menu or box is open: nobody else holds it then.
TEST_P(PageTest, MayGoWhileItsMenuOrItsBoxIsOpen) {
  for (const bool is_menu : {false, true}) {
    const Filter filter(effect);
    Page page(GetParam());
    page.OpenFor(filter);
    const HWND dialog = page.Dialog();
    page.Meanwhile(is_menu ? WM_CONTEXTMENU : WM_COMMAND, is_menu ? 0 : ID_ABOUT, MAKELPARAM(150, 160), [&] {
      page.Close();
      page.Connect(nullptr);
      page.page = nullptr;
      if (is_menu) {
        EndMenu();
      } else {
        EndDialog(AboutBox(), IDCANCEL);
      }
    });
    EXPECT_FALSE(IsWindow(dialog));
    HandlePostedMessages();
  }
}

// The last place that new handles take, so many that they fill every gap. The low word of a handle is its place.
template <class Make, class Destroy>
int LastPlace(Make make, Destroy destroy) {
  std::vector<decltype(make())> handles(2000);
  int last = 0;
  for (auto& handle : handles) last = std::max<int>(last, LOWORD(handle = make()));
  for (const auto handle : handles) destroy(handle);
  return last;
}
int LastWindowPlace() { return LastPlace(CreateMenu, DestroyMenu); }
int LastDrawingPlace() {
  return LastPlace([] { return CreateSolidBrush(0); }, DeleteObject);
}

TEST_P(PageTest, LeavesNothingBehindHoweverOftenItIsOpenedAndPainted) {
  constexpr int kCycles = 100, kWarmUp = 10, kSlack = 20;
  const Filter filter(effect);
  const Page page(GetParam());
  int windows = 0, drawing_objects = 0;
  for (int cycle = 0; cycle < kWarmUp + kCycles; ++cycle) {
    if (cycle == kWarmUp) windows = LastWindowPlace(), drawing_objects = LastDrawingPlace();
    page.OpenFor(filter);
    RedrawWindow(page.frame, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    page.Close();
  }
  EXPECT_LT(LastWindowPlace(), windows + kSlack);
  EXPECT_LT(LastDrawingPlace(), drawing_objects + kSlack);
}

TEST_F(DitherPageTest, ListsHoldTheSettingsInOrderAndChangeOneEach) {
  const std::vector<std::pair<int, Texts>> lists = {
      {6003, {L"8 bit", L"12 bit", L"16 bit", L"18 bit", L"20 bit", L"24 bit", L"32 bit"}},
      {6005, {L"None", L"Half Rectangular", L"Rectangular", L"Triangular", L"Highpass Triangular", L"Gaussian"}},
      {6007, {L"Off", L"High-pass contour", L"Equal loudness contour"}}};
  const Filter filter(kDither);
  const Page page(kDither);
  page.OpenFor(filter);
  Settings settings = filter.Get();
  Texts shown = page.Shown();
  for (std::size_t list = 0; list < lists.size(); ++list) {
    const auto& [id, entries] = lists[list];
    ASSERT_EQ(page.SendTo(id, CB_GETCOUNT), static_cast<LRESULT>(entries.size()));
    for (std::size_t i = 0; i < entries.size(); ++i) {
      EXPECT_EQ(page.SendTo(id, CB_GETITEMDATA, i), static_cast<LRESULT>(i));
      page.SendTo(id, CB_SETCURSEL, i);
      page.Command(id, CBN_CLOSEUP);
      EXPECT_EQ(filter.Get(), settings);
      page.Command(id, CBN_SELCHANGE);
      settings[list] = static_cast<double>(i);
      shown[list] = entries[i];
      EXPECT_EQ(filter.Get(), settings);
      EXPECT_EQ(page.Shown(), shown);
    }
  }
}

// A slider, the control that shows its value, and the parameter that it moves.
struct GateRow {
  int slider, text;
  DWORD param;
};
constexpr GateRow kThreshold{7008, 7005, 0}, kAttack{7002, 7010, 1}, kRelease{7003, 7009, 2};
constexpr LONG kStart = 3;  // a preset: -38 dB, 10 ms, 1000 ms

struct GateRig {
  GateRig() {
    Query<IParamRecorderSite>(filter.control.Get())->SetRecorder(&recorder);
    page.OpenFor(filter);
    Restart();
  }
  void Restart() {
    filter.presets->ApplyPreset(kStart);
    page.Shown();
    recorder.Take();
  }
  double Value(const GateRow& row) const { return filter.GetAt(filter.effect.params[row.param]); }
  LRESULT Position(const GateRow& row) const { return page.SendTo(row.slider, ui::kSliderGetPosition); }
  void Type(const GateRow& row, const std::wstring& text) const {
    SetFocus(page.Control(row.text));
    SetWindowTextW(page.Control(row.text), text.c_str());
  }

  HostRecorder recorder;
  const Filter filter{kGate};
  const Page page{kGate};
};

// A held key repeats; the host hears of one edit, which ends with the key.
TEST_F(GatePageTest, KeysMoveTheValueInOneEditEach) {
  const struct {
    const GateRow& row;
    WORD key;
    const char* heard;
    const wchar_t* text;
  } rows[] = {
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
  };
  GateRig rig;
  for (const auto& [row, key, heard, text] : rows) {
    SCOPED_TRACE(heard);
    rig.Restart();
    for (int times = 0; times < 2; ++times) rig.page.SendTo(row.slider, WM_KEYDOWN, key);
    EXPECT_EQ(rig.recorder.Take(), heard);
    EXPECT_EQ(rig.page.TextOf(row.text), text);
    EXPECT_EQ(rig.Position(row), rig.Value(row));
    rig.page.SendTo(row.slider, WM_KEYUP, key);
    EXPECT_EQ(rig.recorder.Take(), " E" + std::to_string(row.param));
  }
}

// While the user is in the middle of something, the page closes, or somebody takes the mouse.
TEST_F(GatePageTest, EndsWhatTheUserIsDoing) {
  GateRig rig;
  const std::function<void()> ends[] = {[&] { rig.page.SendTo(kAttack.slider, WM_LBUTTONUP); },
                                        [&] { ReleaseCapture(); }, [&] { rig.page.Close(); }};
  for (const auto& end : ends) {
    EXPECT_HRESULT_SUCCEEDED(rig.filter.values->SetParam(kAttack.param, 250));
    rig.Restart();
    EXPECT_HRESULT_SUCCEEDED(rig.filter.values->SetParam(kAttack.param, 250));
    rig.page.Shown();
    RECT slider;
    GetClientRect(rig.page.Control(kAttack.slider), &slider);
    rig.page.SendTo(kAttack.slider, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(slider.right / 2, slider.bottom / 2));
    rig.page.SendTo(kAttack.slider, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(slider.right / 2 + 20, slider.bottom / 2));
    EXPECT_GT(rig.Value(kAttack), 260);
    end();
    std::ostringstream heard;
    heard << " B1 V1=" << rig.Value(kAttack) << " E1";
    EXPECT_EQ(rig.recorder.Take(), heard.str());
  }
  rig.page.Open();
  rig.Restart();
  SetFocus(rig.page.Control(kAttack.slider));
  rig.page.SendTo(kAttack.slider, WM_KEYDOWN, VK_RIGHT);
  rig.page.Close();
  EXPECT_EQ(rig.recorder.Take(), " B1 V1=11 E1");
  rig.page.Open();
  rig.Type(kRelease, L"77");
  rig.page.Close();
  EXPECT_EQ(rig.recorder.Take(), " B2 V2=77 E2");
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
    const GateRow& row;
    std::wstring typed;
    double value;
    const wchar_t* text;
    const wchar_t* separator = L",";
  } rows[] = {
      {kAttack, L"77", 77, L"77"},
      {kAttack, L"6000", 500, L"500"},
      {kAttack, L"-5", 0, L"0"},
      {kAttack, L"five", 0, L"0"},
      {kAttack, L"", 0, L"0"},
      {kRelease, L"77", 77, L"77"},
      {kRelease, L"6000", 5000, L"5,000"},
      {kRelease, L"0", 1, L"1"},
      {kRelease, L"-5", 1, L"1"},
      {kRelease, L"five", 1, L"1"},
      {kRelease, L"", 1, L"1"},
      {kRelease, overlong, 1, L"1"},
      {kRelease, L"2,500", 2500, L"2,500"},
      {kRelease, L"2'500", 2500, L"2'500", L"'"},
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
  for (const GateRow& row : {kThreshold, kAttack, kRelease, GateRow{0, 0, 3}}) {
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
      EXPECT_EQ(rig.filter.values->FlushEnvelope(row.param, 0, 1000000), S_OK);
    }
    EXPECT_EQ(rig.filter.direct->EndStream(), S_OK);
  }
}

}  // namespace
}  // namespace tervan::test
