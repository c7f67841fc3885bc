#include "ui/controls/tab_strip_layout.h"

#include "gtest/gtest.h"

namespace tervan::ui {
namespace {

TEST(TabStripLayout, TabsLieSideBySideAndEndWithTheStrip) {
  const std::vector<int> texts_px = {14, 6, 14, 14};
  using Tabs = std::vector<Rect>;
  EXPECT_EQ(LayOutTabs({300, 23}, texts_px, 96),
            (Tabs{{0, 0, 34, 23}, {36, 0, 62, 23}, {64, 0, 98, 23}, {100, 0, 134, 23}}));
  EXPECT_EQ(LayOutTabs({300, 23}, {{21, 9}}, 144), (Tabs{{0, 0, 51, 23}, {54, 0, 93, 23}})) << "margins grow";
  EXPECT_EQ(LayOutTabs({50, 23}, texts_px, 96),
            (Tabs{{0, 0, 34, 23}, {36, 0, 50, 23}, {50, 0, 50, 23}, {50, 0, 50, 23}}));
  EXPECT_EQ(LayOutTabs({50, 23}, {}, 96), Tabs{});
}

TEST(TabStripLayout, APointHitsTheTabThatItLiesOn) {
  const std::vector<Rect> tabs = LayOutTabs({50, 23}, {{14, 6, 14}}, 96);
  for (const auto& [point, tab] : std::vector<std::pair<Point, int>>{
           {{0, 0}, 0}, {{33, 22}, 0}, {{34, 9}, -1}, {{36, 9}, 1}, {{49, 9}, 1}, {{50, 9}, -1}, {{9, 23}, -1}}) {
    EXPECT_EQ(TabAt(tabs, point), tab) << point.x << ", " << point.y;
  }
}

TEST(TabStripLayout, StepsGoRoundAndRound) {
  struct Row {
    int selected, count, previous, next, first, last;
  };
  for (const Row& row : {Row{0, 4, 3, 1, 0, 3}, Row{2, 4, 1, 3, 0, 3}, Row{3, 4, 2, 0, 0, 3}, Row{-1, 4, 3, 0, 0, 3},
                         Row{0, 1, 0, 0, 0, 0}, Row{-1, 0, -1, -1, -1, -1}}) {
    SCOPED_TRACE(row.selected);
    EXPECT_EQ(TabAfter(TabStep::kPrevious, row.selected, row.count), row.previous);
    EXPECT_EQ(TabAfter(TabStep::kNext, row.selected, row.count), row.next);
    EXPECT_EQ(TabAfter(TabStep::kFirst, row.selected, row.count), row.first);
    EXPECT_EQ(TabAfter(TabStep::kLast, row.selected, row.count), row.last);
  }
}

}  // namespace
}  // namespace tervan::ui
