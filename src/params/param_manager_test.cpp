#include "params/param_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <span>

#include "effects/compressor/compressor_settings.h"
#include "effects/eq/eq_settings.h"
#include "effects/gate/gate_settings.h"
#include "testing/fakes.h"

namespace tervan {
namespace {

using tervan::testing::RecordingRecorder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kThreshold = static_cast<std::uint32_t>(CompressorParam::kThreshold);
constexpr auto kAmount = static_cast<std::uint32_t>(CompressorParam::kAmount);
constexpr auto kBypass = static_cast<std::uint32_t>(CompressorParam::kBypass);

struct ParamManagerTest : ::testing::Test {
  ParamManagerTest() { manager.SetRecorder(recorder); }
  float Value(std::uint32_t index) const {
    float value = NAN;
    EXPECT_EQ(manager.GetParam(index, &value), S_OK);
    return value;
  }

  ParamManager manager{compressor::kParams};
  std::shared_ptr<RecordingRecorder> recorder = std::make_shared<RecordingRecorder>();
};

TEST_F(ParamManagerTest, SetParamTellsChangedFromSameFromRefused) {
  struct Step {
    float value;
    HRESULT result;
    float after;
  };
  for (const Step& step : {Step{-40, S_FALSE, -40},
                           {-60, S_OK, -60},
                           {-60.01f, E_INVALIDARG, -60},
                           {0, S_OK, 0},
                           {5, E_INVALIDARG, 0},
                           {NAN, E_INVALIDARG, 0},
                           {-INFINITY, E_INVALIDARG, 0}}) {
    SCOPED_TRACE(step.value);
    EXPECT_EQ(manager.SetParam(kThreshold, step.value), step.result);
    EXPECT_EQ(Value(kThreshold), step.after);
  }
  EXPECT_THAT(recorder->Take(), IsEmpty());  // the host knows what it did itself
}

TEST_F(ParamManagerTest, AutomationWinsOverTheHostOnlyWhileStreaming) {
  const SegmentData segment{-1000, 1000, -10, 0, kCurveJump, 0};
  manager.AddEnvelope(kThreshold, 1, &segment);
  manager.SetSampleRate(48000);
  manager.SetStreaming(true);
  manager.NextChangeFrames(1, nullptr);
  EXPECT_EQ(manager.SetParam(kThreshold, 500), S_FALSE);
  EXPECT_EQ(manager.SetParam(kAmount, 5), S_OK);  // another parameter is free
  EXPECT_FALSE(manager.IsEditable(kThreshold));
  const CompressorSettings record{};
  manager.ImportSettings(&record);
  std::uint32_t flags = 0;
  manager.NextChangeFrames(1, &flags);
  EXPECT_EQ(flags, 1u);  // the parameter is taken back
  EXPECT_EQ(Value(kThreshold), -10);
  manager.SetStreaming(false);
  EXPECT_TRUE(manager.IsEditable(kThreshold));
  EXPECT_EQ(manager.SetParam(kThreshold, -5), S_OK);
}

TEST_F(ParamManagerTest, EditsReachTheRecorderBracketedOnceInTheTablesUnits) {
  manager.SetFloat(kAmount, 3.5f);
  manager.SetFloat(kAmount, 3.5f);  // no change, no report
  EXPECT_THAT(recorder->Take(), ElementsAre("B3", "V3=3.5", "E3"));
  manager.BeginEdit(kAmount);
  manager.BeginEdit(kAmount);
  manager.SetFloat(kAmount, 4);
  manager.SetInteger(kBypass, 1);
  manager.EndEdit(kAmount);
  manager.EndEdit(kAmount);
  EXPECT_THAT(recorder->Take(), ElementsAre("B3", "V3=4", "B8", "V8=1", "E8", "E3"));

  ParamManager gate(gate::kParams);
  gate.SetRecorder(recorder);
  gate.SetInteger(0, -125);
  EXPECT_THAT(recorder->Take(), ElementsAre("B0", "V0=-12.5", "E0"));
  gate.SetRecorder(nullptr);
  EXPECT_TRUE(gate.SetInteger(0, -126));
  EXPECT_THAT(recorder->Take(), IsEmpty());
}

TEST_F(ParamManagerTest, ImportReportsAllBeginsThenChangedValuesThenAllEnds) {
  recorder->on_call = [&] {  // a host may call back: this deadlocks if a lock were held
    Value(kAmount);
    manager.FlushEnvelope(kAllParams, 0, 1);
  };
  manager.BeginEdit(kAmount);  // by the page; the import ends it
  recorder->Take();
  const CompressorSettings record{0, 1.5f, -40, 9, 15, 250, 1, 0, 12345, 1};
  manager.ImportSettings(&record);
  EXPECT_THAT(recorder->Take(), ElementsAre("B0", "B1", "B2", "B4", "B5", "B6", "B7", "B8", "V1=1.5", "V3=9", "V8=1",
                                            "E0", "E1", "E2", "E3", "E4", "E5", "E6", "E7", "E8"));
}

// Unclamped; in the compressor's float fields these words are NaNs.
TEST_F(ParamManagerTest, RecordsPassWordByWord) {
  const auto check = [](std::span<const ParamDescriptor> table, std::size_t words, std::size_t unmapped) {
    ParamManager manager(table);
    std::array<std::int32_t, 26> in{}, out{};
    for (std::size_t i = 0; i < words; ++i) in[i] = static_cast<std::int32_t>(3 * i) - 30;
    manager.ImportSettings(in.data());
    manager.ExportSettings(out.data());
    if (unmapped < words) in[unmapped] = 0;
    EXPECT_EQ(in, out);
  };
  check(compressor::kParams, 10, 8);
  check(gate::kParams, 4, 99);
  check(eq::kParams, 26, 24);
}

}  // namespace
}  // namespace tervan
