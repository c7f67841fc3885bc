// The logo strip and the static control, as a dialog of any program that has the module loaded sees them.
#include <windows.h>

#include <commctrl.h>

#include <cstring>
#include <random>
#include <string>

#include "module/control_rig.h"
#include "ui/controls/logo_messages.h"
#include "ui/controls/static_messages.h"
#include "ui/geometry.h"

namespace tervan::test {
namespace {

using namespace tervan::ui;

constexpr Size kClient{400, 26};
constexpr LPARAM kPicture = MAKELPARAM(5, 13);
constexpr LPARAM kOutside = MAKELPARAM(5, -3);

class LogoStaticTest : public ControlTest {
 protected:
  void Make(const wchar_t* class_name, DWORD style = 0) {
    ControlTest::Make(class_name, style, kClient.width, kClient.height);
  }
  LRESULT AddText(int id, const char* text) { return Send(kLogoAddText, id, reinterpret_cast<LPARAM>(text)); }

  // What the strip has posted: command ids, and 0x614 as itself.
  std::vector<int> Posted() {
    std::vector<int> posted;
    MSG message;
    while (PeekMessageW(&message, parent, kLogoPictureClicked, kLogoPictureClicked, PM_REMOVE)) {
      posted.push_back(kLogoPictureClicked);
    }
    while (PeekMessageW(&message, parent, WM_COMMAND, WM_COMMAND, PM_REMOVE)) {
      EXPECT_EQ(message.lParam, reinterpret_cast<LPARAM>(control));
      posted.push_back(static_cast<int>(message.wParam));
    }
    return posted;
  }
  std::vector<int> Drag(LPARAM from, LPARAM to) {
    Send(WM_LBUTTONDOWN, MK_LBUTTON, from);
    EXPECT_EQ(GetCapture(), control);
    Send(WM_LBUTTONUP, 0, to);
    EXPECT_EQ(GetCapture(), nullptr);
    return Posted();
  }
  std::vector<int> Key(WPARAM key) { return Send(WM_KEYDOWN, key), Posted(); }

  int link_clicks = 0;
  bool destroys_on_click = false;

