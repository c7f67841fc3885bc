#include "ui/controls/eq_graph_mapping.h"

#include <cmath>
#include <random>

#include "gtest/gtest.h"

namespace tervan::ui {
namespace {

// Decibels are eighths, so that every product and quotient is one of whole numbers.
struct Case {
  EqCurve curve = {};
  EqGraphScale scale;
  int y_eighths = 0;  // of node 0
};

class EqGraphMapping : public testing::Test {
 protected:
  int Random(int low, int high) { return std::uniform_int_distribution(low, high)(random_); }
  Case RandomCase() {
    Case c;
    c.scale.plot = {0, 0, Random(1, 5000), Random(1, 2000)};
    c.curve.x_minimum = Random(-40'000, 40'000);
    c.curve.x_maximum = c.curve.x_minimum + Random(1, 16'384);
    c.curve.y_minimum = -15, c.curve.y_maximum = 15;
    c.curve.width_minimum = 0.125F, c.curve.width_maximum = 4;
    c.curve.node_count = 4;
    c.y_eighths = Random(-120, 120);
    for (EqCurveNode& node : c.curve.nodes) {
      node = {Random(c.curve.x_minimum, c.curve.x_maximum), static_cast<float>(c.y_eighths) / 8, 1, 0, 2, 1, 0, 0};
    }
    EqCurve* const curves[] = {&c.curve};
    c.scale = ScaleOver(curves, c.scale.plot);
    return c;
  }

 private:
  std::mt19937 random_{5003};
};

TEST_F(EqGraphMapping, PutsNodesWhereTheRuleOfThreeSays) {
  for (int i = 0; i < 20'000; ++i) {
    const Case c = RandomCase();
    const std::int64_t width = c.scale.plot.right, height = c.scale.plot.bottom;
    const std::int64_t x = c.curve.nodes[0].x - c.curve.x_minimum;
    const Point pixel = NodePixel(c.scale, c.curve, c.curve.nodes[0]);
    ASSERT_EQ(pixel.x, x * width / (c.curve.x_maximum - c.curve.x_minimum));
    ASSERT_EQ(pixel.y, (height * 240 - (c.y_eighths + 120) * height) / 240);
  }
}

TEST_F(EqGraphMapping, DragsANodeToThePointersValues) {
  for (int i = 0; i < 20'000; ++i) {
    Case c = RandomCase();
    const int width = c.scale.plot.right, height = c.scale.plot.bottom;
    const EqCurveNode before = c.curve.nodes[2];
    const Point pixel = NodePixel(c.scale, c.curve, before);
    const Point pointer = {Random(-50, width + 50), Random(-50, height + 50)};
    const std::int64_t px = std::min(std::max(pointer.x, 0), width), py = std::min(std::max(pointer.y, 0), height);
    const HeldKeys keys = {Random(0, 1) != 0, Random(0, 1) != 0, Random(0, 2) == 0};
    DragNode(c.scale, c.curve, 2, 0.5F, pointer, keys);

    const EqCurveNode& after = c.curve.nodes[2];
    const std::int64_t span = c.curve.x_maximum - c.curve.x_minimum;
    const bool takes_x = !keys.alt && (!keys.ctrl || keys.shift), takes_y = !keys.alt && !(keys.ctrl && keys.shift);
    ASSERT_EQ(after.x, takes_x ? c.curve.x_minimum + px * span / width : before.x);
    ASSERT_NEAR(after.y, takes_y ? 15.0 - 30.0 * static_cast<double>(py) / height : before.y, 1e-5);
    const double node_px = std::round(static_cast<double>(before.x - c.curve.x_minimum) * width / span);
    const double moved_px = static_cast<double>(px) - node_px + pixel.y - static_cast<double>(py);
    const double width_now = std::fmin(std::fmax(0.5 + moved_px * 3.875 * 4 / width, 0.125), 4);
    ASSERT_NEAR(after.width, keys.alt ? width_now : 1.0, 1e-5);
  }
}

TEST_F(EqGraphMapping, HitsTheFirstNodeWithinReach) {
  for (int i = 0; i < 20'000; ++i) {
    const Case c = RandomCase();
    const Point at = NodePixel(c.scale, c.curve, c.curve.nodes[static_cast<std::size_t>(Random(0, 3))]);
    const Point pointer = {at.x + Random(-9, 9), at.y + Random(-9, 9)};
    std::optional<std::uint32_t> expected;
    for (std::uint32_t node = 4; node-- > 0;) {
      const Point pixel = NodePixel(c.scale, c.curve, c.curve.nodes[node]);
      const int right = pointer.x - pixel.x, down = pointer.y - pixel.y;
      if (right >= -7 && right < 7 && down >= -7 && down < 7) expected = node;
    }
    ASSERT_EQ(NodeAt(c.scale, c.curve, pointer), expected);
  }
}

TEST_F(EqGraphMapping, StaysWithinWhatCanBeDrawn) {
  Case c = RandomCase();
  c.scale = {.plot = {0, 0, 600, 200}, .x_origin = 0, .x_span = 1};
  c.curve.nodes[0].x = INT32_MAX, c.curve.nodes[0].y = -1e30F;
  c.curve.nodes[1].x = INT32_MIN, c.curve.nodes[1].y = 1e30F;
  c.curve.nodes[2].y = NAN;
  EXPECT_EQ(NodePixel(c.scale, c.curve, c.curve.nodes[0]), (Point{16383, 16383}));
  EXPECT_EQ(NodePixel(c.scale, c.curve, c.curve.nodes[1]), (Point{-16384, -16384}));
  EXPECT_EQ(NodePixel(c.scale, c.curve, c.curve.nodes[2]).y, -16384);
  c.scale.x_span = 0;
  EXPECT_EQ(NodePixel(c.scale, c.curve, c.curve.nodes[0]).x, 0);

  Case far = RandomCase();
  far.curve.x_minimum = INT32_MIN, far.curve.x_maximum = INT32_MAX;
  EqCurve* const curves[] = {&c.curve, &far.curve};
  far.scale = ScaleOver(curves, {0, 0, 5000, 200});
  EXPECT_EQ(far.scale.x_span, 0xFFFF'FFFF);
  DragNode(far.scale, far.curve, 0, 1, {9000, 0}, {});
  EXPECT_EQ(far.curve.nodes[0].x, INT32_MAX);
}

}  // namespace
}  // namespace tervan::ui
