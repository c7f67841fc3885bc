// The logo strip and the static control, as a dialog of any program that has the module loaded sees them.
#include <windows.h>

#include <commctrl.h>
#include <oleacc.h>

#include <cstring>
#include <random>
#include <string>

#include "module/module.h"
#include "ui/controls/logo_messages.h"
#include "ui/controls/static_messages.h"
#include "ui/geometry.h"

namespace tervan::test {
namespace {

using namespace tervan::ui;

constexpr int kOwnId = 77;
constexpr Size kClient{400, 26};
constexpr LPARAM kPicture = MAKELPARAM(5, 13);
constexpr LPARAM kOutside = MAKELPARAM(5, -3);

class ControlTest : public testing::Test {
 protected:
  void SetUp() override {
    WNDCLASSW window_class = {};
    window_class.lpfnWndProc = ParentProc;
    window_class.lpszClassName = L"logo_static_test";
    RegisterClassW(&window_class);
    parent = CreateWindowW(L"logo_static_test", L"", WS_POPUP, 0, 0, 500, 100, nullptr, nullptr, nullptr, this);
    SetWindowLongPtrW(parent, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  void TearDown() override { DestroyWindow(parent); }

  void Make(const wchar_t* class_name, DWORD style = 0) {
    control = CreateWindowW(class_name, L"", WS_CHILD | WS_VISIBLE | style, 0, 0, kClient.width, kClient.height, parent,
                            reinterpret_cast<HMENU>(INT_PTR{kOwnId}), TheModule(), nullptr);
    ASSERT_NE(control, nullptr);
  }
  LRESULT Send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) {
    return SendMessageW(control, message, wparam, lparam);
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

  HWND parent = nullptr;
  HWND control = nullptr;
  int link_clicks = 0;
  bool destroys_on_click = false;

 private:
  static LRESULT CALLBACK ParentProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    auto* const test = reinterpret_cast<ControlTest*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_NOTIFY && test) {
      const auto& header = *reinterpret_cast<const NMHDR*>(lparam);
      test->link_clicks +=
          header.code == kNotifyLink && header.hwndFrom == test->control && header.idFrom == kOwnId && wparam == kOwnId;
      if (test->destroys_on_click) DestroyWindow(test->control);
    }
    return DefWindowProcW(window, message, wparam, lparam);
  }
};

class LogoStripTest : public ControlTest {
 protected:
  void SetUp() override {
    ControlTest::SetUp();
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
  EXPECT_EQ(Drag(kPicture, kPicture), std::vector<int>{kOwnId});
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
  EXPECT_EQ(Key(VK_RETURN), std::vector<int>{1});
  Send(kLogoEnableItem, 1, 0);
  EXPECT_EQ(Key(VK_RETURN), std::vector<int>{});
  MSG enter = {control, WM_KEYDOWN, VK_RETURN, 0, 0, {}};
  EXPECT_EQ(Send(WM_GETDLGCODE, VK_RETURN, reinterpret_cast<LPARAM>(&enter)), DLGC_WANTARROWS | DLGC_WANTALLKEYS);
  EXPECT_EQ(Send(WM_GETDLGCODE), DLGC_WANTARROWS);
}

TEST_F(LogoStripTest, TellsScreenReadersOfItsItems) {
  Send(kLogoAddButton, 41003, 1);
  AddText(41000, "?");
  Send(kLogoEnableItem, 41000, 0);
  ComPtr<IAccessible> accessible;
  ASSERT_EQ(AccessibleObjectFromWindow(control, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                       accessible.PutVoid()),
            S_OK);
  struct Part {
    LONG part;
    std::wstring name;
    LONG role;
    LONG state;
  };
  for (const auto& [part, name, role, state] :
       {Part{0, L"Dither", ROLE_SYSTEM_TOOLBAR, 0}, Part{1, L"Bypass", ROLE_SYSTEM_CHECKBUTTON, STATE_SYSTEM_CHECKED},
        Part{2, L"Help", ROLE_SYSTEM_PUSHBUTTON, STATE_SYSTEM_UNAVAILABLE}}) {
    SCOPED_TRACE(part);
    VARIANT child = {};
    child.vt = VT_I4;
    child.lVal = part;
    BSTR text = nullptr;
    VARIANT number = {};
    EXPECT_EQ(accessible->get_accName(child, &text), S_OK);
    EXPECT_EQ(std::wstring(text ? text : L""), name);
    SysFreeString(text);
    EXPECT_EQ(accessible->get_accRole(child, &number), S_OK);
    EXPECT_EQ(number.lVal, role);
    EXPECT_EQ(accessible->get_accState(child, &number), S_OK);
    EXPECT_EQ(number.lVal & (STATE_SYSTEM_CHECKED | STATE_SYSTEM_UNAVAILABLE), state);
    accessible->accDoDefaultAction(child);
  }
  EXPECT_EQ(Posted(), std::vector<int>{41003});
}

TEST_F(ControlTest, SurvivesAnyNumbersAndManyLives) {
  ShowWindow(parent, SW_SHOWNOACTIVATE);  // so that they paint
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

using StaticControlTest = ControlTest;

// Eight pixels of one red palette entry, on a line.
HGLOBAL RedDib() {
  const HGLOBAL dib = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, sizeof(BITMAPINFOHEADER) + 4 + 8);
  auto* const bytes = static_cast<std::uint8_t*>(GlobalLock(dib));
  const BITMAPINFOHEADER header = {sizeof header, 8, 1, 1, 8, BI_RGB, 0, 0, 0, 1, 0};
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
  DestroyWindow(control);
  EXPECT_EQ(GetObjectType(last), 0u);
}

TEST_F(StaticControlTest, DrawsAPictureAtItsSizeOrStretchedWithItsPalette) {
  ShowWindow(parent, SW_SHOWNOACTIVATE);
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
