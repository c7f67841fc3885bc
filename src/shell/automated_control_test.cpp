#include "shell/automated_control.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>

#include "effects/compressor/compressor_settings.h"
#include "testing/fakes.h"

namespace tervan {
namespace {

using tervan::testing::FakePoster;
using tervan::testing::OpenAutomatedControl;

struct AutomatedControlTest : ::testing::Test {
  AutomatedControlTest() { Settle(compressor); }
  static void Settle(OpenAutomatedControl& control) {
    char record[64];
    control.FetchRecord(record);
    control.TakeDirty();
  }
  // "cd" changed and dirty, "c-", "--".
  static std::string Flags(OpenAutomatedControl& control) {
    std::string flags = {control.IsChanged() ? 'c' : '-', control.IsDirty() ? 'd' : '-'};
    Settle(control);
    return flags;
  }

  FakePoster poster;
  OpenAutomatedControl compressor{compressor::kParams, poster};
};

TEST_F(AutomatedControlTest, SettersClampAndMarkOnlyRealChanges) {
  struct Step {
    std::uint32_t index;
    float value, stored;
    const char* flags;
  };
  for (const Step& step : {Step{3, 80, 50, "cd"},
                           {3, 99, 50, "--"},
                           {3, -INFINITY, 1, "cd"},
                           {3, NAN, 1, "--"},
                           {5, INFINITY, 5000, "cd"},
                           {4, 0.25f, 0.25f, "cd"}}) {
    SCOPED_TRACE(step.value);
    EXPECT_EQ(compressor.Set(step.index, step.value), S_OK);
    float value = 0;
    EXPECT_EQ(compressor.Get(step.index, &value), S_OK);
    EXPECT_EQ(value, step.stored);
    EXPECT_EQ(Flags(compressor), step.flags);
  }
  EXPECT_EQ(compressor.Get(0, static_cast<float*>(nullptr)), E_POINTER);
}

TEST_F(AutomatedControlTest, EndOfAnEditMarksTheSettings) {
  EXPECT_EQ(compressor.BeginEdit(3), S_OK);
  EXPECT_EQ(compressor.BeginEdit(3), S_FALSE);
  EXPECT_EQ(Flags(compressor), "--");
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(compressor.EndEdit(3), S_OK);
    EXPECT_EQ(Flags(compressor), "c-");
  }
}

TEST_F(AutomatedControlTest, StartsChangedButNotDirtyAndRecordsMarkAlways) {
  OpenAutomatedControl fresh(compressor::kParams, poster);
  EXPECT_EQ(Flags(fresh), "c-");
  EXPECT_EQ(Flags(fresh), "--");  // a fetch takes note
  CompressorSettings settings{};
  for (int i = 0; i < 2; ++i) {
    compressor.ImportRecord(&settings);
    EXPECT_EQ(Flags(compressor), "cd");
  }
}

}  // namespace
}  // namespace tervan
