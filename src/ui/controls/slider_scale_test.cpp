#include "ui/controls/slider_scale.h"

#include <limits>
#include <random>

#include "gtest/gtest.h"

namespace tervan::ui {
namespace {

constexpr int kLeast = std::numeric_limits<int>::min();
constexpr int kMost = std::numeric_limits<int>::max();
constexpr Taper kTapers[] = {Taper::kNone, Taper::kTimesAndLevels, Taper::kFrequencies};

TEST(Taper, MeetsItsPointsAndTruncatesBetweenThem) {
  struct Case {
    Taper taper;
    int value, place;
  };
  for (const auto& [taper, value, place] : {Case{Taper::kTimesAndLevels, 0, 0},
                                            {Taper::kTimesAndLevels, 30, 250},
                                            {Taper::kTimesAndLevels, -30, -250},
                                            {Taper::kTimesAndLevels, 120, 500},
                                            {Taper::kTimesAndLevels, 61, 401},  // 400 + 100 / 60
                                            {Taper::kTimesAndLevels, -61, -401},
                                            {Taper::kTimesAndLevels, 5000, 5000},
                                            {Taper::kFrequencies, 30, 1500},
                                            {Taper::kFrequencies, 15000, 10464},  // 10000 + 4760 · 1000 / 10240
                                            {Taper::kFrequencies, 163840, 14000},
                                            {Taper::kFrequencies, 163841, 163841},
                                            {Taper::kNone, 7, 7}}) {
    EXPECT_EQ(Tapered(taper, value), place) << value;
  }
  EXPECT_EQ(Untapered(Taper::kTimesAndLevels, 401), 60);  // 60 + 1 · 60 / 100
  EXPECT_EQ(Untapered(Taper::kFrequencies, 9500), 7680);
}

TEST(SliderScale, SpreadsTheLowValuesOfATaperedRange) {
  const SliderScale tapered = {.minimum = 0, .maximum = 1000, .taper = Taper::kTimesAndLevels};
  EXPECT_EQ(tapered.PixelOf(30, 200), 50);
  EXPECT_EQ(tapered.PixelOf(120, 200), 100);
  EXPECT_EQ(tapered.PositionAt(50, 200), 30);
  const SliderScale level = {.minimum = -800, .maximum = 0, .taper = Taper::kTimesAndLevels};
  EXPECT_EQ(level.PixelOf(-120, 966), 466);  // f(-800) = -966, f(-120) = -500
  EXPECT_EQ(SliderScale{.minimum = -1}.PixelOf(50, 101), 51);
}

TEST(SliderScale, EveryPositionSurvivesATrackOfEnoughPixels) {
  for (const int track_px : {100, 101, 250, 1000}) {
    const SliderScale scale = {.minimum = -40, .maximum = 60};
    for (int position = -40; position <= 60; ++position) {
      EXPECT_EQ(scale.PositionAt(scale.PixelOf(position, track_px), track_px), position) << track_px;
    }
  }
}

TEST(SliderScale, DefaultFollowsTheRange) {
  struct Case {
    int minimum, maximum, expected;
  };
  for (const auto& [minimum, maximum, expected] :
       {Case{0, 100, 50}, {-60, 25, 0}, {-600, 0, -600}, {-9, -2, -5}, {1, 4, 2}, {kLeast, kMost, 0}}) {
    EXPECT_EQ((SliderScale{.minimum = minimum, .maximum = maximum}.DefaultPosition()), expected) << minimum;
  }
}

// Under the sanitizers: no range overflows, and the ends of the track are the ends of the range.
TEST(SliderScale, HoldsAnyRange) {
  std::mt19937 random(1);
  const auto number = [&random] {
    constexpr int kEnds[] = {kLeast, kLeast + 1, -1, 0, 1, 163840, 163841, kMost - 1, kMost};
    return random() % 2 ? kEnds[random() % std::size(kEnds)] : static_cast<int>(random()) >> random() % 32;
  };
  for (int round = 0; round < 20000; ++round) {
    const SliderScale scale = {.minimum = number(), .maximum = number(), .taper = kTapers[round % 3]};
    const int track_px = static_cast<int>(random() % 40000) - 2;
    SCOPED_TRACE(testing::Message() << scale.minimum << ".." << scale.maximum << " on " << track_px);
    const int pixel = scale.PixelOf(number(), track_px);
    ASSERT_TRUE(pixel >= 0 && pixel <= std::max(track_px, 0)) << pixel;
    if (scale.minimum >= scale.maximum) {
      ASSERT_EQ(scale.Clamped(number()), scale.minimum);
      ASSERT_EQ(scale.PositionAt(pixel, track_px), scale.minimum);
    }
    if (scale.minimum >= scale.maximum || track_px <= 0) continue;
    const int position = scale.PositionAt(pixel, track_px);
    ASSERT_TRUE(position >= scale.minimum && position <= scale.maximum) << position;
    ASSERT_EQ(scale.PositionAt(0, track_px), scale.minimum);
    ASSERT_EQ(scale.PositionAt(track_px, track_px), scale.maximum);
    ASSERT_EQ(scale.AtTenths(10), scale.maximum);
  }
}

}  // namespace
}  // namespace tervan::ui
