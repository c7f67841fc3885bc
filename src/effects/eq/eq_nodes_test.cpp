#include "effects/eq/eq_nodes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tervan {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

TEST(EqNodes, EveryFrequencySurvivesOnGraphsOfAnySize) {
  for (const int width_px : {60, 341, 600, 1920, 5000}) {
    const EqFrequencyAxis axis(width_px * 16384);
    EXPECT_EQ(axis.XOf(20), 0);
    EXPECT_EQ(axis.XOf(20000), width_px * 16384);
    EXPECT_NEAR(axis.XOf(200), width_px * 16384 / 3.0, 0.5) << "three decades";
    for (std::int32_t hz = 1; hz <= 25000; ++hz) ASSERT_EQ(axis.FrequencyAt(axis.XOf(hz)), hz) << width_px;
  }
}

TEST(EqNodes, SettingsSurviveAndOddOnesStopAtTheEnds) {
  const EqFrequencyAxis axis(400 * 16384);
  for (const std::int32_t mode : {1, 2, 3}) {
    for (std::int32_t gain = -250; gain <= 150; ++gain) {
      const EqBand band{1000, gain, mode == 2 ? gain & 63 : 0, mode == 2 ? 0 : gain & 3, mode, gain & 1};
      ui::EqCurveNode node{};
      node.selected = 1;
      ShowBand(band, axis, node);
      EXPECT_FLOAT_EQ(node.y, static_cast<float>(gain) / 10);
      EXPECT_EQ(node.selected, 1);
      ASSERT_EQ(BandOf(node, axis), band) << gain;
    }
  }
  const struct {
    float value;
    std::int32_t tenths, whole;
  } rows[] = {{0.25f, 3, 0}, {-0.25f, -3, 0},         {2.5f, 25, 3},
              {NAN, 0, 0},   {kInfinity, kMax, kMax}, {-kInfinity, kMin, kMin}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.value);
    ui::EqCurveNode node{};
    node.y = node.width = row.value;
    EXPECT_EQ(BandOf(node, axis).gain, row.tenths);
    EXPECT_EQ(BandOf(node, axis).rolloff, row.whole);
    node.mode = ui::kBandNode;
    EXPECT_EQ(BandOf(node, axis).bandwidth, row.tenths);
  }
  for (const std::int32_t x_maximum : {0, -5, 1, kMax}) {
    const EqFrequencyAxis odd(x_maximum);
    for (const std::int32_t value : {kMin, 0, kMax}) {
      EXPECT_GE(odd.FrequencyAt(value), 1);
      EXPECT_EQ(odd.XOf(value) > 0, x_maximum > 0 && value > 20);
      EXPECT_TRUE(x_maximum > 0 || odd.FrequencyAt(value) == 20);
    }
  }
}

}  // namespace
}  // namespace tervan
