#include "params/param_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>

#include "effects/compressor/compressor_settings.h"
#include "effects/eq/eq_settings.h"
#include "effects/gate/gate_settings.h"
#include "support/testing/fakes.h"

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
  void Govern(std::uint32_t index) {  // by a segment, at the current clock
    const SegmentData segment{-1000, 1000, -10, 0, kCurveJump, 0};
    ASSERT_EQ(manager.AddEnvelope(index, 1, &segment), S_OK);
    manager.SetSampleRate(48000);
    manager.SetStreaming(true);
    manager.NextChangeFrames(1, nullptr);
  }

  ParamManager manager{compressor::kParams};
  std::shared_ptr<RecordingRecorder> recorder = std::make_shared<RecordingRecorder>();
};

TEST_F(ParamManagerTest, StartsNeutralAndChecksArguments) {
  for (std::uint32_t i = 0; i < 9; ++i) EXPECT_EQ(Value(i), compressor::kParams[i].info.mpdNeutralValue) << i;
  float value = 77;
  EXPECT_EQ(manager.GetParam(0, nullptr), E_POINTER);
  EXPECT_EQ(manager.GetParam(9, &value), E_INVALIDARG);
  EXPECT_EQ(manager.GetParam(kAllParams, &value), E_INVALIDARG);
  EXPECT_EQ(value, 77);
  EXPECT_EQ(manager.SetParam(9, 0), E_INVALIDARG);
}

TEST_F(ParamManagerTest, SetParamTellsChangedFromSameFromRefused) {
  struct Step {
    float value;
    HRESULT result;
    float after;
  };
  for (const Step& step : {Step{-40, S_FALSE, -40},
                           {-20, S_OK, -20},
                           {-20, S_FALSE, -20},
                           {5, E_INVALIDARG, -20},
                           {-60.01f, E_INVALIDARG, -20},
                           {-60, S_OK, -60},
                           {0, S_OK, 0},
                           {NAN, E_INVALIDARG, 0},
                           {INFINITY, E_INVALIDARG, 0},
                           {-INFINITY, E_INVALIDARG, 0}}) {
    SCOPED_TRACE(step.value);
    EXPECT_EQ(manager.SetParam(kThreshold, step.value), step.result);
    EXPECT_EQ(Value(kThreshold), step.after);
  }
  EXPECT_THAT(recorder->Take(), IsEmpty());  // the host knows what it did itself
}

TEST_F(ParamManagerTest, AutomationWinsOverSetParamOnlyWhileStreaming) {
  Govern(kThreshold);
  EXPECT_EQ(manager.SetParam(kThreshold, -5), S_FALSE);
  EXPECT_EQ(manager.SetParam(kThreshold, 500), S_FALSE);
  EXPECT_EQ(manager.SetParam(kAmount, 5), S_OK);  // another parameter is free
  EXPECT_FALSE(manager.IsEditable(kThreshold));
  EXPECT_TRUE(manager.IsEditable(kAmount));
  EXPECT_EQ(Value(kThreshold), -10);
  manager.SetStreaming(false);
  EXPECT_TRUE(manager.IsEditable(kThreshold));
  EXPECT_EQ(manager.SetParam(kThreshold, -5), S_OK);
}

TEST_F(ParamManagerTest, EditsReachTheRecorderBracketedOnce) {
  EXPECT_TRUE(manager.SetFloat(kAmount, 3.5f));
  EXPECT_THAT(recorder->Take(), ElementsAre("B3", "V3=3.5", "E3"));
  EXPECT_FALSE(manager.SetFloat(kAmount, 3.5f));
  EXPECT_THAT(recorder->Take(), IsEmpty());

  EXPECT_TRUE(manager.BeginEdit(kAmount));
  EXPECT_FALSE(manager.BeginEdit(kAmount));
  EXPECT_TRUE(manager.SetFloat(kAmount, 4));
  EXPECT_TRUE(manager.SetInteger(kBypass, 1));
  EXPECT_TRUE(manager.EndEdit(kAmount));
  EXPECT_FALSE(manager.EndEdit(kAmount));
  EXPECT_THAT(recorder->Take(), ElementsAre("B3", "V3=4", "B8", "V8=1", "E8", "E3"));

  manager.SetRecorder(nullptr);
  EXPECT_TRUE(manager.SetFloat(kAmount, 5));
  EXPECT_TRUE(manager.BeginEdit(kAmount));
  EXPECT_TRUE(manager.EndEdit(kAmount));
  EXPECT_THAT(recorder->Take(), IsEmpty());
  EXPECT_EQ(recorder.use_count(), 1);  // let go
}

TEST_F(ParamManagerTest, ValuesReachTheRecorderInTheTablesUnits) {
  ParamManager gate(gate::kParams);
  gate.SetRecorder(recorder);
  gate.SetInteger(0, -125);
  EXPECT_THAT(recorder->Take(), ElementsAre("B0", "V0=-12.5", "E0"));
}

