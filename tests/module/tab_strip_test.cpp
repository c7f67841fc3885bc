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
  struct Items {
    DWORD size_bytes, count, reserved;
    TabItem items[kMaxTabs];
  };
  static Items Record(DWORD count = 4, DWORD size_bytes = sizeof(Items)) {
    Items record = {size_bytes, count, 0, {}};
    for (DWORD i = 0; i < kMaxTabs; ++i) record.items[i] = {{static_cast<char>('1' + i)}, 0x10000 + 10 * i, 0};
    return record;
  }
  LRESULT SetItems(const Items& record) { return Send(kTabSetItems, 0, reinterpret_cast<LPARAM>(&record)); }
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
  struct Row {
    DWORD size_bytes, count;
    bool is_right;
  };
  for (const Row& row : {Row{171, 4, false}, Row{0, 5, false}, Row{0, 4, true}, Row{372, 10, false},
                         Row{372, ~0U, false}, Row{52, 1, true}, Row{372, 9, true}, Row{172, 4, true}}) {
    SetItems(Record(3));
    const Items items = Record(row.count, row.size_bytes);
    EXPECT_EQ(SetItems(items), row.is_right) << row.size_bytes << " with " << row.count;
    Items copy = Record(77);
    EXPECT_EQ(Send(kTabGetItems, 0, reinterpret_cast<LPARAM>(&copy)), 1);
    ASSERT_EQ(copy.count, row.is_right ? row.count : 3);
    EXPECT_EQ(std::memcmp(copy.items, items.items, copy.count * sizeof(TabItem)), 0);
  }
  Items small = Record(77, 171);
  EXPECT_EQ(Send(kTabGetItems, 0, reinterpret_cast<LPARAM>(&small)), 0);
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
  SetFocus(MakeEdit()), Take(), Click(3);
  EXPECT_EQ(Take(), (Events{{MAKELONG(0, EN_KILLFOCUS), -1}, Chosen(0)}));
  Events from_the_left;
  for (int x = 0; x < kWidth_px; ++x) {
    Click(x);
    for (const Event& event : Take()) {
      if (from_the_left.empty() || from_the_left.back() != event) from_the_left.push_back(event);
    }
  }
  EXPECT_EQ(from_the_left, (Events{Chosen(0), Chosen(1), Chosen(2), Chosen(3)}));
  EnableWindow(control, FALSE), Click(3);
  EXPECT_EQ(Take(), Events{});
}

TEST_F(TabStripTest, KeysSelectAndEveryKeyIsHeard) {
  const Event none = {MAKELONG(kId, kNoTabData), -1};
  struct Row {
    WPARAM key;
    int from, to;
  };
  for (const Row& row : {Row{VK_LEFT, 0, 3}, Row{VK_UP, 2, 1}, Row{VK_PRIOR, 3, 2}, Row{VK_RIGHT, 3, 0},
                         Row{VK_DOWN, 0, 1}, Row{VK_NEXT, 1, 2}, Row{VK_HOME, 2, 0}, Row{VK_END, 1, 3}, Row{'1', 3, 0},
                         Row{'4', 0, 3}, Row{VK_NUMPAD1, 2, 0}, Row{VK_NUMPAD4, 2, 3}, Row{'5', 2, 2}, Row{'0', 2, 2},
                         Row{VK_NUMPAD5, 1, 1}, Row{VK_NUMPAD0, 1, 1}, Row{'A', 1, 1}, Row{VK_SPACE, 4, -1}}) {
    Send(kTabSelect, row.from);
    EXPECT_EQ(Key(row.key), Events{row.to >= 0 ? Chosen(row.to) : none}) << row.key << " from " << row.from;
  }
  SetItems(Record(9));
  EXPECT_EQ(Key('9'), Events{Chosen(8)});
  SetItems(Record(0));
  EXPECT_EQ(Key(VK_RIGHT), Events{none});
  SetItems(Record()), SetCapture(parent);
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
  const std::function<void()> acts[] = {[this] { Click(3); }, [this] { Key(VK_RIGHT); },
                                        [this] { Accessible()->accDoDefaultAction(Part(1)); }};
  for (const HWND focused : {parent, MakeEdit()}) {
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
        const LONG marks = state.lVal & (STATE_SYSTEM_SELECTED | STATE_SYSTEM_FOCUSED);
        EXPECT_EQ(marks, other == tab ? STATE_SYSTEM_SELECTED | STATE_SYSTEM_FOCUSED : 0);
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

TEST_F(WingdingsTest, IsThereWhenTheFaceIsAndPagesTrustItOnlyWithTheBandsNumbers) {
  for (const auto& [which, first_tab] :
       {std::pair{Wingdings::kNone, "1"}, {Wingdings::kWithoutNumbers, "1"}, {Wingdings::kComplete, "\x8C"}}) {
    const WingdingsOnSystem system(which);
    {
      const Filter filter(kEq);
      Page page(kEq);
      page.OpenFor(filter);
      char text[kTabTextBytes] = "";
      page.SendTo(IDC_EQ_TABS, kTabGetText, 0, reinterpret_cast<LPARAM>(text));
      EXPECT_STREQ(text, first_tab);
    }
    const HFONT font = Export<HFONT()>("GetWingdingsFont")();
    EXPECT_EQ(font != nullptr, which != Wingdings::kNone);
    if (!font) continue;
    const HDC screen = GetDC(nullptr);
    LOGFONTW made;
    GetObjectW(font, sizeof made, &made);
    EXPECT_EQ(made.lfHeight, -MulDiv(12, GetDeviceCaps(screen, LOGPIXELSY), 72));
    EXPECT_TRUE(made.lfCharSet == SYMBOL_CHARSET && made.lfOutPrecision == OUT_TT_PRECIS &&
                made.lfQuality == PROOF_QUALITY);
    ReleaseDC(nullptr, screen);
    EXPECT_TRUE(DeleteObject(font)) << "the caller's own";
  }
}

}  // namespace
}  // namespace tervan::test
