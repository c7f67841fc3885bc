#include "params/param_descriptor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "effects/compressor/compressor_settings.h"
#include "effects/eq/eq_settings.h"
#include "effects/gate/gate_settings.h"

namespace tervan {
namespace {

struct Row {
  std::u16string label, unit;
  int type, caps;
  float min, max, neutral;
  int control_min, control_max, kind;
  unsigned offset;
  std::u16string items = u"";
};

void ExpectRow(const ParamDescriptor& row, const Row& expected) {
  EXPECT_EQ(std::u16string(row.info.szLabel), expected.label);
  EXPECT_EQ(std::u16string(row.info.szUnitText), expected.unit);
  EXPECT_EQ(static_cast<int>(row.info.mpType), expected.type);
  EXPECT_EQ(static_cast<int>(row.info.mopCaps), expected.caps);
  EXPECT_EQ(row.info.mpdMinValue, expected.min);
  EXPECT_EQ(row.info.mpdMaxValue, expected.max);
  EXPECT_EQ(row.info.mpdNeutralValue, expected.neutral);
  EXPECT_EQ(row.controlMin, expected.control_min);
  EXPECT_EQ(row.controlMax, expected.control_max);
  EXPECT_EQ(static_cast<int>(row.controlKind), expected.kind);
  EXPECT_EQ(row.recordOffset, expected.offset);
  EXPECT_EQ(std::u16string(row.enumText), expected.items);
  EXPECT_EQ(row.changeMask, 1u);
}

template <typename Table, std::size_t kCount>
void ExpectTable(const Table& table, const Row (&expected)[kCount]) {
  ASSERT_EQ(std::size(table), kCount);
  for (std::size_t i = 0; i < kCount; ++i) {
    SCOPED_TRACE(i);
    ExpectRow(table[i], expected[i]);
  }
}

TEST(ParamTables, Compressor) {
  ExpectTable(compressor::kParams, {{u"Input Gain", u"dB", 1, 15, -60, 25, 0, -60, 25, 2, 0},
                                    {u"Output Gain", u"dB", 1, 15, -60, 25, 0, -60, 25, 2, 4},
                                    {u"Threshold", u"dB", 1, 15, -60, 0, -40, -60, 0, 2, 8},
                                    {u"Amount", u"", 1, 15, 1, 50, 2, 1, 50, 2, 12},
                                    {u"Attack Time", u"ms", 1, 15, 0, 500, 15, 0, 500, 2, 16},
                                    {u"Release Time", u"ms", 1, 15, 0, 5000, 250, 0, 5000, 2, 20},
                                    {u"Auto Gain Compensation", u"", 2, 1, 0, 1, 1, 0, 1, 1, 24},
                                    {u"Smooth Saturation", u"", 2, 1, 0, 1, 0, 0, 1, 1, 28},
                                    {u"Bypass", u"", 2, 1, 0, 1, 0, 0, 1, 1, 36}});
}

TEST(ParamTables, Gate) {
  ExpectTable(gate::kParams, {{u"Threshold level", u"dB", 1, 15, -80, 0, -40, -800, 0, 0, 8},
                              {u"Attack time", u"ms", 1, 15, 0, 500, 250, 0, 500, 0, 0},
                              {u"Release time", u"ms", 1, 15, 1, 5000, 2500, 1, 5000, 0, 4},
                              {u"Bypass", u"", 2, 1, 0, 1, 0, 0, 1, 1, 12}});
}

TEST(ParamTables, Eq) {
  ASSERT_EQ(std::size(eq::kParams), 25u);
  const float frequencies_hz[] = {100, 300, 1000, 5000};
  const float rolloffs[] = {2, 1, 1, 2}, modes[] = {1, 2, 2, 3};
  for (unsigned b = 0; b < 4; ++b) {
    SCOPED_TRACE(b);
    const std::u16string band = u"Band" + std::u16string(1, static_cast<char16_t>(u'1' + b));
    const ParamDescriptor* const rows = &eq::kParams[6 * b];
    ExpectRow(rows[0], {band + u" Frequency", u"Hz", 1, 15, 20, 20000, frequencies_hz[b], 20, 20000, 0, 32 + 4 * b});
    ExpectRow(rows[1], {band + u" Gain", u"dB", 1, 15, -15, 15, 0, -150, 150, 0, 4 * b});
    ExpectRow(rows[2], {band + u" Bandwidth", u"octaves", 1, 15, 0.1f, 4, 1, 1, 40, 0, 16 + 4 * b});
    ExpectRow(rows[3], {band + u" Rolloff", u"dB/octave", 3, 1, 1, 4, rolloffs[b], 1, 4, 0, 64 + 4 * b, u"6,12,18,24"});
    ExpectRow(rows[4], {band + u" Mode", u"", 3, 1, 1, 3, modes[b], 1, 3, 0, 48 + 4 * b, u"Low Shelf,Band,High Shelf"});
    ExpectRow(rows[5], {band + u" Enable", u"", 2, 1, 0, 1, 1, 0, 1, 1, 80 + 4 * b});
  }
  ExpectRow(eq::kParams[24], {u"Bypass", u"", 2, 1, 0, 1, 0, 0, 1, 1, 100});
}

TEST(ParamDescriptor, IntegersRoundHalfAwayFromZero) {
  const ParamDescriptor &threshold = gate::kParams[0], &gain = eq::kParams[1], &hz = eq::kParams[0];
  struct Case {
    const ParamDescriptor& row;
    float value;
    std::int32_t control;
  };
  for (const Case& c : {Case{threshold, -40, -400},
                        {gain, -0.04f, 0},
                        {gain, 0.05f, 1},
                        {gain, -0.05f, -1},
                        {gain, 0.049f, 0},
                        {gain, -25, -250},
                        {gain, 0, 0},
                        {hz, 99.5f, 100},
                        {hz, 99.49f, 99},
                        {hz, -0.5f, -1},
                        {hz, 1e30f, INT32_MAX},
                        {hz, -1e30f, INT32_MIN},
                        {hz, INFINITY, INT32_MAX},
                        {hz, NAN, 0}}) {
    EXPECT_EQ(IntegerOfValue(c.row, c.value), c.control) << c.value;
  }
}

TEST(ParamDescriptor, EveryControlValueSurvivesTheWayThroughItsValue) {
  const auto expect_round_trips = [](const ParamDescriptor& row) {
    for (std::int32_t control = row.controlMin - 120; control <= row.controlMax + 120; ++control) {
      ASSERT_EQ(IntegerOfValue(row, ValueOfInteger(row, control)), control) << control;
    }
  };
  for (const ParamDescriptor& row : gate::kParams) expect_round_trips(row);
  for (const ParamDescriptor& row : eq::kParams) expect_round_trips(row);
  EXPECT_EQ(ValueOfInteger(gate::kParams[0], -399), -39.9f);
  EXPECT_EQ(ValueOfInteger(eq::kParams[1], -250), -25.0f);
  for (const float db : {-60.0f, 0.1f, 25.0f, 1000.5f}) {
    EXPECT_EQ(FloatOfValue(compressor::kParams[0], db), db);
    EXPECT_EQ(ValueOfFloat(compressor::kParams[0], db), db);
  }
}

TEST(ParamDescriptor, TextListsLabelUnitAndItems) {
  using namespace std::string_literals;
  EXPECT_EQ(ParamText(compressor::kParams[4]), u"Attack Time\0ms\0\0\0"s);
  EXPECT_EQ(ParamText(compressor::kParams[3]), u"Amount\0\0\0\0"s);
  EXPECT_EQ(ParamText(eq::kParams[3]), u"Band1 Rolloff\0dB/octave\0006\00012\00018\00024\0\0"s);
  EXPECT_EQ(ParamText(eq::kParams[4]), u"Band1 Mode\0\0Low Shelf\0Band\0High Shelf\0\0"s);
}

}  // namespace
}  // namespace tervan