TEST_F(ParamManagerTest, RecorderMayCallBack) {
  recorder->on_call = [&] {  // deadlocks if a lock were held
    float value = 0;
    manager.GetParam(kAmount, &value);
    manager.NextChangeFrames(1, nullptr);
    manager.FlushEnvelope(kAllParams, 0, 1);
  };
  CompressorSettings record{};
  manager.ImportSettings(&record);
  EXPECT_TRUE(manager.SetFloat(kAmount, 4));
}

TEST_F(ParamManagerTest, ImportReportsAllBeginsThenChangedValuesThenAllEnds) {
  manager.BeginEdit(kAmount);  // by the page; the import ends it
  recorder->Take();
  const CompressorSettings record{0, 1.5f, -40, 9, 15, 250, 1, 0, 12345, 1};
  manager.ImportSettings(&record);
  EXPECT_THAT(recorder->Take(), ElementsAre("B0", "B1", "B2", "B4", "B5", "B6", "B7", "B8", "V1=1.5", "V3=9", "V8=1",
                                            "E0", "E1", "E2", "E3", "E4", "E5", "E6", "E7", "E8"));
  EXPECT_FALSE(manager.EndEdit(kAmount));
}

TEST_F(ParamManagerTest, ImportEndsEditsAlsoForAutomation) {
  Govern(kThreshold);
  const CompressorSettings record{};
  manager.ImportSettings(&record);
  std::uint32_t flags = 0;
  manager.NextChangeFrames(1, &flags);
  EXPECT_EQ(flags, 1u);  // automation takes the parameter back
  EXPECT_EQ(Value(kThreshold), -10);
}

TEST_F(ParamManagerTest, RecordsPassUnclampedAndFieldByField) {
  const CompressorSettings record{-99, 1e9f, 3, -2, 1e-3f, -0.0f, 7, -7, 12345, INT32_MAX / 128};
  manager.ImportSettings(&record);
  EXPECT_EQ(Value(0), -99);
  EXPECT_EQ(manager.GetInteger(kBypass), INT32_MAX / 128);
  CompressorSettings exported;
  std::memset(&exported, 0x5A, sizeof exported);
  manager.ExportSettings(&exported);
  EXPECT_EQ(exported.reserved, 0x5A5A5A5A);  // no parameter maps it
  exported.reserved = record.reserved;
  EXPECT_EQ(std::memcmp(&exported, &record, sizeof record), 0);
}

TEST_F(ParamManagerTest, EveryFieldOfTheIntegerRecordsIsItsOwn) {
  const auto check = [](std::span<const ParamDescriptor> table, std::size_t words, std::size_t unmapped) {
    ParamManager manager(table);
    std::array<std::int32_t, 26> in{}, out{};
    for (std::size_t i = 0; i < words; ++i) in[i] = static_cast<std::int32_t>(3 * i) - 30;
    manager.ImportSettings(in.data());
    manager.ExportSettings(out.data());
    if (unmapped < words) in[unmapped] = 0;
    EXPECT_EQ(in, out);
  };
  check(gate::kParams, 4, 99);
  check(eq::kParams, 26, 24);
}

TEST_F(ParamManagerTest, AbsurdRecordsAreStoredAndExported) {
  CompressorSettings record;
  std::memset(&record, 0xFF, sizeof record);  // NaN in every float
  manager.ImportSettings(&record);
  EXPECT_TRUE(std::isnan(Value(kThreshold)));
  EXPECT_EQ(manager.GetInteger(kBypass), -1);
  manager.ExportSettings(&record);
  EXPECT_EQ(manager.SetParam(kThreshold, -12), S_OK);
}

TEST_F(ParamManagerTest, OnlyReferenceTimeIsKnown) {
  GUID format{};
  std::uint32_t data = 99;
  EXPECT_EQ(manager.GetCurrentTimeFormat(nullptr, &data), E_POINTER);
  EXPECT_EQ(manager.GetCurrentTimeFormat(&format, nullptr), E_POINTER);
  EXPECT_EQ(manager.SetTimeFormat(GUID{1, 2, 3, {}}, 5), E_FAIL);
  EXPECT_EQ(manager.SetTimeFormat(kTimeReference, 5), S_OK);
  EXPECT_EQ(manager.GetCurrentTimeFormat(&format, &data), S_OK);
  EXPECT_EQ(format, (GUID{0x93ad712b, 0xdaa0, 0x4ffe, {0xbc, 0x81, 0xb0, 0xce, 0x50, 0x0f, 0xcd, 0xd9}}));
  EXPECT_EQ(data, 0u);
}

}  // namespace
}  // namespace tervan
