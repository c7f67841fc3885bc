#include "ui/controls/logo_layout.h"

#include "gtest/gtest.h"
#include "ui/controls/logo_items.h"

namespace tervan::ui {
namespace {

constexpr Size kStrip{400, 26};
constexpr int kPictureWidth_px = 114;
constexpr LogoItemContent kButton{false, {21, 17}};
constexpr LogoItemContent kAbout{true, {30, 13}};
constexpr LogoItemContent kMark{true, {6, 13}};

TEST(LogoLayout, PutsTheLastItemAtTheRightEndAndTheTitleBetween) {
  const LogoLayout layout = LayOutLogo(kStrip, kPictureWidth_px, {{kButton, kAbout, kMark}}, 96);
  EXPECT_EQ(layout.items[2], (Rect{386, 0, 400, 26}));
  EXPECT_EQ(layout.items[1], (Rect{348, 0, 386, 26}));
  EXPECT_EQ(layout.items[0], (Rect{327, 4, 348, 21}));
  EXPECT_EQ(layout.picture, (Rect{0, 0, 114, 26}));
  EXPECT_EQ(layout.title, (Rect{118, 0, 323, 26}));
}

TEST(LogoLayout, GrowsWithTheDotsPerInch) {
  const LogoLayout layout = LayOutLogo({600, 39}, kPictureWidth_px, {{kButton, kAbout}}, 144);
  EXPECT_EQ(layout.items[1], (Rect{558, 0, 600, 39}));
  EXPECT_EQ(layout.items[0], (Rect{526, 6, 558, 32}));
  EXPECT_EQ(layout.picture, (Rect{0, 0, 171, 39}));
}

TEST(LogoLayout, NothingOverlapsAndWhatIsHitIsWhatLiesThere) {
  const std::vector<LogoItemContent> items = {kAbout, kButton, kMark, kAbout, kAbout, kButton};
  for (int width = 0; width <= 400; ++width) {
    SCOPED_TRACE(width);
    const LogoLayout layout = LayOutLogo({width, 26}, kPictureWidth_px, items, 96);
    for (int x = -1; x <= width; ++x) {
      const Point point = {x, 13};
      std::vector<LogoHit> there;
      for (int i = 0; i < 6; ++i) {
        if (layout.items[i].Contains(point)) there.push_back({LogoPart::kItem, i});
      }
      if (layout.picture.Contains(point)) there.push_back({LogoPart::kPicture});
      if (layout.title.Contains(point)) there.push_back({LogoPart::kTitle});
      ASSERT_LE(there.size(), x >= 0 && x < width ? 1u : 0u) << x;
      ASSERT_EQ(HitLogo(layout, point), there.empty() ? LogoHit{} : there.front()) << x;
    }
  }
}

TEST(LogoItems, TextsEndAtTheirLimit) {
  LogoItems items;
  items.AddText(7, std::wstring(64, L'x'));
  EXPECT_EQ(items[0].text, std::wstring(63, L'x'));
}

TEST(LogoItems, AButtonThatIsOnDoesNotLookPressed) {
  const auto image = [](bool is_on, bool is_pressed) { return LogoImage({false, 1, {}, is_on}, is_pressed); };
  EXPECT_EQ(image(false, false), 0);
  EXPECT_EQ(image(false, true), 2);
  EXPECT_EQ(image(true, false), 1);
  EXPECT_EQ(image(true, true), 1);
}

}  // namespace
}  // namespace tervan::ui
