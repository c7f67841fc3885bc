// The EQ graph as its owner uses it: curve, messages and notifications, gestures, menu, pixels.
#include "ui/controls/eq_graph_messages.h"

#include <functional>

#include "module/control_rig.h"
#include "module/fonts.h"
#include "module/page_rig.h"
#include "resources/ids.h"

namespace tervan::test {
namespace {

using namespace tervan::ui;

constexpr UINT kAct = WM_APP;  // to the parent: calls `in_menu`
constexpr int kWidth = 400, kHeight = 150;
constexpr LPARAM kHome = MAKELPARAM(150, 75);  // of the second node
constexpr COLORREF kBackground = RGB(10, 20, 30);

void CALLBACK PaintBackground(HDC dc, void* context, EqCurve* first_curve, const RECT* plot) {
  SetDCBrushColor(dc, kBackground);
  FillRect(dc, plot, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
  *static_cast<EqCurve**>(context) = first_curve;
}

class EqGraphTest : public ControlTest {
 protected:
  void SetUp() override { ControlTest::SetUp(), Open(); }
  void TearDown() override { Hold(0), ControlTest::TearDown(); }
  // 10 units a pixel across, 0.2 dB a pixel upwards; four nodes at half height, 100 pixels apart.
  void Open(int width = kWidth, int height = kHeight) {
    if (control) DestroyWindow(control);
    Make(kEqGraphClassName, 0, width, height);
    curve = {0x1A02B, 0, 0, 15, 4000, -15, 0.1F, 4, {}, nullptr, 4, 4, {}, 0};
    for (int i = 0; i < 4; ++i) curve.nodes[i] = {500 + 1000 * i, 0, 1, 0, kBandNode, 1, 9, 1};
    List(TRUE, &curve);
    heard.clear();
  }
  void List(BOOL adds, EqCurve* listed) const { Send(kGraphListCurve, adds, reinterpret_cast<LPARAM>(listed)); }
  // These keys and buttons are down, others up.
  static void Hold(int key, int another = 0) {
    BYTE state[256] = {};
    state[key] = state[another] = 0x80;
    SetKeyboardState(state);
  }
  void Press() const { Send(WM_LBUTTONDOWN, MK_LBUTTON, kHome); }
  void MoveTo(int x, int y) const { Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(x, y)); }
  void DoubleClick(int x = 150) const { Send(WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(x, 75)); }
  // Opens the menu of the second node and does this in it. What it shows: "!" greyed, "*" checked.
  std::wstring UseMenu(const std::function<void()>& act_in_menu) {
    std::wstring shown;
    in_menu = [&] {
      const auto menu = reinterpret_cast<HMENU>(SendMessageW(FindWindowW(L"#32768", nullptr), MN_GETHMENU, 0, 0));
      for (int i = 0; i < GetMenuItemCount(menu); ++i) {  // -1: no menu
        wchar_t text[30] = L"";
        GetMenuStringW(menu, i, text, 30, MF_BYPOSITION);
        const UINT state = GetMenuState(menu, i, MF_BYPOSITION);
        shown += (state & MF_SEPARATOR) != 0 ? L"-" : (state & MF_GRAYED) != 0 ? L"!" : L"";
        shown.append((state & MF_CHECKED) != 0 ? L"*" : L"").append(text).append(L";");
      }
      act_in_menu();
    };
    PostMessageW(parent, kAct, 0, 0), Send(WM_RBUTTONDOWN, MK_RBUTTON, kHome), HandlePostedMessages();
    return shown;
  }
  std::wstring Choose(int downs) {  // 0: Escape
    return UseMenu([=, this] {
      for (int i = 0; i < downs; ++i) PostMessageW(control, WM_KEYDOWN, VK_DOWN, 0);
      PostMessageW(control, WM_KEYDOWN, downs != 0 ? VK_RETURN : VK_ESCAPE, 0);
    });
  }

  void Hear(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message == kAct) in_menu();
    if (message == WM_SYSCOMMAND) heard += 's';
    if (message != WM_COMMAND) return;
    EXPECT_TRUE(LOWORD(wparam) == 0xA02B && lparam == reinterpret_cast<LPARAM>(control));
    heard += static_cast<char>('0' + HIWORD(wparam) - 1000);
    if (heard.size() == act_at) act();
  }

