// What all window classes of the module have in common: how they are registered, and that windows come and go.
#include <random>

#include "module/control_rig.h"
#include "module/handle_places.h"
#include "ui/controls/eq_graph_messages.h"
#include "ui/controls/logo_messages.h"
#include "ui/controls/meter_messages.h"
#include "ui/controls/slider_messages.h"
#include "ui/controls/static_messages.h"
#include "ui/controls/tab_strip_messages.h"

namespace tervan::test {
namespace {

constexpr UINT kGlobalStyle = CS_GLOBALCLASS | CS_DBLCLKS | CS_HREDRAW | CS_VREDRAW;

struct ClassRow {
  const wchar_t* name;
  bool sets_its_cursor;
  int extra_pointers;
  UINT style = kGlobalStyle;
};
constexpr ClassRow kClasses[] = {{ui::kFaderClassName, true, 1},
                                 {ui::kTrackbarClassName, false, 1},
                                 {ui::kMeterClassName, false, 1},
                                 {ui::kStaticClassName, false, 2},
                                 {ui::kLogoClassName, false, 1},
                                 {ui::kTabStripClassName, false, 1, CS_HREDRAW | CS_VREDRAW},
                                 {ui::kEqGraphClassName, false, 1, CS_DBLCLKS | CS_HREDRAW | CS_VREDRAW}};

class ControlClassesTest : public ControlTest {
 protected:
  void Hear(UINT, WPARAM, LPARAM) override {}
};

TEST_F(ControlClassesTest, AnyModuleOfTheProgramCanUseThoseThatAreGlobal) {
  for (const ClassRow& row : kClasses) {
    WNDCLASSEXW found = {};
    found.cbSize = sizeof found;
    ASSERT_TRUE(GetClassInfoExW(TheModule(), row.name, &found)) << row.name;
    EXPECT_EQ(found.style, row.style);
    EXPECT_EQ(found.cbWndExtra, row.extra_pointers * static_cast<int>(sizeof(void*)));
    EXPECT_EQ(found.hCursor, row.sets_its_cursor ? nullptr : LoadCursorW(nullptr, IDC_ARROW));
    const bool is_global = (row.style & CS_GLOBALCLASS) != 0;
    EXPECT_EQ(GetClassInfoExW(GetModuleHandleW(nullptr), row.name, &found) != FALSE, is_global) << row.name;
  }
}

TEST_F(ControlClassesTest, FiveHundredOfEachLeaveNothingBehind) {
  for (const ClassRow& row : kClasses) {
    std::mt19937 random(244);
    int before = 0;
    for (int i = 0; i < 500; ++i) {
      Make(row.name, random() & 0xFFFF, static_cast<int>(random() % 300), static_cast<int>(random() % 60));
      for (const UINT message : {WM_LBUTTONDOWN, WM_MOUSEMOVE, WM_SYSCOLORCHANGE, WM_SETTINGCHANGE}) {
        Send(message, 0, message == WM_SETTINGCHANGE ? 0 : static_cast<LPARAM>(random() & 0x1F003F));
      }
      Send(WM_SIZE), UpdateWindow(control);
      DestroyWindow(control);  // some of them hold the mouse
      EXPECT_EQ(GetCapture(), nullptr);
      if (i == 10) before = LastDrawingPlace();
    }
    EXPECT_LT(LastDrawingPlace() - before, 100) << row.name;
  }
}

}  // namespace
}  // namespace tervan::test
