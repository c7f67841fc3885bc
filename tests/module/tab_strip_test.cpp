// The strip of band tabs, as a dialog of any program that has the module loaded sees it, and the font of its numbers.
#include "ui/controls/tab_strip_messages.h"

#include <functional>

#include "module/control_rig.h"
#include "module/fonts.h"
#include "module/page_rig.h"
#include "resources/ids.h"

namespace tervan::test {
namespace {

using namespace tervan::ui;

constexpr int kWidth_px = 240;
constexpr int kHeight_px = 24;

class TabStripTest : public ControlTest {
 protected:
  using Event = std::pair<UINT, int>;  // MAKELONG(id, code) of a command, and which tab was selected by then
  using Events = std::vector<Event>;
  static Event Chosen(int tab) { return {MAKELONG(kId, 10 * tab), tab}; }

  void SetUp() override {
    ControlTest::SetUp();
    MakeStrip();
  }
  void MakeStrip() {
    Make(kTabStripClassName, WS_TABSTOP, kWidth_px, kHeight_px);
    SetItems(Record()), SetFocus(parent), events.clear();
  }
  HWND MakeEdit() const {
    return CreateWindowW(L"Edit", L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, 50, 50, 20, parent, nullptr, nullptr,
                         nullptr);
  }
  static TabItems Record(DWORD count = 4, DWORD size_bytes = sizeof(TabItems)) {
    TabItems items = {.size_bytes = size_bytes, .count = count, .reserved = 0, .items = {}};
    for (DWORD i = 0; i < kMaxTabs; ++i) items.items[i] = {{static_cast<char>('1' + i)}, 0x10000 + 10 * i, 0};
    return items;
  }
  LRESULT SetItems(const TabItems& items) { return Send(kTabSetItems, 0, reinterpret_cast<LPARAM>(&items)); }
  LRESULT SetText(WPARAM tab, const char* text) { return Send(kTabSetText, tab, reinterpret_cast<LPARAM>(text)); }
  int Selected() const { return static_cast<int>(Send(kTabGetSelected)); }
  void Click(int x) { Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, 9)), Send(WM_LBUTTONUP, 0, MAKELPARAM(x, 9)); }
  Events Take() { return std::exchange(events, {}); }
  Events Key(WPARAM key) { return Send(WM_KEYDOWN, key), Take(); }
  std::vector<COLORREF> Pixels(int count) const {
    UpdateWindow(control);
    const HDC dc = GetDC(control);
    std::vector<COLORREF> pixels;
    for (int i = 0; i < count; ++i) pixels.push_back(GetPixel(dc, i % kWidth_px, i / kWidth_px));
    ReleaseDC(control, dc);
    return pixels;
  }

  void Hear(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message != WM_COMMAND) return;
    EXPECT_EQ(lparam == reinterpret_cast<LPARAM>(control), LOWORD(wparam) == kId);
    events.emplace_back(wparam, Selected());
    if (destroys) DestroyWindow(control);
  }
  Events events;
  bool destroys = false;
};

TEST_F(TabStripTest, KeepsWhatItCanHoldAndRefusesTheRest) {
  char text[kTabTextBytes] = "untouched";
  const auto get_text = [&](WPARAM tab) { return Send(kTabGetText, tab, reinterpret_cast<LPARAM>(text)); };
  for (const auto& [size_bytes, count, is_right] : std::vector<std::tuple<DWORD, DWORD, bool>>{{171, 4, false},
                                                                                               {0, 0, false},
                                                                                               {173, 4, false},
                                                                                               {172, 5, false},
                                                                                               {172, ~0u, false},
                                                                                               {52, 1, true},
                                                                                               {172, 4, true}}) {
    SetItems(Record(3));
    const TabItems items = Record(count, size_bytes);
    EXPECT_EQ(SetItems(items), is_right) << size_bytes << " with " << count;
    TabItems copy = Record(77);
    EXPECT_EQ(Send(kTabGetItems, 0, reinterpret_cast<LPARAM>(&copy)), 1);
    ASSERT_EQ(copy.count, is_right ? count : 3);
    EXPECT_EQ(std::memcmp(copy.items, items.items, copy.count * sizeof(TabItem)), 0);
  }
  for (const WPARAM beyond : {WPARAM{4}, ~WPARAM{0}}) {
    for (const LRESULT answer :
         {get_text(beyond), SetText(beyond, "x"), Send(kTabGetData, beyond), Send(kTabSetData, beyond)}) {
      EXPECT_EQ(answer, -1);
    }
  }
  for (const UINT message : {kTabGetText, kTabSetText}) EXPECT_EQ(Send(message, 1, 0), -1);
  for (const UINT message : {kTabGetItems, kTabSetItems}) EXPECT_EQ(Send(message, 0, 0), 0);
  EXPECT_STREQ(text, "untouched");
  EXPECT_EQ(SetText(1, std::string(40, 'x').c_str()), 31);
  EXPECT_EQ(get_text(1), 31);
  EXPECT_EQ(text, std::string(31, 'x'));
  EXPECT_EQ(Send(kTabGetData, 2), 20);
  Send(kTabSetData, 2, 0xFFFF);
  EXPECT_EQ(Send(kTabGetData, 2), 0xFFFF);
  for (const auto& [tab, before] : {std::pair{3, -1}, {1, 3}, {4, 1}, {2, -1}})
    EXPECT_EQ(Send(kTabSelect, tab), before);
  for (const auto& [count, selected] : {std::pair{3, 2}, {2, -1}})
    EXPECT_EQ((SetItems(Record(count)), Selected()), selected);
  EXPECT_EQ(Take(), Events{}) << "none of this comes from the user";
}

