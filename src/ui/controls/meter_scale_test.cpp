#include "ui/controls/meter_scale.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "ui/controls/meter_label_format.h"
#include "ui/controls/meter_ranges.h"

namespace tervan::ui {
namespace {

using testing::ElementsAre;

constexpr int kLength = 300;
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

std::int32_t AtDb(double db) { return std::bit_cast<std::int32_t>(static_cast<float>(std::pow(10.0, db / 20.0))); }

TEST(MeterScale, LightsAsMuchAsTheDecibelsSay) {
  const struct {
    std::int32_t steps;
    std::uint32_t display_range;
    int span_db;
    std::int32_t level;
    int lit;
  } rows[] = {
      {32767, 0, 90, AtDb(0), 300},      {32767, 0, 90, AtDb(-20 * std::log10(2)), 280},  // 6.02 of 90.31 dB
      {32767, 0, 90, AtDb(-90), 2},      {32767, 0, 90, AtDb(-91), 0},
      {32767, 128, 42, AtDb(-21), 150},  {32767, 128, 42, AtDb(-41.9), 2},
      {32767, 128, 42, AtDb(-42.1), 0},  {400, 16, 24, AtDb(-6), 225},
      {400, 0, 52, AtDb(-26.0206), 150}, {400, 1 << 20, 120, AtDb(-53), 0},  // below a step
      {2, 0, 6, AtDb(-3), 151},                                              // 149.5 + 0.45 pixels are dark
  };
  for (const auto& row : rows) {
    const MeterScale scale(row.steps, true, row.display_range);
    SCOPED_TRACE(testing::Message() << row.steps << ", " << row.display_range << ": " << row.lit);
    EXPECT_EQ(scale.SpanDb(), row.span_db);
    EXPECT_EQ(scale.LitLength(row.level, kLength), row.lit);
  }
  const MeterScale integers(32768, false, 0);
  EXPECT_EQ(integers.LitLength(32767, kLength), 300);
  EXPECT_EQ(integers.LitLength(181, kLength), 150);  // 2^7.5 of 2^15
}

TEST(MeterScale, TicksStandWhereTheirLevelsEnd) {
  for (const MeterRange& range : kMeterRanges) {
    const MeterScale scale(32767, true, DisplayRangeOf(range, 32767));
    const std::vector<int> ticks = MeterTicks(scale, kLength, 1);
    EXPECT_EQ(ticks.size(), static_cast<std::size_t>(scale.SpanDb() / 3 + 1));
    for (const int db_below : ticks) {
      EXPECT_NEAR(scale.LitLength(AtDb(-db_below + 1e-4), kLength), std::max(scale.PlaceOf(db_below, kLength), 2), 1);
    }
  }
  EXPECT_THAT(MeterTicks(MeterScale(32767, true, 128), 30, 3), ElementsAre(0, 6, 12, 18, 24, 30, 36, 42));
}

TEST(MeterScale, LabelsNeverOverlapOrLeaveTheirRoom) {
  for (int i = 0; i < 800; ++i) {
    const MeterScale scale(1 << 24, true, static_cast<std::uint32_t>(kMeterRanges[i % kMeterRanges.size()].ratio));
    const int length = 10 + i;
    const LabelRoom room{-1, length + 9, 4};
    int louder_start = room.end_px + room.gap_px;
    for (const ScaleLabel& label : ChooseLabels(scale, length, room, [](int db) { return db < 10 ? 20 : 27; })) {
      ASSERT_LE(label.end_px + room.gap_px, louder_start) << i;
      ASSERT_GE(label.start_px, room.start_px) << i;
      EXPECT_EQ(label.db_below % kMeterTickDb, 0);
      louder_start = label.start_px;
    }
  }
  // 6 dB are 43 pixels: enough for 36 and a gap of 6, but the label at the end would have to move into its neighbour.
  const auto labels = ChooseLabels(MeterScale(32767, true, 128), kLength, {-1, 320, 6}, [](int) { return 36; });
  ASSERT_EQ(labels.size(), 7U);
  EXPECT_EQ(labels.front(), (ScaleLabel{0, 282, 318}));
  EXPECT_EQ(labels.back(), (ScaleLabel{36, 25, 61}));
}

TEST(MeterRanges, OffersWhatTheMeterCanShowAndMarksWhatItShows) {
  const struct {
    std::int32_t steps;
    std::uint32_t display_range;
    std::int32_t offered;  // ratio of the last one
    std::int32_t marked;   // 0: none
  } rows[] = {
      {32767, 128, 8192, 128}, {32768, 32768, 32768, 32768}, {32768, 77, 32768, 0}, {kMax, 1 << 23, 1 << 23, 1 << 23},
      {32767, 0, 8192, 0},     {32768, 0, 32768, 32768},     {200, 0, 128, 128},    {1, 0, 0, 0},
  };
  for (const auto& row : rows) {
    std::int32_t offered = 0;
    std::int32_t marked = 0;
    for (const MeterRange& range : kMeterRanges) {
      if (!IsOffered(range, row.steps)) continue;
      offered = range.ratio;
      if (IsMarked(range, row.steps, row.display_range)) marked = range.ratio;
    }
    EXPECT_EQ(offered, row.offered) << row.steps;
    EXPECT_EQ(marked, row.marked) << row.steps << ", " << row.display_range;
  }
  EXPECT_EQ(DisplayRangeOf({ID_METER_RANGE_90_DB, 32768}, 32768), 0U);
  EXPECT_EQ(DisplayRangeOf({ID_METER_RANGE_90_DB, 32768}, 32769), 32768U);
}

TEST(MeterLabelFormat, FormatsOneNumberAndNothingElse) {
  const std::u16string_view rows[][2] = {
      {u"$g", u"-12"},        {u"$07.1f", u"-0012,0"},    {u"[$-7.1f]", u"[-12,0  ]"},
      {u"$ d", u"-12"},       {u"$.2e", u"-1,20e+01"},    {u"$s$n$*f%s$", u"$s$n$*f%s$"},
      {u"$.1f", u"-12,0"},    {u"$i$$ $d", u"-12$ $d"},   {u"$999999999d", u"             -12"},
      {u"$+.0fdB", u"-12dB"}, {u"[$7.1f]", u"[  -12,0]"}, {u"$.99999999f", u"-12,000000000"},
  };
  for (const auto& [format, text] : rows) EXPECT_EQ(FormatLabel(format, -12.0, u","), text);
  EXPECT_EQ(FormatLabel(u"$+.9f", 1e300, u"."), u"+1000000000.000000000");
  EXPECT_EQ(FormatLabel(u"$.1f", -0.04, u"."), u"0.0") << "nothing is minus zero";
  EXPECT_EQ(FormatLabel(u"$.1f", -0.06, u"."), u"-0.1");
}

}  // namespace
}  // namespace tervan::ui
