#include "effects/gate/gate_engine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "effects/gate/gate_model.h"
#include "testing/engine_rig.h"
#include "testing/programme.h"

namespace tervan {
namespace {

using namespace tervan::testing;
using StartedGate = StartedEngine<GateEngine, GateSettings>;

template <typename Sample>
struct GateFormat : ::testing::Test {};
TYPED_TEST_SUITE(GateFormat, Formats);

// The presets, and settings as records may hold them: mostly in range, often on a boundary, sometimes far outside.
std::vector<GateSettings> ManySettings() {
  std::vector<GateSettings> all;
  std::mt19937 random(1);
  const auto pick = [&random](std::vector<std::int32_t> boundaries, std::uint32_t low, std::uint32_t high) {
    if (random() % 4 == 0) return boundaries[random() % boundaries.size()];
    return static_cast<std::int32_t>(low + random() % (high - low));
  };
  for (const auto& preset : gate::kPresets) all.push_back(preset.settings);
  while (all.size() < 300) {
    all.push_back({.attack_ms = pick({0, 145, 500, -1, INT32_MAX, INT32_MIN}, 0, 30),
                   .release_ms = pick({0, 145, 5000, -5, INT32_MAX, INT32_MIN}, 1, 90),
                   .threshold_tenth_db = -pick({800, 799, 801, 0, -1, INT32_MAX, -INT32_MAX}, 0, 700),
                   .bypass = pick({1, 0, 3}, 0, 1)});
  }
  return all;
}

// New settings go in on the way and keep the state, but for one reset. Every way through the states is taken.
TYPED_TEST(GateFormat, SamplesEqualTheModelInEveryBit) {
  constexpr std::uint32_t kRates[] = {1, 700, 8000, 44100, 96000, 768000};
  const std::vector<GateSettings> all = ManySettings();
  std::set<std::string> transitions;
  for (std::uint32_t i = 0; i < all.size(); ++i) {
    const std::uint32_t rate_hz = kRates[i % std::size(kRates)];
    const std::size_t channels = i / std::size(kRates) % 2 + 1;
    SCOPED_TRACE(::testing::Message() << "settings " << i << " at " << rate_hz << ", channels: " << channels);
    StartedGate started(all[i], channels, rate_hz);
    GateModel model(rate_hz, channels);
    model.Start(all[i]);
    auto actual = SamplesOf<TypeParam>(Programme(8000, channels, 300 + i * 4, i));
    auto expected = actual;
    std::size_t at = 0;
    for (std::size_t block = 0; at + 1000 * channels <= actual.size(); ++block) {
      if (block % 4 == 3) {
        const GateSettings& settings = all[(i + block / 4) % all.size()];
        const bool keep_state = block != 11;
        started.engine.LoadParameters(settings, keep_state ? ProcessMode::kContinuous : ProcessMode::kDiscontinuity);
        model.Load(settings, keep_state);
      }
      if (block == 18) {
        started.engine.Start();
        model.Start(all[i]);
      }
      std::uint32_t frames = kBlockFrames[block % std::size(kBlockFrames)];
      ASSERT_EQ(Process(started.engine, ProcessMode::kContinuous, &actual[at], &frames), S_OK);
      model.Process(&expected[at], frames);
      at += frames * channels;
    }
    ASSERT_TRUE(SameBits(actual, expected));
    transitions.merge(model.transitions);
  }
  EXPECT_THAT(transitions, ::testing::ElementsAre("AH", "AO", "CA", "HR", "OH", "RA", "RC"));
}

TYPED_TEST(GateFormat, OffAndBypassPassEveryBitAndFreezeTheState) {
  const GateSettings on{10, 20, -300, 0};
  const auto input = SamplesOf<TypeParam>(Programme(4000, 2, 900, 0));
  const auto run = [&input](StartedGate& gate) {
    auto data = input;
    RunAll(gate.engine, data, 2);
    return data;
  };
  for (const GateSettings& passing : {gate::kPresets[0].settings, GateSettings{10, 20, -300, 1}}) {
    StartedGate interrupted(on, 2, 44100), undisturbed(on, 2, 44100);
    run(interrupted), run(undisturbed);
    interrupted.engine.LoadParameters(passing, ProcessMode::kContinuous);
    EXPECT_TRUE(SameBits(run(interrupted), input));
    interrupted.engine.LoadParameters(on, ProcessMode::kContinuous);
    EXPECT_TRUE(SameBits(run(interrupted), run(undisturbed)));
  }
}

// Steady levels, one after the other: for so many frames this level. The gains that they get, frame by frame.
std::vector<double> Gains(const GateSettings& settings, std::initializer_list<std::pair<std::size_t, double>> levels) {
  std::vector<double> input;
  for (const auto& [frames, level] : levels) input.insert(input.end(), frames, level);
  std::vector<double> gains = input;
  StartedGate started(settings, 1, 44100);
  RunAll(started.engine, gains, 1);
  for (std::size_t i = 0; i < gains.size(); ++i) gains[i] /= input[i];
  return gains;
}

constexpr double kSilent = 1e-6;  // yet shows the gain
constexpr double kLowPassB = 0.97190323837791;
constexpr double kLowPassDelay_frames = 0.5 + kLowPassB / (1.0 - kLowPassB);  // of a ramp
constexpr std::size_t kLowPassSettles_frames = 800;

TEST(GateEngine, OpensAtTheThresholdAndClosesBelow85PercentOfIt) {
  const struct {
    std::int32_t threshold_tenth_db;
    double before, level, gain;
  } kRows[] = {{-400, kSilent, 0.00999, 0}, {-400, kSilent, 0.01001, 1}, {-400, 0.02, 0.00851, 1},
               {-400, 0.02, 0.00849, 0},    {0, kSilent, 1.0, 1},        {0, 1.0, 0.85, 1}};
  for (const auto& row : kRows) {
    for (const std::int32_t attack_ms : {3, 300}) {  // longer than the first level lasts: hold follows at once
      const auto gains = Gains({attack_ms, 100, row.threshold_tenth_db, 0}, {{5000, row.before}, {20000, row.level}});
      EXPECT_NEAR(gains.back(), row.gain, 1e-9) << row.level << " after " << row.before;
    }
  }
}

TEST(GateEngine, AttackIsAStraightRampOrAStepThroughTheLowPass) {
  constexpr double kAttack_frames = 0.2 * 44100;
  constexpr std::size_t kBegin = kLowPassSettles_frames + 1;  // the frame before decided
  const auto ramp = Gains({200, 100, -400, 0}, {{kLowPassSettles_frames, kSilent}, {12000, 0.5}});
  const auto step = Gains({0, 100, -400, 0}, {{kLowPassSettles_frames, kSilent}, {12000, 0.5}});
  for (std::size_t n = 0; n < static_cast<std::size_t>(kAttack_frames); ++n) {
    const auto t = static_cast<double>(n);
    ASSERT_NEAR(step[kBegin + n], 1.0 - 0.5 * std::pow(kLowPassB, t) * (1.0 + kLowPassB), 1e-9) << n;
    if (n < kLowPassSettles_frames) continue;
    ASSERT_NEAR(ramp[kBegin + n], (t - kLowPassDelay_frames) / kAttack_frames, 1e-9) << n;
  }
  EXPECT_NEAR(ramp.back(), 1.0, 1e-9);
}

// The threshold is so near the level that the level is below it soon after the sound has stopped.
TEST(GateEngine, AfterWindowAndHoldTheReleaseIsAStraightRampToExactlyNothing) {
  constexpr std::size_t kWindowEnd = 20 * 882, kBegin = kWindowEnd + 1 + 177, kRelease_frames = 13230;
  for (const std::size_t stops_before : {60u, 800u}) {  // frames before the window's end
    const auto gains = Gains({3, 300, -1, 0}, {{kWindowEnd - stops_before, 1.0}, {44100, kSilent}});
    EXPECT_NEAR(gains[kBegin], 1.0, 1e-9);
    for (std::size_t n = kLowPassSettles_frames; n < kRelease_frames; ++n) {
      const double ramp_frames = static_cast<double>(n) - kLowPassDelay_frames;
      ASSERT_NEAR(gains[kBegin + n], 1.0 - ramp_frames / kRelease_frames, 1e-9) << n;
    }
    const auto closed = gains.begin() + kBegin + kRelease_frames + kLowPassSettles_frames;
    EXPECT_EQ(std::count(closed, gains.end(), 0.0), gains.end() - closed);
  }
}

TEST(GateEngine, LevelBackDuringTheReleaseLeadsUpFromTheGainReached) {
  const auto gains = Gains({50, 500, -1, 0}, {{8800, 1.0}, {10000, kSilent}, {5000, 1.0}});
  const auto from = gains.begin() + 5000;
  EXPECT_NEAR(*std::min_element(from, gains.end()), 0.6, 0.1);
  double steepest = 0.0;
  for (auto gain = from + 1; gain != gains.end(); ++gain) steepest = std::max(steepest, std::fabs(*gain - gain[-1]));
  EXPECT_NEAR(steepest, 1.0 / 2205, 1e-9);  // of the attack; the release is slower
  EXPECT_NEAR(gains.back(), 1.0, 1e-9);
}

template <typename Sample>
struct GateFloats : ::testing::Test {};
TYPED_TEST_SUITE(GateFloats, Floats);

TYPED_TEST(GateFloats, SamplesThatAreNotFiniteCountAsSilence) {
  using Limits = std::numeric_limits<TypeParam>;
  const auto gated_with = [](TypeParam bad) {
    auto data = SamplesOf<TypeParam>(Programme(20000, 1, 1500, 0));
    const std::size_t kAt[] = {0, 1, 2400, 7000, 7001};
    for (const std::size_t i : kAt) data[i] = bad;
    StartedGate started(gate::kPresets[5].settings, 1, 44100);
    RunAll(started.engine, data, 1);
    for (const std::size_t i : kAt) data[i] = 0;
    return data;
  };
  for (const TypeParam bad : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::max()}) {
    EXPECT_TRUE(SameBits(gated_with(bad), gated_with(0))) << bad;
  }
}

}  // namespace
}  // namespace tervan