TEST_F(TabStripTest, AClickSelectsTheTabThereOnceTheEditIsLeft) {
  const HWND edit =
      CreateWindowW(L"Edit", L"", WS_CHILD | WS_VISIBLE, 0, 50, 50, 20, parent, nullptr, nullptr, nullptr);
  SetFocus(edit), Take();
  Click(3);
  EXPECT_EQ(Take(), (Events{{MAKELONG(0, EN_KILLFOCUS), -1}, Chosen(0)}));
  Events from_the_left;
  for (int x = 0; x < kWidth_px; ++x) {
    Click(x);
    for (const Event& event : Take()) {
      if (from_the_left.empty() || from_the_left.back() != event) from_the_left.push_back(event);
    }
  }
  EXPECT_EQ(from_the_left, (Events{Chosen(0), Chosen(1), Chosen(2), Chosen(3)}));
  EnableWindow(control, FALSE);
  Click(3);
  EXPECT_EQ(Take(), Events{});
}

TEST_F(TabStripTest, KeysSelectAndEveryKeyIsHeard) {
  const Event none = {MAKELONG(kId, kNoTabData), -1};
  for (const auto& [key, from, heard] : std::vector<std::tuple<WPARAM, int, Event>>{{VK_LEFT, 0, Chosen(3)},
                                                                                    {VK_UP, 2, Chosen(1)},
                                                                                    {VK_PRIOR, 3, Chosen(2)},
                                                                                    {VK_RIGHT, 3, Chosen(0)},
                                                                                    {VK_DOWN, 0, Chosen(1)},
                                                                                    {VK_NEXT, 1, Chosen(2)},
                                                                                    {VK_HOME, 2, Chosen(0)},
                                                                                    {VK_END, 1, Chosen(3)},
                                                                                    {'1', 3, Chosen(0)},
                                                                                    {'4', 0, Chosen(3)},
                                                                                    {VK_NUMPAD1, 2, Chosen(0)},
                                                                                    {VK_NUMPAD4, 2, Chosen(3)},
                                                                                    {'5', 2, Chosen(2)},
                                                                                    {'0', 2, Chosen(2)},
                                                                                    {VK_NUMPAD5, 1, Chosen(1)},
                                                                                    {VK_NUMPAD0, 1, Chosen(1)},
                                                                                    {'A', 1, Chosen(1)},
                                                                                    {'A', 4, none},
                                                                                    {VK_SPACE, 4, none}}) {
    Send(kTabSelect, from);
    EXPECT_EQ(Key(key), Events{heard}) << key << " from " << from;
  }
  SetItems(Record(0));
  EXPECT_EQ(Key(VK_RIGHT), Events{none});
  SetItems(Record());
  SetCapture(parent);
  EXPECT_EQ(Key(VK_RIGHT), Events{});
  ReleaseCapture();
}

TEST_F(TabStripTest, ADialogCanBeLeftByKeyboard) {
  const HWND edit = MakeEdit();
  const auto dialog_key = [&](WPARAM key) {
    SetFocus(control), Send(kTabSelect, 1), Take();
    MSG message = {.hwnd = control, .message = WM_KEYDOWN, .wParam = key, .lParam = 1, .time = 0, .pt = {}};
    EXPECT_TRUE(IsDialogMessageW(parent, &message));
    return Take();
  };
  EXPECT_EQ(Send(WM_GETDLGCODE), DLGC_WANTARROWS | DLGC_WANTCHARS);
  EXPECT_EQ(dialog_key(VK_LEFT), Events{Chosen(0)});
  EXPECT_EQ(dialog_key(VK_F5), Events{Chosen(1)});
  EXPECT_EQ(Send(WM_GETDLGCODE), DLGC_WANTALLKEYS);
  EXPECT_EQ(dialog_key(VK_ESCAPE), (Events{{IDCANCEL, 1}}));
  EXPECT_EQ(dialog_key(VK_RETURN), (Events{{IDOK, 1}}));
  dialog_key(VK_TAB);
  EXPECT_EQ(GetFocus(), edit);
}

TEST_F(TabStripTest, AParentMayDestroyItWheneverItHears) {
  const HWND edit =
      CreateWindowW(L"Edit", L"", WS_CHILD | WS_VISIBLE, 0, 50, 50, 20, parent, nullptr, nullptr, nullptr);
  const std::vector<std::function<void()>> acts = {
      [this] { Click(3); },
      [this] { Key(VK_RIGHT); },
      [this] { Accessible()->accDoDefaultAction(Part(1)); },
  };
  for (const HWND focused : {parent, edit}) {
    for (const auto& act : acts) {
      DestroyWindow(control), MakeStrip(), SetFocus(focused);
      destroys = true, act(), destroys = false;
      EXPECT_FALSE(IsWindow(control));
    }
  }
}

