// Property pages in a frame's window, driven by the messages that users and filters cause.
#include "module/handle_places.h"
#include "module/page_rig.h"
#include "resources/ids.h"

namespace tervan::test {
namespace {

using testing::ElementsAre;
using testing::Pair;

using PageTest = EffectTest;
using DitherPageTest = ModuleTest;
TERVAN_FOR_ALL_EFFECTS(PageTest);

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
  const Page::Menu menu = page.PopUpMenu(MAKELPARAM(150, 160), keys);
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
    MenuItems items;
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
  const HWND focused = page.Control(page.row.value_controls[1]);
  SetFocus(focused);
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
      EXPECT_EQ(GetFocus(), focused);
    }
  }
  for (const int id : {0, -1, 2, 9999}) {
    ask(id, page.Dialog());
    EXPECT_EQ(HelpPopup(), nullptr) << id;
  }
  ask(page.row.value_controls[0], focused);
  page.Close();
  EXPECT_EQ(HelpPopup(), nullptr) << "it would outlive the module";
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
    });
    EXPECT_FALSE(IsWindow(dialog));
    EXPECT_EQ(AboutBox(), nullptr);
    HandlePostedMessages();
  }
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

}  // namespace
}  // namespace tervan::test
