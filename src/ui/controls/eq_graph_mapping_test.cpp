#include "ui/controls/eq_graph_mapping.h"

#include <cmath>
#include <random>

#include "gtest/gtest.h"

namespace tervan::ui {
namespace {

TEST(EqGraphMapping, FollowsTheRuleOfThree) {
  std::mt19937 random(5003);
  const auto any = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
  for (int i = 0; i < 20'000; ++i) {
    // Decibels are eighths here, so that every product and quotient is one of whole numbers.
    const std::int64_t width = any(1, 5000), height = any(1, 2000), span = any(1, 16'384);
    const int first = any(-40'000, 40'000), eighths = any(-120, 120);
    EqCurve curve = {};
    curve.x_minimum = first, curve.x_maximum = first + static_cast<int>(span);
    curve.y_minimum = -15, curve.y_maximum = 15;
    curve.width_minimum = 0.125F, curve.width_maximum = 4;
    curve.node_count = 2;
    curve.nodes[0] = {any(first, curve.x_maximum), static_cast<float>(eighths) / 8, 1, 0, kBandNode, 1, 0, 0};
    curve.nodes[1] = {curve.nodes[0].x + any(-9, 9), 0, 1, 0, kBandNode, 1, 0, 0};
    EqCurve* const curves[] = {&curve};
    const EqGraphScale scale = ScaleOver(curves, {0, 0, static_cast<int>(width), static_cast<int>(height)});
    const EqCurveNode before = curve.nodes[0];

    const Point pixel = NodePixel(scale, curve, before), other = NodePixel(scale, curve, curve.nodes[1]);
    ASSERT_EQ(pixel.x, (before.x - first) * width / span);
    ASSERT_EQ(pixel.y, (height * 240 - (eighths + 120) * height) / 240);

    const Point near = {pixel.x + any(-9, 9), pixel.y + any(-9, 9)};
    const auto hits = [near](Point at) {
      return near.x >= at.x - 7 && near.x < at.x + 7 && near.y >= at.y - 7 && near.y < at.y + 7;
    };
    ASSERT_EQ(NodeAt(scale, curve, near).value_or(9), hits(pixel) ? 0U : hits(other) ? 1U : 9U);

    const std::int64_t px = any(-50, 5050), py = any(-50, 2050);
    const HeldKeys keys = {any(0, 1) != 0, any(0, 1) != 0, any(0, 2) == 0};
    DragNode(scale, curve, 0, 0.5F, {static_cast<int>(px), static_cast<int>(py)}, keys);
    const EqCurveNode& after = curve.nodes[0];
    const std::int64_t in_x = std::min(std::max<std::int64_t>(px, 0), width);
    const std::int64_t in_y = std::min(std::max<std::int64_t>(py, 0), height);
    const bool takes_x = !keys.alt && (!keys.ctrl || keys.shift), takes_y = !keys.alt && !(keys.ctrl && keys.shift);
    ASSERT_EQ(after.x, takes_x ? first + in_x * span / width : before.x);
    ASSERT_NEAR(after.y, takes_y ? 15.0 - 30.0 * static_cast<double>(in_y) / static_cast<double>(height) : before.y,
                1e-5);
    const double right = static_cast<double>(in_x) -
                         std::round(static_cast<double>((before.x - first) * width) / static_cast<double>(span));
    const double moved_px = right + static_cast<double>(pixel.y - in_y);
    const double widened = std::fmin(std::fmax(0.5 + moved_px * 3.875 * 4 / static_cast<double>(width), 0.125), 4.0);
    ASSERT_NEAR(after.width, keys.alt ? widened : 1.0, 1e-5);
  }
}

TEST(EqGraphMapping, StaysWithinWhatCanBeDrawn) {
  EqCurve curve = {};
  curve.x_minimum = INT32_MIN, curve.x_maximum = INT32_MAX;
  curve.y_minimum = -15, curve.y_maximum = 15;
  curve.node_count = 4'000'000'000;  // there is room for six
  EqGraphScale scale = {.plot = {0, 0, 600, 200}, .x_origin = 0, .x_span = 1};
  const auto pixel = [&](int x, float y) { return NodePixel(scale, curve, {x, y, 1, 0, kBandNode, 1, 0, 0}); };
  EXPECT_EQ(pixel(INT32_MAX, -1e30F), (Point{16383, 16383}));
  EXPECT_EQ(pixel(INT32_MIN, 1e30F), (Point{-16384, -16384}));
  EXPECT_EQ(pixel(0, NAN).y, -16384);
  scale.x_span = 0;
  EXPECT_EQ(pixel(77, 0).x, 0);
  curve.y_minimum = 15;
  EXPECT_EQ(pixel(77, 3).y, 200);
  EXPECT_EQ(NodeAt(scale, curve, {600, 0}), std::nullopt);

  EqCurve* const curves[] = {&curve};
  for (const int size : {0, 1, 5000}) {
    scale = ScaleOver(curves, {0, 0, size, size});
    for (const bool alt : {false, true}) DragNode(scale, curve, 1, NAN, {9000, 0}, {.alt = alt});
    EXPECT_EQ(curve.nodes[1].x, size != 0 ? INT32_MAX : INT32_MIN);
  }
}

}  // namespace
}  // namespace tervan::ui
