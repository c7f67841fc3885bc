#include "ui/controls/meter_layout.h"

#include <gtest/gtest.h>

namespace tervan::ui {
namespace {

TEST(MeterLayout, PutsTheLoudEndAtTheRightOrAtTheTop) {
  MeterShape shape{{345, 33}, 96, false, 2, true, 18};
  const MeterLayout across = ArrangeMeter(shape);
  EXPECT_EQ(across.bars[0], (Rect{1, 1, 333, 7}));
  EXPECT_EQ(across.bars[1], (Rect{1, 8, 333, 14}));
  EXPECT_EQ(across.clips[1], (Rect{335, 8, 344, 14}));
  EXPECT_EQ(across.well, (Rect{0, 0, 345, 15}));
  EXPECT_EQ(across.labels, (Rect{0, 15, 345, 33}));
  EXPECT_EQ(across.Slice(across.bars[1], 0, 10), (Rect{1, 8, 11, 14}));
  EXPECT_EQ(across.ClipAt({335, 8}), 1);
  EXPECT_EQ(across.ClipAt({334, 8}), std::nullopt);
  EXPECT_EQ(across.ClipAt({335, 7}), std::nullopt);

  shape.client = {33, 345};
  shape.is_vertical = true;
  const MeterLayout upright = ArrangeMeter(shape);
  EXPECT_EQ(upright.bars[1], (Rect{8, 12, 14, 344}));
  EXPECT_EQ(upright.clips[1], (Rect{8, 1, 14, 10}));
  EXPECT_EQ(upright.labels, (Rect{15, 0, 33, 345}));
  EXPECT_EQ(upright.Slice(upright.labels, 0, 10), (Rect{15, 334, 33, 344}));
  EXPECT_EQ(upright.ClipAt({8, 1}), 1);
}

TEST(MeterLayout, PreferredThicknessIsWhatTheLabelsAndGoodBarsFill) {
  for (const int channels : {1, 2, 6}) {
    const int thickness = PreferredMeterThickness(channels, 18, 144);
    const MeterLayout layout = ArrangeMeter({{200, thickness}, 144, false, channels, false, 18});
    EXPECT_EQ(layout.labels.bottom, thickness);
    EXPECT_EQ(layout.bars[0].Height(), 11);
  }
}

TEST(MeterLayout, KeepsEverythingInsideWindowsOfAnySize) {
  const auto is_inside = [](const Rect& r, Size size) {
    return r.IsEmpty() || (r.left >= 0 && r.top >= 0 && r.right <= size.width && r.bottom <= size.height);
  };
  for (int width = 0; width < 40; ++width) {
    for (int height = 0; height < 40; ++height) {
      for (int variant = 0; variant < 14; ++variant) {
        const Size size{width, height};
        const bool is_vertical = variant % 2 == 0;
        const int channels = variant / 2;
        const MeterLayout layout = ArrangeMeter({size, 96, is_vertical, channels, true, 16});
        ASSERT_TRUE(is_inside(layout.labels, size));
        for (std::size_t c = 0; c < layout.bars.size(); ++c) {
          ASSERT_TRUE(is_inside(layout.bars[c], size)) << width << " x " << height << ", " << channels;
          ASSERT_TRUE(is_inside(layout.clips[c], size)) << width << " x " << height << ", " << channels;
          if (layout.bars[c].IsEmpty()) continue;
          ASSERT_TRUE(is_inside(layout.Slice(layout.bars[c], 0, layout.BarLength()), size));
        }
      }
    }
  }
}

}  // namespace
}  // namespace tervan::ui
