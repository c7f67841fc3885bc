#include "ui/controls/meter_levels.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

namespace tervan::ui {
namespace {

constexpr std::int32_t Bits(float level) { return std::bit_cast<std::int32_t>(level); }

constexpr std::int32_t kHalf = Bits(0.5F);
constexpr std::int32_t kFull = Bits(1.0F);
constexpr std::int32_t kLoud = Bits(1.5F);
constexpr std::int32_t kSoft = Bits(0.25F);
constexpr std::int32_t kNan = Bits(NAN);
constexpr std::int32_t kMinusZero = Bits(-0.0F);

TEST(MeterLevels, EachLevelGoesWhereItBelongs) {
  constexpr std::int32_t kFloat = 0;  // in place of a number of steps
  const struct {
    bool is_inverted;
    std::int32_t steps, first, then, level, extreme;
  } rows[] = {
      {false, kFloat, 0, kFull, kFull, kFull},     {false, kFloat, kLoud, -1, 0, 0},
      {false, kFloat, kHalf, kSoft, kSoft, kHalf}, {true, kFloat, kHalf, 0, 0, kHalf},
      {false, kFloat, kLoud, kHalf, kHalf, kLoud}, {true, kFloat, kHalf, -1, 0, kFull},
      {false, kFloat, kLoud, 0, 0, kLoud},         {false, 400, 0, 400, 399, 400},
      {false, kFloat, 0, kNan, kFull, kNan},       {true, 400, 97, 99, 99, 97},
      {true, kFloat, kHalf, kFull, kFull, kHalf},  {false, kFloat, kLoud, kMinusZero, 0, 0},
      {true, kFloat, kHalf, kLoud, kFull, kLoud},  {false, -500, 0, 1, 0, 1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.first << ", " << row.then << " of " << row.steps);
    MeterLevels levels(row.is_inverted);
    levels.SetRange(row.steps == kFloat ? 32767 : row.steps, row.steps == kFloat);
    levels.SetLevel(0, row.first);
    levels.SetLevel(0, row.then);
    EXPECT_EQ(levels.Channel(0).level, row.level);
    EXPECT_EQ(levels.Channel(0).has_signal, row.then >= 0);
    EXPECT_EQ(levels.Channel(0).extreme, row.extreme);
    EXPECT_EQ(levels.IsAnyClipped(),
              row.extreme == kLoud || row.extreme == kNan || row.extreme == 400 || row.steps < 0);
  }
}

TEST(MeterLevels, PeaksAndValleysWaitSevenTenthsOfASecond) {
  constexpr std::uint32_t kStart = 0xFFFFFF00;  // the clock wraps around on the way
  const struct {
    std::uint32_t ms;
    std::int32_t level, peak, valley;
  } events[] = {
      {0, 50, 50, 50},   {100, 80, 80, 50},  {500, 30, 80, 30},  {700, 40, 80, 30}, {799, 40, 80, 30},
      {800, 40, 40, 30}, {1199, 60, 60, 30}, {1200, 60, 60, 60}, {1300, 0, 0, 0},   {1400, 20, 20, 0},
      {1999, 25, 25, 0}, {2000, 25, 25, 25}, {2100, -1, 0, 0},
  };
  MeterLevels levels(false);
  levels.SetRange(100, false);
  for (const auto& event : events) {
    SCOPED_TRACE(event.ms);
    levels.SetLevel(0, event.level);
    levels.Hold(kStart + event.ms);
    EXPECT_EQ(levels.Channel(0).peak.level, event.peak);
    EXPECT_EQ(levels.Channel(0).valley.level, event.valley);
  }
}

TEST(MeterLevels, ResetsTouchWhatTheyNameAndNothingElse) {
  for (const bool is_inverted : {false, true}) {
    MeterLevels levels(is_inverted);
    EXPECT_EQ(levels.SetChannelCount(0xFFFFFFFF), kMaxMeterChannels);
    levels.SetRange(400, true);
    levels.SetLevel(1, kLoud);
    levels.SetLevel(5, kLoud);
    levels.Hold(5000);
    levels.ResetHolds();
    EXPECT_EQ(levels.Channel(5).peak.level, is_inverted ? kFull : 0);
    EXPECT_EQ(levels.Channel(5).valley.level, is_inverted ? kFull : 0);
    levels.ResetClip(5);
    EXPECT_EQ(levels.Channel(5).extreme, kFull);
    EXPECT_EQ(levels.Channel(1).extreme, kLoud);
    levels.ResetClip();
    EXPECT_EQ(levels.Channel(1).extreme, kFull);
    levels.SetRange(50, false);
    EXPECT_EQ(levels.Channel(5).extreme, is_inverted ? 49 : 0);
    EXPECT_EQ(levels.Channel(5).level, kFull);
    levels.SetLevel(1, 30);
    levels.SetLevel(1, 20);
    levels.SetInverted(!is_inverted);
    EXPECT_EQ(levels.Channel(1).extreme, 20);
    EXPECT_EQ(levels.Channel(2).extreme, is_inverted ? 0 : 49) << "was never told a level";
  }
}

}  // namespace
}  // namespace tervan::ui
