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
  EXPECT_EQ(across.ClipAt({335, 7}), std::nullopt);

  shape.client = {33, 345};
  shape.is_vertical = true;
  const MeterLayout upright = ArrangeMeter(shape);
  EXPECT_EQ(upright.bars[1], (Rect{8, 12, 14, 344}));
  EXPECT_EQ(upright.clips[1], (Rect{8, 1, 14, 10}));
  EXPECT_EQ(upright.labels, (Rect{15, 0, 33, 345}));
  EXPECT_EQ(upright.Slice(upright.labels, 0, 10), (Rect{15, 334, 33, 344}));
  EXPECT_EQ(upright.ClipAt({8, 1}), 1);

  // As thick as it likes to be: 2 bars of 7 pixels at 96 dpi, and the labels.
  shape.client.width = PreferredMeterThickness(2, 18, 144);
  shape.dpi = 144;
  EXPECT_EQ(ArrangeMeter(shape).bars[1].Width(), 11);
  EXPECT_EQ(ArrangeMeter(shape).labels.right, shape.client.width);
}

TEST(MeterLayout, KeepsEverythingInsideWindowsOfAnySize) {
  for (int i = 0; i < 40 * 40 * 14; ++i) {
    const Size size{i % 40, i / 40 % 40};
    const int variant = i / 1600;
    const MeterLayout layout = ArrangeMeter({size, 96, variant % 2 == 0, variant / 2, true, 16});
    const auto is_inside = [&size](const Rect& r) {
      return r.IsEmpty() || (r.left >= 0 && r.top >= 0 && r.right <= size.width && r.bottom <= size.height);
    };
    ASSERT_TRUE(is_inside(layout.labels));
    for (std::size_t c = 0; c < layout.bars.size(); ++c) {
      ASSERT_TRUE(is_inside(layout.bars[c]) && is_inside(layout.clips[c])) << size.width << " x " << size.height;
    }
  }
}

}  // namespace
}  // namespace tervan::ui