  EqCurve curve;
  std::string heard;  // last digits of the codes
  std::function<void()> in_menu, act;
  std::size_t act_at = 0;  // the notification that calls `act`
};

TEST_F(EqGraphTest, DragsWhatTheKeysSay) {
  struct Row {
    int key, another, x;
    float y, width;
  };
  for (const Row& row : {Row{0, 0, 1700, 5, 1}, Row{VK_CONTROL, 0, 1500, 5, 1}, Row{VK_CONTROL, VK_SHIFT, 1700, 0, 1},
                         Row{VK_MENU, VK_CONTROL, 1500, 0, 1 + 45 * 15.6F / kWidth}}) {
    Open(), Hold(row.key, row.another);
    Press(), MoveTo(150, 75);
    EXPECT_EQ(heard, "1") << "not moved";
    EXPECT_EQ(Send(WM_GETDLGCODE), DLGC_WANTARROWS | DLGC_WANTALLKEYS);
    MoveTo(170, 50);
    ASSERT_NE(curve.backup, nullptr);
    EXPECT_EQ(curve.backup[1].x, 1500);
    Send(WM_LBUTTONUP), MoveTo(200, 20);
    EXPECT_EQ(curve.nodes[1].x, row.x);
    EXPECT_FLOAT_EQ(curve.nodes[1].y, row.y);
    EXPECT_FLOAT_EQ(curve.nodes[1].width, row.width);
    EXPECT_EQ(Send(WM_GETDLGCODE), DLGC_WANTARROWS);
  }
}

TEST_F(EqGraphTest, TellsEachGestureAndSurvivesWhateverTheOwnerDoesInBetween) {
  struct Gesture {
    const char *name, *heard;
    int x, enable;
    std::function<void()> perform;
  };
  const auto drag = [&] { Press(), MoveTo(160, 60), MoveTo(250, 15); };
  const Gesture gestures[] = {
      {"click", "102", 1500, 1, [&] { Press(), Send(WM_LBUTTONUP); }},
      {"drag", "10002", 2500, 1, [&] { drag(), Send(WM_LBUTTONUP), Send(WM_LBUTTONUP); }},
      {"Escape", "1000", 1500, 1, [&] { drag(), Send(WM_KEYDOWN, VK_ESCAPE); }},
      {"cancel", "1000", 1500, 1, [&] { drag(), Send(WM_CANCELMODE), Send(WM_CANCELMODE); }},
      {"capture", "1000", 1500, 1, [&] { drag(), SetCapture(parent), ReleaseCapture(); }},
      {"disabled", "1000", 1500, 1, [&] { drag(), EnableWindow(control, FALSE); }},
      {"destroyed", "1000", 1500, 1, [&] { drag(), DestroyWindow(control); }},
      {"all removed", "100", 2500, 1, [&] { drag(), List(FALSE, nullptr); }},
      {"press twice", "10002", 2500, 1, [&] { drag(), Press(), Send(WM_LBUTTONUP); }},
      {"double click", "02", 1500, 0, [&] { DoubleClick(); }},
      {"double, held", "0", 1500, 0, [&] { Hold(VK_LBUTTON), DoubleClick(), Send(WM_LBUTTONUP); }},
      {"menu", "10", 1500, 0, [&] { Choose(1); }},
      {"no choice", "10", 1500, 1, [&] { Choose(0); }},
      {"both buttons", "", 1500, 1, [&] { Send(WM_RBUTTONDOWN, MK_RBUTTON | MK_LBUTTON, kHome); }},
      {"beside", "", 1500, 1, [&] { DoubleClick(200), Send(WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(200, 75)); }},
  };
  const std::function<void()> acts[] = {[&] { List(FALSE, &curve); }, [&] { DestroyWindow(control); },
                                        [&] { curve.node_count = 1; },
                                        [&] { List(FALSE, &curve), List(TRUE, &curve); }};
  for (const Gesture& gesture : gestures) {
    SCOPED_TRACE(gesture.name);
    Open();
    gesture.perform(), Hold(0);
    EXPECT_EQ(heard, gesture.heard);
    EXPECT_EQ(curve.nodes[1].x, gesture.x);
    EXPECT_EQ(curve.nodes[1].enable, gesture.enable);
    for (std::size_t at = 1; at <= std::strlen(gesture.heard); ++at) {
      for (const auto& what : acts) {
        Open();
        act = what, act_at = at;
        gesture.perform(), Hold(0);
        act_at = 0;
        EXPECT_TRUE(curve.backup == nullptr && GetCapture() == nullptr) << at;
      }
    }
  }
}

TEST_F(EqGraphTest, MenuShowsAndChangesABand) {
  struct Row {
    int enable, mode, downs;
    const wchar_t* shown;
    EqCurveNode expected;
  };
  for (const Row& row : {Row{1, 2, 1, L"Disable;Reset;-;Low Shelf;*Band;High Shelf;", {1500, 1, 1, 0, 2, 0, 0, 1}},
                         Row{0, 3, 1, L"Enable;Reset;-;!Low Shelf;!Band;!*High Shelf;", {1500, 1, 1, 0, 3, 1, 0, 1}},
                         Row{0, 1, 2, L"Enable;Reset;-;!*Low Shelf;!Band;!High Shelf;", {1500, 0, 1, 0, 1, 0, 0, 1}},
                         Row{1, 3, 3, L"Disable;Reset;-;Low Shelf;Band;*High Shelf;", {1500, 1, 1, 0, 1, 1, 0, 1}},
                         Row{1, 9, 4, L"Disable;Reset;-;Low Shelf;Band;High Shelf;", {1500, 1, 1, 0, 2, 1, 0, 1}},
                         Row{1, 1, 5, L"Disable;Reset;-;*Low Shelf;Band;High Shelf;", {1500, 1, 1, 0, 3, 1, 0, 1}}}) {
    curve.nodes[1] = {1500, 1, 1, 0, row.mode, row.enable, 0, 0};
    EXPECT_EQ(Choose(row.downs), row.shown);
    EXPECT_EQ(std::memcmp(&curve.nodes[1], &row.expected, sizeof(EqCurveNode)), 0) << row.downs;
  }
  UseMenu([&] {
    List(FALSE, &curve);
    for (const WPARAM key : {VK_DOWN, VK_RETURN}) PostMessageW(control, WM_KEYDOWN, key, 0);
  });
  EXPECT_EQ(curve.nodes[1].enable, 1) << "no longer the graph's";
  UseMenu([&] { DestroyWindow(control); });
  EXPECT_EQ(FindWindowW(L"#32768", nullptr), nullptr) << "the menu stayed";
}

TEST_F(EqGraphTest, KeysOfADragMoveThePointerAndOpenNoMenu) {
  struct Row {
    WPARAM key;
    int held;
    POINT from, to;
  };
  Press();
  for (const Row& row : {Row{VK_RIGHT, 0, {150, 75}, {151, 75}}, Row{VK_LEFT, 0, {150, 75}, {149, 75}},
                         Row{VK_UP, 0, {150, 75}, {150, 74}}, Row{VK_DOWN, 0, {150, 75}, {150, 76}},
                         Row{VK_DOWN, VK_CONTROL, {9, 9}, {9, 9}}, Row{VK_RIGHT, 0, {kWidth, 9}, {kWidth, 9}}}) {
    SetCursorPos(row.from.x, row.from.y), Hold(row.held), Send(WM_KEYDOWN, row.key);
    POINT pointer;
    GetCursorPos(&pointer);
    EXPECT_TRUE(pointer.x == row.to.x && pointer.y == row.to.y) << row.key;
  }
  for (const char* expected : {"02", "s"}) {  // Alt, let go of after a drag, and without one
    heard.clear();
    Send(WM_SYSKEYDOWN, VK_MENU, 1 << 29), Send(WM_LBUTTONUP), Send(WM_SYSKEYUP, VK_MENU, 1 << 29);
    EXPECT_EQ(heard, expected);
  }
}

TEST_F(EqGraphTest, OwnersMessagesSelectAndScale) {
  EXPECT_TRUE(curve.nodes[0].selected == 0 && curve.nodes[3].reserved == 0);
  const ComPtr<IAccessible> accessible = Accessible();
  for (const auto& [node, selected] : {std::pair{3, 3}, {0, 0}, {0, 0}, {4, 65535}, {2, 2}, {65535, 65535}}) {
    heard.clear();
    Send(kGraphSelectNode, 0, node);
    EXPECT_EQ(heard, "1");
    EXPECT_EQ(Send(kGraphGetSelectedNode), selected);
    for (int i = 0; i < 4; ++i) {
      VARIANT state = {};
      EXPECT_EQ(accessible->get_accState(Part(i + 1), &state), S_OK);
      EXPECT_EQ((state.lVal & STATE_SYSTEM_SELECTED) != 0, i == selected);
      EXPECT_EQ(curve.nodes[i].selected, i == selected);
    }
  }
  RECT plot = {};
  Send(kGraphGetPlot, 0, reinterpret_cast<LPARAM>(&plot));
  EXPECT_TRUE(plot.left == 0 && plot.top == 0 && plot.right == kWidth && plot.bottom == kHeight);
  EqCurve wider = curve;
  wider.x_minimum = -4000;
  List(TRUE, &wider);  // 20 units a pixel now, from -4000
  DoubleClick(275);
  EXPECT_EQ(curve.nodes[1].enable, 0);
  List(FALSE, &wider), List(FALSE, reinterpret_cast<EqCurve*>(INT_PTR{1}));  // the other one was never there
  Send(kGraphSetSpan, 0, 2000);                                              // 5 units a pixel
  DoubleClick(300);
  EXPECT_EQ(curve.nodes[1].enable, 1);
}

TEST_F(EqGraphTest, PaintsTheOwnersBackgroundUnderItsNodesAndAHandOverThem) {
  const auto load = [](int number, UINT type, UINT flags) {
    return LoadImageW(TheModule(), MAKEINTRESOURCEW(number), type, 0, 0, flags);
  };
  EqCurve* painted = nullptr;
  Send(kGraphSetBackground, reinterpret_cast<WPARAM>(&PaintBackground), reinterpret_cast<LPARAM>(&painted));
  curve.nodes[1].enable = curve.nodes[3].enable = 0;
  curve.nodes[2].selected = curve.nodes[3].selected = 1;
  UpdateWindow(control);
  EXPECT_EQ(painted, &curve);
  const HDC dc = GetDC(control), memory = CreateCompatibleDC(dc);
  const HGDIOBJ images = load(IDB_EQ_NODES, IMAGE_BITMAP, LR_CREATEDIBSECTION), before = SelectObject(memory, images);
  for (int node = 0; node < 4; ++node) {  // the picture has them in this order
    const int left = curve.nodes[node].x / 10 - 4;
    int different = 0, edge = 0;
    for (int i = 0; i < 64; ++i) {
      different += GetPixel(dc, left + i % 8, 71 + i / 8) != GetPixel(memory, i % 8, 8 * node + i / 8);
      edge += i < 14 && GetPixel(dc, left - 3 + i, 68) != kBackground;
    }
    EXPECT_TRUE(different == 0 && (edge > 3) == (node >= 2)) << node << " or its focus rectangle";
  }
  curve.nodes[1].x = 4001;  // and what comes after it is not drawn
  InvalidateRect(control, nullptr, FALSE), UpdateWindow(control);
  EXPECT_TRUE(GetPixel(dc, 50, 75) != kBackground && GetPixel(dc, 350, 75) == kBackground);
  SelectObject(memory, before), DeleteDC(memory), DeleteObject(images), ReleaseDC(control, dc);

  const HANDLE hand = load(IDC_HAND_CURSOR, IMAGE_CURSOR, LR_DEFAULTSIZE | LR_SHARED);
  for (const auto& [x, is_over] : {std::pair{43, true}, {42, false}}) {
    EXPECT_EQ(Send(WM_NCHITTEST, 0, MAKELPARAM(x, 75)), HTCLIENT);
    EXPECT_TRUE(Send(WM_SETCURSOR, reinterpret_cast<WPARAM>(control), HTCLIENT));
    EXPECT_EQ(GetCursor(), is_over ? hand : LoadCursorW(nullptr, IDC_ARROW));
  }
}

TEST_F(EqGraphTest, ShowsNumbersWhereTheFontHasThem) {
  DestroyWindow(control);
  const WingdingsOnSystem font(Wingdings::kComplete);
  Open();
  curve.nodes[1].enable = curve.nodes[3].enable = 0;
  Send(kGraphSelectNode, 0, 2), UpdateWindow(control);
  const HDC dc = GetDC(control);
  for (int node = 0; node < 4; ++node) {
    int black = 0, red = 0, right = 0;  // more pixels in the right half than in the left one
    for (int i = 0; i < 24 * 24; ++i) {
      const COLORREF colour = GetPixel(dc, curve.nodes[node].x / 10 - 12 + i % 24, 63 + i / 24);
      black += colour == RGB(0, 0, 0), red += colour == RGB(200, 0, 0);
      right += colour == RGB(255, 255, 255) ? 0 : i % 24 < 12 ? -1 : 1;
    }
    SCOPED_TRACE(testing::Message() << node << ": " << black << ' ' << red << ' ' << right);
    EXPECT_TRUE(node == 2 ? red > 60 && black == 0 : black > 5 && red == 0);
    EXPECT_TRUE(node % 2 != 0 ? black < 60 : black + red > 60) << "ring or disc";
    EXPECT_LT(std::abs(right), 40);
  }
  ReleaseDC(control, dc), DestroyWindow(control);
}

TEST_F(EqGraphTest, NoSizeAndNoCurveHarmIt) {
  for (const int width : {0, 1, 3, kWidth}) {
    Open(width, width / 3);
    for (const UINT count : {4U, 4'000'000'000U, 0U}) {
      curve.node_count = count;
      curve.selected_node = count + 70'000;
      Press(), MoveTo(5, 3), Send(WM_LBUTTONUP), DoubleClick(), UpdateWindow(control);
    }
  }
  for (const UINT message : {0x601, 0x603, 0x604, 0x605, 0x606, 0x607}) Send(message);
  for (const UINT message : {0x601, 0x605, 0x606, 0x607}) Send(message, 1, 1);
  EXPECT_EQ(Send(kGraphGetSelectedNode), 65535);
}

}  // namespace
}  // namespace tervan::test
