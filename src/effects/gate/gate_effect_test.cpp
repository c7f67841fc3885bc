#include "effects/gate/gate_effect.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "shell/stream_processor.h"
#include "testing/fakes.h"

namespace tervan {
namespace {

using tervan::testing::FakePoster;

TEST(GateEffect, OpensAndClosesInTheStream) {
  FakePoster poster;
  GateEffect effect(poster);
  StreamProcessor processor(effect);
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
