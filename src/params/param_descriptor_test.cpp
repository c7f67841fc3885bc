#include "params/param_descriptor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <span>

#include "effects/compressor/compressor_settings.h"
#include "effects/eq/eq_settings.h"
#include "effects/gate/gate_settings.h"

namespace tervan {
namespace {

TEST(ParamTables, ControlRangesAreTheRangesInTheUnitsOfTheRecord) {
  for (const std::span<const ParamDescriptor> table :
       {std::span<const ParamDescriptor>(compressor::kParams), {gate::kParams}, {eq::kParams}}) {
    for (const ParamDescriptor& row : table) {
      SCOPED_TRACE(::testing::Message() << "offset " << row.recordOffset);
      EXPECT_EQ(ValueOfInteger(row, row.controlMin), row.info.mpdMinValue);
      EXPECT_EQ(ValueOfInteger(row, row.controlMax), row.info.mpdMaxValue);
      EXPECT_GE(row.info.mpdNeutralValue, row.info.mpdMinValue);
      EXPECT_LE(row.info.mpdNeutralValue, row.info.mpdMaxValue);
      for (std::int32_t control = row.controlMin - 120; control <= row.controlMax + 120; ++control) {
        ASSERT_EQ(IntegerOfValue(row, ValueOfInteger(row, control)), control);
      }
    }
  }
  EXPECT_EQ(ValueOfInteger(gate::kParams[0], -399), -39.9f);
}

TEST(ParamDescriptor, IntegersRoundHalfAwayFromZero) {
  const ParamDescriptor &gain = eq::kParams[1], &hz = eq::kParams[0];
  struct Case {
    const ParamDescriptor& row;
    float value;
    std::int32_t control;
  };
  for (const Case& c : {Case{gain, 0.05f, 1},
                        {gain, -0.05f, -1},
                        {gain, 0.049f, 0},
                        {hz, 99.5f, 100},
                        {hz, 99.49f, 99},
                        {hz, -0.5f, -1},
                        {hz, 1e30f, INT32_MAX},
                        {hz, -INFINITY, INT32_MIN},
                        {hz, NAN, 0}}) {
    EXPECT_EQ(IntegerOfValue(c.row, c.value), c.control) << c.value;
  }
}

}  // namespace
}  // namespace tervan