 private:
  void Hear(UINT message, WPARAM wparam, LPARAM lparam) override {
    if (message != WM_NOTIFY) return;
    const auto& header = *reinterpret_cast<const NMHDR*>(lparam);
    link_clicks += header.code == kNotifyLink && header.hwndFrom == control && header.idFrom == kId && wparam == kId;
    if (destroys_on_click) DestroyWindow(control);
  }
};

class LogoStripTest : public LogoStaticTest {
 protected:
  void SetUp() override {
    LogoStaticTest::SetUp();
    Make(kLogoClassName);
    SetWindowTextW(control, L"Dither ");
  }
};

constexpr LPARAM kMark = MAKELPARAM(kClient.width - 2, 13);
constexpr LPARAM kAbout = MAKELPARAM(kClient.width - 24, 13);

TEST_F(LogoStripTest, AnswersWhetherAnItemIsThere) {
  EXPECT_EQ(AddText(41001, "About"), 1);
  EXPECT_EQ(Send(kLogoAddText, 41000, 0), 0);
  EXPECT_EQ(Send(kLogoAddText, 41000, 5), 0);
  Send(kLogoAddButton, 41003, 1);
  EXPECT_EQ(Send(kLogoSetState, 41003, 0), 1);
  EXPECT_EQ(Send(kLogoSetState, 41001, 0), 0) << "texts have no state";
  EXPECT_EQ(Send(kLogoEnableItem, 41001, 0), 1);
  EXPECT_EQ(Send(kLogoEnableItem, 41000, 0), 0);
  EXPECT_EQ(Send(kLogoSetMode, 5), 5);
  EXPECT_NE(GetWindowLongW(control, GWL_STYLE) & WS_TABSTOP, 0);
  Send(kLogoRemoveItems);
  EXPECT_EQ(Send(kLogoEnableItem, 41001, 1), 0);
  EXPECT_EQ(GetWindowLongW(control, GWL_STYLE) & WS_TABSTOP, 0);
}

TEST_F(LogoStripTest, ShowsTheItemAddedLastRightmost) {
  HIMAGELIST images = ImageList_Create(21, 17, ILC_COLOR24, 1, 1);
  Send(kLogoSetImages, reinterpret_cast<WPARAM>(images));
  Send(kLogoAddButton, 41003, 0);
  AddText(41001, "About");
  AddText(41000, "?");
  std::vector<int> from_the_right;
  for (int x = kClient.width - 1; x > 150; --x) {
    for (const int id : Drag(MAKELPARAM(x, 13), MAKELPARAM(x, 13))) {
      if (from_the_right.empty() || from_the_right.back() != id) from_the_right.push_back(id);
    }
  }
  EXPECT_EQ(from_the_right, (std::vector<int>{41000, 41001, 41003}));
  DestroyWindow(control);
  EXPECT_TRUE(ImageList_Destroy(images)) << "the page's own";
}

TEST_F(LogoStripTest, PostsACommandForAClickThatEndsWhereItBegan) {
  AddText(41001, "About");
  AddText(41000, "?");
  const std::vector<int> nothing;
  EXPECT_EQ(Drag(kAbout, kAbout), std::vector<int>{41001});
  EXPECT_EQ(Drag(kAbout, kMark), nothing);
  EXPECT_EQ(Drag(kAbout, kOutside), nothing);
  EXPECT_EQ(Drag(kOutside, kAbout), nothing);
  Send(WM_LBUTTONDOWN, MK_LBUTTON, kAbout);
  ReleaseCapture();
  Send(WM_LBUTTONUP, 0, kAbout);
  EXPECT_EQ(Posted(), nothing) << "the capture was lost";
  Send(WM_LBUTTONDOWN, MK_LBUTTON, kMark);
  Send(kLogoRemoveItems);
  AddText(0, "About");
  AddText(41000, "?");
  Send(WM_LBUTTONUP, 0, kMark);
  EXPECT_EQ(Posted(), nothing) << "the item that was pressed is gone";
  EXPECT_EQ(Drag(kAbout, kAbout), nothing) << "no id";
  Send(kLogoEnableItem, 41000, 0);
  EXPECT_EQ(Drag(kMark, kMark), nothing) << "disabled";
}

TEST_F(LogoStripTest, PictureBelongsToTheParentWithoutATextAndToTheStripInAMode) {
  EXPECT_EQ(Drag(kPicture, kPicture), std::vector<int>{});
  Send(kLogoSetMode, 1);
  EXPECT_EQ(Drag(kPicture, kPicture), std::vector<int>{kId});
  SetWindowTextW(control, L"");
  EXPECT_EQ(Drag(kPicture, kPicture), std::vector<int>{kLogoPictureClicked});
  EXPECT_EQ(Drag(kPicture, kOutside), std::vector<int>{});
}

TEST_F(LogoStripTest, KeysMoveAmongItemsAndPressThem) {
  for (const auto& [id, text] : {std::pair{1, "a"}, {2, "b"}, {3, "c"}}) AddText(id, text);
  // A key, and what Space presses after it.
  for (const auto& [key, pressed] :
       {std::pair{VK_LEFT, 1}, {VK_RIGHT, 2}, {VK_END, 3}, {VK_RIGHT, 3}, {VK_LEFT, 2}, {VK_HOME, 1}}) {
    Key(key);
    EXPECT_EQ(Key(VK_SPACE), std::vector<int>{pressed});
  }
  EXPECT_EQ(Key(VK_RETURN), std::vector<int>{}) << "the dialog's";
  MSG enter = {control, WM_KEYDOWN, VK_RETURN, 0, 0, {}};
  EXPECT_EQ(Send(WM_GETDLGCODE, VK_RETURN, reinterpret_cast<LPARAM>(&enter)), DLGC_WANTARROWS);
  Send(kLogoEnableItem, 1, 0);
  EXPECT_EQ(Key(VK_SPACE), std::vector<int>{});
}

TEST_F(LogoStripTest, TellsScreenReadersOfItsItems) {
  Send(kLogoAddButton, 41003, 1);
  AddText(41000, "?");
  Send(kLogoEnableItem, 41000, 0);
  const ComPtr<IAccessible> accessible = Accessible();
  struct Row {
    LONG part;
    std::wstring name;
    LONG role;
    LONG state;
  };
  for (const auto& [part, name, role, state] :
       {Row{0, L"Dither", ROLE_SYSTEM_TOOLBAR, 0}, Row{1, L"Bypass", ROLE_SYSTEM_CHECKBUTTON, STATE_SYSTEM_CHECKED},
        Row{2, L"Help", ROLE_SYSTEM_PUSHBUTTON, STATE_SYSTEM_UNAVAILABLE}}) {
    SCOPED_TRACE(part);
    VARIANT number = {};
    EXPECT_EQ(Text(accessible, &IAccessible::get_accName, part), name);
    EXPECT_EQ(accessible->get_accRole(Part(part), &number), S_OK);
    EXPECT_EQ(number.lVal, role);
    EXPECT_EQ(accessible->get_accState(Part(part), &number), S_OK);
    EXPECT_EQ(number.lVal & (STATE_SYSTEM_CHECKED | STATE_SYSTEM_UNAVAILABLE), state);
    accessible->accDoDefaultAction(Part(part));
  }
  EXPECT_EQ(Posted(), std::vector<int>{41003});
  EnableWindow(control, FALSE);
  Send(kLogoSetMode, 1), Send(WM_LBUTTONDOWN, 0, kPicture), Send(WM_LBUTTONUP, 0, kPicture);
  accessible->accDoDefaultAction(Part(1)), Send(WM_KEYDOWN, VK_SPACE);
  EXPECT_EQ(Posted(), std::vector<int>{}) << "a disabled strip";
}

TEST_F(LogoStaticTest, SurvivesAnyNumbersAndManyLives) {
  std::mt19937 random(1);
  for (int i = 0; i < 500; ++i) {
    Make(i % 2 == 0 ? kStaticClassName : kLogoClassName);
    for (int k = 0; k < 10; ++k) {
      const UINT message = kLogoRemoveItems + random() % 16;  // either control's
      const WPARAM wparam = random() % 3 == 0 ? random() % 4 : random();
      const bool is_text = message == kLogoAddText || message == kStaticLoadBitmap;
      const LPARAM number = message > kStaticLoadBitmap ? random() % 0x10000 : random();
      Send(message, message == kStaticLoadBitmap ? 0 : wparam, is_text ? reinterpret_cast<LPARAM>("text") : number);
    }
    RedrawWindow(control, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    DestroyWindow(control);
  }
}

using StaticControlTest = LogoStaticTest;

// Eight pixels of one red palette entry, on a line.
HGLOBAL RedDib(DWORD compression = BI_RGB) {
  const HGLOBAL dib = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, sizeof(BITMAPINFOHEADER) + 4 + 8);
  auto* const bytes = static_cast<std::uint8_t*>(GlobalLock(dib));
  const BITMAPINFOHEADER header = {sizeof header, 8, 1, 1, 8, compression, 0, 0, 0, 1, 0};
  std::memcpy(bytes, &header, sizeof header);
  bytes[sizeof header + 2] = 0xFF;
  GlobalUnlock(dib);
  return dib;
}

TEST_F(StaticControlTest, OwnsItsPicturesAndDeletesEachOnce) {
  Make(kStaticClassName);
  const HBITMAP first = CreateBitmap(4, 4, 1, 32, nullptr);
  const HBITMAP second = CreateBitmap(4, 4, 1, 32, nullptr);
  Send(kStaticSetBitmap, 0, reinterpret_cast<LPARAM>(first));
  Send(kStaticSetBitmap, 0, reinterpret_cast<LPARAM>(first));
  EXPECT_EQ(GetObjectType(first), static_cast<DWORD>(OBJ_BITMAP)) << "given once more";
  Send(kStaticSetBitmap, 0, reinterpret_cast<LPARAM>(second));
  EXPECT_EQ(GetObjectType(first), 0u);
  const HGLOBAL dib = RedDib();
  Send(kStaticSetDib, 0, reinterpret_cast<LPARAM>(dib));
  EXPECT_EQ(GetObjectType(second), 0u);
  EXPECT_NE(GlobalSize(dib), 0u);
  const HBITMAP last = CreateBitmap(4, 4, 1, 32, nullptr);
  Send(kStaticSetBitmap, 0, reinterpret_cast<LPARAM>(last));
  EXPECT_EQ(GlobalSize(dib), 0u);
  const HGLOBAL undrawable = RedDib(BI_RLE8);
  EXPECT_EQ(Send(kStaticSetDib, 0, reinterpret_cast<LPARAM>(undrawable)), FALSE);
  EXPECT_EQ(GlobalSize(undrawable), 0u);
  EXPECT_EQ(GetObjectType(last), 0u);
}

TEST_F(StaticControlTest, DrawsAPictureAtItsSizeOrStretchedWithItsPalette) {
  for (const DWORD style : {DWORD{0}, kStaticStretch}) {
    SCOPED_TRACE(style);
    Make(kStaticClassName, style);
    Send(kStaticSetDib, 0, reinterpret_cast<LPARAM>(RedDib()));
    UpdateWindow(control);
    const HDC dc = GetDC(control);
    EXPECT_EQ(GetPixel(dc, 2, 0), RGB(255, 0, 0));
    EXPECT_EQ(GetPixel(dc, 200, 20), style != 0 ? RGB(255, 0, 0) : GetSysColor(COLOR_BTNFACE));
    ReleaseDC(control, dc);
    DestroyWindow(control);
  }
}

TEST_F(StaticControlTest, ATransparentTextLeavesNothingBehind) {
  Make(kStaticClassName, kStaticTransparent);
  for (const auto& [text, is_seen] : {std::pair{L"WWW", true}, {L"", false}}) {
    SetWindowTextW(control, text);
    UpdateWindow(control);
    const HDC dc = GetDC(control);
    int differences = 0;
    for (int i = 0; i < 30 * 12; ++i) differences += GetPixel(dc, i % 30, i / 30) != GetPixel(dc, 200, 20);
    EXPECT_EQ(GetPixel(dc, 200, 20), RGB(64, 64, 64)) << "the parent's background";
    ReleaseDC(control, dc);
    EXPECT_EQ(differences != 0, is_seen);
  }
}

TEST_F(StaticControlTest, LoadsPicturesThatAreThere) {
  Make(kStaticClassName);
  EXPECT_EQ(Send(kStaticLoadBitmap, 0, 24019), TRUE) << "from the window's own module";
  EXPECT_EQ(Send(kStaticLoadBitmap, reinterpret_cast<WPARAM>(TheModule()), reinterpret_cast<LPARAM>("#24020")), TRUE);
  EXPECT_EQ(Send(kStaticLoadBitmap, reinterpret_cast<WPARAM>(GetModuleHandleW(nullptr)), 24019), FALSE);
  EXPECT_EQ(Send(kStaticLoadBitmap, 0, 0), FALSE);
}

TEST_F(StaticControlTest, KeepsACopyOfTheFont) {
  Make(kStaticClassName);
  const HFONT font = CreateFontW(-17, 0, 0, 0, FW_BOLD, 0, 0, 0, 0, 0, 0, 0, 0, L"Tahoma");
  Send(WM_SETFONT, reinterpret_cast<WPARAM>(font));
  DeleteObject(font);
  LOGFONTW copy = {};
  const auto kept = reinterpret_cast<HFONT>(Send(WM_GETFONT));
  ASSERT_NE(GetObjectW(kept, sizeof copy, &copy), 0);
  EXPECT_EQ(copy.lfHeight, -17);
  DestroyWindow(control);
  EXPECT_EQ(GetObjectType(kept), 0u);
}

TEST_F(StaticControlTest, LinksNotifyTheParentWhichMayDestroyThem) {
  struct Row {
    DWORD style;
    LPARAM release;
    int clicks;
    LRESULT hit;
  };
  for (const auto& [style, release, clicks, hit] :
       {Row{kStaticLink, kPicture, 1, HTTRANSPARENT}, Row{kStaticLink | kStaticTakesMouse, kOutside, 0, HTCLIENT},
        Row{0, kPicture, 0, HTTRANSPARENT}, Row{kStaticLink | WS_DISABLED, kPicture, 0, HTTRANSPARENT}}) {
    SCOPED_TRACE(style);
    Make(kStaticClassName, style);
    EXPECT_EQ(Send(WM_NCHITTEST, 0, kPicture), hit);
    EXPECT_EQ(Send(WM_GETDLGCODE), DLGC_STATIC);
    link_clicks = 0;
    destroys_on_click = true;
    Send(WM_LBUTTONDOWN, MK_LBUTTON, kPicture);
    Send(WM_LBUTTONUP, 0, release);
    EXPECT_EQ(link_clicks, clicks);
    EXPECT_EQ(IsWindow(control) != FALSE, clicks == 0);
    destroys_on_click = false;
    DestroyWindow(control);
  }
}

}  // namespace
}  // namespace tervan::test