TEST_F(TabStripTest, TellsScreenReadersTheNumbersEvenOfSymbols) {
  const WingdingsOnSystem complete(Wingdings::kComplete);
  const HFONT font = Export<HFONT()>("GetWingdingsFont")();
  const auto accessible = Accessible();
  for (const bool is_symbol : {false, true}) {
    if (is_symbol) Send(WM_SETFONT, reinterpret_cast<WPARAM>(font)), SetText(1, "\x8D");
    for (LONG tab = 1; tab <= 4; ++tab) {
      EXPECT_EQ(Text(accessible, &IAccessible::get_accName, tab), std::to_wstring(tab));
      EXPECT_EQ(accessible->accDoDefaultAction(Part(tab)), S_OK);
      EXPECT_EQ(Take(), Events{Chosen(tab - 1)});
      SetFocus(control);
      for (LONG other = 1; other <= 4; ++other) {
        VARIANT state, role;
        EXPECT_EQ(accessible->get_accState(Part(other), &state), S_OK);
        EXPECT_EQ((state.lVal & STATE_SYSTEM_SELECTED) != 0, other == tab);
        EXPECT_EQ((state.lVal & STATE_SYSTEM_FOCUSED) != 0, other == tab);
        EXPECT_EQ(accessible->get_accRole(Part(other), &role), S_OK);
        EXPECT_EQ(role.lVal, ROLE_SYSTEM_PAGETAB);
      }
    }
  }
  Send(WM_SETFONT, 0), DeleteObject(font);
}

TEST_F(TabStripTest, TheSelectedTabOpensTheBoxLineAndEveryStateLooksDifferent) {
  const COLORREF page = GetSysColor(COLOR_BTNFACE);
  std::vector<std::vector<COLORREF>> looks;
  const auto look = [&] { looks.push_back(Pixels(kWidth_px * kHeight_px)); };
  look();
  EXPECT_EQ(std::ranges::count(Pixels(kWidth_px - 1), GetSysColor(COLOR_BTNSHADOW)), kWidth_px - 1) << "closed";
  Send(kTabSelect, 0), look();
  EXPECT_EQ(Pixels(12)[8], page) << "open";
  SetFocus(control), look();
  Send(WM_MOUSEMOVE, 0, MAKELPARAM(60, 9)), look();
  EnableWindow(control, FALSE), look();
  SetText(0, "7"), look();
  const WingdingsOnSystem complete(Wingdings::kComplete);
  const HFONT font = Export<HFONT()>("GetWingdingsFont")();
  Send(WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  EXPECT_EQ(Send(WM_GETFONT), reinterpret_cast<LRESULT>(font));
  for (const char* glyph : {"\x8C", "\x8D", "\x81"}) SetText(0, glyph), look();
  for (std::size_t i = 0; i < looks.size(); ++i) EXPECT_EQ(std::ranges::count(looks, looks[i]), 1) << i;
  Send(WM_SETFONT, 0), DeleteObject(font);
}

using WingdingsTest = ModuleTest;

TEST_F(WingdingsTest, PagesTrustItOnlyWithTheBandsNumbers) {
  for (const auto& [which, first_tab] :
       {std::pair{Wingdings::kNone, "1"}, {Wingdings::kWithoutNumbers, "1"}, {Wingdings::kComplete, "\x8C"}}) {
    const WingdingsOnSystem system(which);
    const Filter filter(kEq);
    Page page(kEq);
    page.OpenFor(filter);
    char text[kTabTextBytes] = "";
    page.SendTo(IDC_EQ_TABS, kTabGetText, 0, reinterpret_cast<LPARAM>(text));
    EXPECT_STREQ(text, first_tab);
  }
}

TEST_F(WingdingsTest, IsThereWhenTheFaceIsWhateverCharactersItHas) {
  for (const auto& [which, is_there] :
       {std::pair{Wingdings::kNone, false}, {Wingdings::kWithoutNumbers, true}, {Wingdings::kComplete, true}}) {
    const WingdingsOnSystem system(which);
    const HFONT font = Export<HFONT()>("GetWingdingsFont")();
    EXPECT_EQ(font != nullptr, is_there);
    if (!font) continue;
    const HDC screen = GetDC(nullptr);
    LOGFONTW made;
    GetObjectW(font, sizeof made, &made);
    EXPECT_EQ(made.lfHeight, -MulDiv(12, GetDeviceCaps(screen, LOGPIXELSY), 72));
    EXPECT_EQ(made.lfCharSet, SYMBOL_CHARSET);
    EXPECT_EQ(made.lfOutPrecision, OUT_TT_PRECIS);
    EXPECT_EQ(made.lfQuality, PROOF_QUALITY);
    ReleaseDC(nullptr, screen);
    EXPECT_TRUE(DeleteObject(font)) << "the caller's own";
  }
}

}  // namespace
}  // namespace tervan::test
