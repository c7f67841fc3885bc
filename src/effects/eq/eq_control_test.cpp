#include "effects/eq/eq_control.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <utility>
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

constexpr std::int64_t kMs = 10000;  // 100-ns units

struct EqControlTest : ::testing::Test {
  EqControlTest() { ClearFlags(); }

  void ClearFlags() {
    EqSettings settings{};
    control.SnapshotSettings(&settings);
    control.TakeDirty();
    control.PollChanged();
  }
  static EqSettings SettingsOf(const EqControl& control) {
    EqSettings settings;
    std::memset(&settings, 0xAA, sizeof settings);
    EXPECT_EQ(control.GetSettings(&settings), S_OK);
    return settings;
  }
  static void ExpectSame(const EqSettings& a, const EqSettings& b) { EXPECT_EQ(std::memcmp(&a, &b, sizeof a), 0); }
  // Changed and dirty.
  std::pair<bool, bool> Flags() const { return {control.IsChanged(), control.IsDirty()}; }

  // A started stream of two channels.
  void Start(std::uint16_t tag, std::uint16_t bits) {
    const StreamFormat format{tag, 2, 48000, 0, 0, bits, 0};
    processor.SetFormat(NormalisedFormat(&format));
    EXPECT_EQ(processor.StartStreaming(), S_OK);
  }
  template <typename Sample>
  void Transform(std::vector<Sample>& samples, bool discontinuity) {
    const auto bytes = static_cast<std::uint32_t>(samples.size() * sizeof(Sample));
    SampleView sample{samples.data(), bytes, bytes, discontinuity};
    processor.SetBlock({0, static_cast<std::int64_t>(samples.size() / 2) * kMs / 48});
    EXPECT_EQ(processor.Transform(sample), S_OK);
    EXPECT_EQ(sample.length_bytes, bytes);
  }

  FakePoster poster;
  EqEffect effect{poster};
  EqControl& control = effect.settings_control();
  StreamProcessor processor{effect};
};

TEST_F(EqControlTest, RecordsAreTakenAsGivenWithTheSelectedBand) {
  ExpectSame(SettingsOf(control), eq::kPresets[0].settings);
  EqSettings settings = eq::kPresets[3].settings;  // gains of -25 dB
  settings.selected_band = 3;
  settings.bypass = 1;
  EXPECT_EQ(control.SetSettings(&settings), S_OK);
  EXPECT_EQ(Flags(), std::pair(true, true));
  ExpectSame(SettingsOf(control), settings);

  ClearFlags();
  EXPECT_EQ(control.SetSelectedBand(2), S_OK);
  EXPECT_EQ(SettingsOf(control).selected_band, 2);
  EXPECT_EQ(control.GetSettings(nullptr), E_POINTER);
  EXPECT_EQ(control.SetSettings(nullptr), E_POINTER);
  EXPECT_EQ(control.GetSelectedBand(nullptr), E_POINTER);
  EXPECT_EQ(Flags(), std::pair(false, false));
}

TEST_F(EqControlTest, SettersClampAndBandsAreReadByNumber) {
  const struct {
    eq::BandRow row;
    std::int32_t low, high;
  } kRows[] = {{eq::kFrequency, 20, 20000}, {eq::kGain, -150, 150}, {eq::kBandwidth, 1, 40},
               {eq::kRolloff, 1, 4},        {eq::kMode, 1, 3},      {eq::kEnable, 0, 1}};
  for (const auto& row : kRows) {
    for (std::int32_t band = 0; band < 4; ++band) {
      const std::uint32_t index = eq::ParamIndex(static_cast<std::uint32_t>(band), row.row);
      for (const auto& [given, stored] : {std::pair{INT32_MIN, row.low}, {row.high + 1, row.high}}) {
        SCOPED_TRACE(::testing::Message() << "row " << index << ": " << given);
        control.Set(index, row.high + row.low - stored);  // the other end
        ClearFlags();
        EXPECT_EQ(control.Set(index, given), S_OK);
        EXPECT_EQ(Flags(), std::pair(true, true));
        std::int32_t value = -1;
        EXPECT_EQ(control.GetBand(&value, band, row.row), S_OK);
        EXPECT_EQ(value, stored);
        ClearFlags();
        EXPECT_EQ(control.Set(index, given), S_OK);  // again
        EXPECT_EQ(Flags(), std::pair(false, false));
      }
    }
    for (const std::int32_t band : {4, -1, INT32_MAX}) {
      std::int32_t untouched = 77;
      EXPECT_EQ(control.GetBand(&untouched, band, row.row), S_OK);
      EXPECT_EQ(untouched, 77);
    }
  }
  EXPECT_EQ(control.GetBand(nullptr, 0, eq::kGain), E_POINTER);
}

