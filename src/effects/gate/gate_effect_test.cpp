#include "effects/gate/gate_effect.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "shell/stream_processor.h"
#include "testing/fakes.h"

namespace tervan {
namespace {

using namespace tervan::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct GateEffectTest : ::testing::Test {
  GateEffectTest() { effect.control().SetNotifyWindow(Window(1), 5); }
  std::vector<std::uint16_t> Codes() {
    std::vector<std::uint16_t> codes;
    for (const auto& message : poster.Take()) codes.push_back(message.code);
    return codes;
  }
  std::vector<std::int32_t> Record() {
    std::vector<std::int32_t> record(4);
    effect.GetRecord(record.data());
    return record;
  }

  FakePoster poster;
  GateEffect effect{poster};
  StreamProcessor processor{effect};
};

TEST_F(GateEffectTest, StartsAsPresetZeroAndSettersClamp) {
  const auto set_all = [this](std::int32_t value) {
    for (std::uint32_t row = 0; row < 4; ++row) effect.settings_control().Set(row, value);
    return Record();
  };
  EXPECT_THAT(Record(), ElementsAre(3, 100, -800, 0));
  EXPECT_TRUE(effect.control().IsDirty());
  EXPECT_THAT(set_all(INT32_MAX), ElementsAre(500, 5000, 0, 1));
  EXPECT_THAT(set_all(INT32_MIN), ElementsAre(0, 1, -800, 0));
}

TEST_F(GateEffectTest, TellsThePageWhatTheHostDid) {
  EXPECT_EQ(effect.settings_control().Set(0u, -10), S_OK);
  EXPECT_EQ(effect.SetParam(0, 1), E_INVALIDARG);
  EXPECT_EQ(processor.BeginStream(2, 48000), S_OK);
  EXPECT_EQ(processor.EndStream(), S_OK);
  EXPECT_THAT(Codes(), IsEmpty());
  EXPECT_EQ(effect.SetParam(0, -40), S_OK);
  EXPECT_EQ(effect.SetParam(0, -40), S_FALSE);
  EXPECT_THAT(Codes(), ElementsAre(0));
  EXPECT_EQ(ApplyPreset(effect, 6), S_OK);
  EXPECT_THAT(Codes(), ElementsAre(100));

  FakeStream older({32,   0,    0,    0,    0xe0, 0x19, 0x94, 0x86, 0x1f, 0x50, 0xd3, 0x11, 0x8c, 0xdc, 0,    0xc0,
                    0x4f, 0x6b, 0x8e, 0x4c, 7,    0,    0,    0,    8,    0,    0,    0,    0x9c, 0xff, 0xff, 0xff});
  effect.settings_control().Set(3u, 1);
  EXPECT_EQ(LoadState(effect, older), S_OK);
  EXPECT_THAT(Record(), ElementsAre(7, 8, -100, 0));
  EXPECT_THAT(Codes(), ElementsAre(100));
  older.failing_call = older.calls;  // not even the header can be read
  EXPECT_EQ(LoadState(effect, older), E_OUTOFMEMORY);
  EXPECT_THAT(Codes(), ElementsAre(100));
}

TEST_F(GateEffectTest, OpensAndClosesInTheStream) {
  std::vector<float> data(2 * 48000);
  const auto last_of = [&](float level) {
    std::fill(data.begin(), data.end(), level);
    EXPECT_EQ(processor.ProcessBuffer(data.data(), 48000, false), S_OK);
    return data.back();
  };
  ApplyPreset(effect, 5);  // -32 dB
  EXPECT_EQ(processor.BeginStream(2, 48000), S_OK);
  EXPECT_EQ(last_of(0.02f), 0.0f);
  EXPECT_FLOAT_EQ(last_of(0.5f), 0.5f);
  EXPECT_EQ(processor.Refresh(true), S_OK);
  last_of(0.5f);
  EXPECT_LT(data[2], 0.499f) << "a reset closes";
  const SegmentData lower{0, 100'000'000, -40, -40, kCurveJump, 0};
  effect.params()->AddEnvelope(0, 1, &lower);
  EXPECT_FLOAT_EQ(last_of(0.02f), 0.02f);
}

}  // namespace
}  // namespace tervan
