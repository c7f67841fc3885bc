// What the EQ has beside its parameters.
#include "effects/eq/eq_control.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "effects/eq/eq_effect.h"
#include "effects/eq/eq_model.h"
#include "shell/stream_processor.h"
#include "testing/engine_rig.h"
#include "testing/fakes.h"
#include "testing/programme.h"

namespace tervan {
namespace {

using namespace tervan::testing;

struct EqControlTest : ::testing::Test {
  FakePoster poster;
  EqEffect effect{poster};
  EqControl& control = effect.settings_control();
};

TEST_F(EqControlTest, SelectedBandGoesWithTheRecordButIsNoChange) {
  EqSettings settings = eq::kPresets[3].settings;
  std::int32_t band = -1;
  settings.selected_band = 3;
  EXPECT_EQ(control.SetSettings(&settings), S_OK);
  EXPECT_EQ(control.GetSelectedBand(&band), S_OK);
  EXPECT_EQ(band, 3);
  control.SnapshotSettings(&settings);
  control.TakeDirty();
  EXPECT_EQ(control.SetSelectedBand(2), S_OK);
  EXPECT_FALSE(control.IsChanged());
  EXPECT_FALSE(control.IsDirty());
  EXPECT_EQ(control.GetSettings(&settings), S_OK);
  EXPECT_EQ(settings.selected_band, 2);
}

TEST_F(EqControlTest, BypassIsDecidedChunkByChunk) {
  constexpr std::int64_t kMs = 10000;  // 100-ns units
  const SegmentData steps[] = {{0, 10 * kMs, 0, 0, kCurveJump, 0},
                               {10 * kMs, 20 * kMs, 1, 1, kCurveJump, 0},
                               {20 * kMs, 40 * kMs, 0, 0, kCurveJump, 0}};
  EXPECT_EQ(effect.params()->AddEnvelope(eq::kBypassParam, 3, steps), S_OK);
  control.SetSettings(&eq::kPresets[9].settings);
  StreamProcessor processor(effect);
  auto samples = SamplesOf<float>(Programme(1920, 2, 200, 0));
  auto expected = samples;
  EXPECT_EQ(processor.BeginStream(2, 48000), S_OK);
  EXPECT_EQ(processor.ProcessBuffer(samples.data(), 1920, false), S_OK);
  EqModel model(48000, 2);
  model.Load(eq::kPresets[9].settings);
  model.Process(expected.data(), 480);
  model.Process(&expected[2 * 960], 960);
  EXPECT_TRUE(SameBits(samples, expected));
}

}  // namespace
}  // namespace tervan