TEST_F(EqControlTest, PageLearnsOnceOfWhatTheHostHasSet) {
  const std::uint32_t gain = eq::ParamIndex(1, eq::kGain);
  control.Set(gain, 30);
  EXPECT_EQ(control.PollChanged(), S_FALSE) << "the page's own doing";
  ClearFlags();
  effect.control().SetNotifyWindow(Window(1), 5);
  EXPECT_EQ(effect.SetParam(gain, 3.0f), S_FALSE);  // the same
  EXPECT_EQ(effect.SetParam(gain, 15.1f), E_INVALIDARG);
  EXPECT_EQ(control.PollChanged(), S_FALSE);
  EXPECT_EQ(Flags(), std::pair(false, false));
  EXPECT_EQ(effect.SetParam(gain, 4.5f), S_OK);
  EXPECT_EQ(Flags(), std::pair(true, true));
  EXPECT_EQ(control.PollChanged(), S_OK);
  EXPECT_EQ(control.PollChanged(), S_FALSE);
  EXPECT_TRUE(poster.Take().empty());
}

TEST_F(EqControlTest, StoredRecordIsLoadedWithoutItsBypass) {
  EqSettings settings = eq::kPresets[9].settings;
  settings.selected_band = 3;
  settings.bypass = 1;
  control.SetSettings(&settings);
  FakeStream stream;
  EXPECT_EQ(SaveState(effect, stream, true), S_OK);
  ASSERT_EQ(stream.bytes.size(), 124u);
  EXPECT_EQ(stream.bytes[0], 120);
  EqEffect other(poster);
  EXPECT_EQ(LoadState(other, stream), S_OK);
  settings.bypass = 0;
  ExpectSame(SettingsOf(other.settings_control()), settings);
}

TEST_F(EqControlTest, StatesOutlastADiscontinuityWithNewSettings) {
  Start(kTagPcm, 16);
  EqModel model(48000, 2);
  auto samples = SamplesOf<std::int16_t>(Programme(1000, 2, 200, 0));
  for (const std::int32_t preset : {9, 4, 9}) {
    ApplyPreset(effect, preset);
    model.Load(eq::kPresets[preset].settings);
    auto expected = samples;
    Transform(samples, true);
    model.Process(expected.data(), 1000);
    EXPECT_TRUE(SameBits(samples, expected));
  }
}

TEST_F(EqControlTest, BypassIsDecidedChunkByChunkAndLeavesSettingsWaiting) {
  ApplyPreset(effect, 9);
  Start(kTagFloat, 32);
  const SegmentData steps[] = {{0, 10 * kMs, 0, 0, kCurveJump, 0},
                               {10 * kMs, 20 * kMs, 1, 1, kCurveJump, 0},
                               {20 * kMs, 40 * kMs, 0, 0, kCurveJump, 0}};
  EXPECT_EQ(effect.params()->AddEnvelope(eq::kBypassParam, 3, steps), S_OK);
  auto samples = SamplesOf<float>(Programme(1920, 2, 200, 0));
  auto expected = samples;
  Transform(samples, false);
  EqModel model(48000, 2);
  model.Load(eq::kPresets[9].settings);
  model.Process(expected.data(), 480);
  model.Process(expected.data() + 2 * 960, 960);
  EXPECT_TRUE(SameBits(samples, expected));

  effect.params()->FlushEnvelope(kAllParams, 0, 40 * kMs);
  EqSettings settings = eq::kPresets[4].settings;
  settings.bypass = 1;
  control.SetSettings(&settings);
  expected = samples;
  Transform(samples, true);
  EXPECT_TRUE(SameBits(samples, expected));
  EXPECT_TRUE(control.IsChanged());
  control.Set(eq::kBypassParam, 0);
  model.Load(settings);
  Transform(samples, false);
  model.Process(expected.data(), 1920);
  EXPECT_TRUE(SameBits(samples, expected));
  EXPECT_FALSE(control.IsChanged());
}

}  // namespace
}  // namespace tervan
