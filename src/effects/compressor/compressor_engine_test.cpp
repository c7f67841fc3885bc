#include "effects/compressor/compressor_engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "effects/compressor/compressor_model.h"
#include "effects/compressor/compressor_test_settings.h"
#include "testing/engine_rig.h"
#include "testing/programme.h"

namespace tervan {
namespace {

using namespace tervan::testing;

struct FakeOwner : FakeSource<CompressorSettings, CompressorEngineOwner> {
  FakeOwner() { settings = {0, 0, 0, 1, 15, 250, 1, 0, 0, 0}; }
  void PublishMeters(const CompressorMeters& meters) override { published.push_back(meters); }
  void EndMeters() override { published.push_back(kIdleMeters); }
  bool IsWatched() const override { return watched; }

  bool watched = false;
  std::vector<CompressorMeters> published;
};

// An engine at the start of a stream, and its owner.
struct StartedCompressor : FakeOwner {
  StartedCompressor(const CompressorSettings& with, std::size_t channels, std::uint32_t rate_hz,
                    bool is_watched = false) {
    settings = with;
    watched = is_watched;
    engine.SetFormat(FormatOf(channels, rate_hz));
    engine.Start();
  }
  CompressorEngine engine{*this};
};

// The engine with one set of settings over a whole signal.
template <typename Sample>
std::vector<Sample> Compressed(const CompressorSettings& settings, std::vector<Sample> data, std::size_t channels,
                               bool watched = false) {
  StartedCompressor started(settings, channels, 44100, watched);
  RunAll(started.engine, data, channels);
  return data;
}

// {in dB, out dB, threshold dB, amount, attack ms, release ms, auto gain, smooth, reserved, bypass}
constexpr CompressorSettings kHeavy{3, 2, -30, 4, 5, 60, 1, 0, 0, 0};
constexpr CompressorSettings kHeavySmooth{3, 2, -30, 4, 5, 60, 1, 1, 0, 0};

constexpr std::uint32_t kRates[] = {1, 700, 8000, 44100, 48000, 768000};

double Db(double db) { return std::pow(10.0, db / 20.0); }

// The gain that a steady mono square wave settles to.
double SettledGain(const CompressorSettings& settings, double level) {
  std::vector<double> data(200000);
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = i / 50 % 2 == 0 ? level : -level;
  return std::fabs(Compressed(settings, data, 1).back()) / level;
}

void ExpectMeters(const CompressorMeters& actual, const CompressorMeters& expected, double tolerance) {
  EXPECT_NEAR(actual.input_left, expected.input_left, tolerance);
  EXPECT_NEAR(actual.input_right, expected.input_right, tolerance);
  EXPECT_NEAR(actual.output_left, expected.output_left, tolerance);
  EXPECT_NEAR(actual.output_right, expected.output_right, tolerance);
  EXPECT_NEAR(actual.reduction, expected.reduction, tolerance);
}

template <typename Sample>
struct CompressorFormat : ::testing::Test {};
TYPED_TEST_SUITE(CompressorFormat, Formats);

// Chunks through engine and model, with meters; new settings go in on the way, keeping the state or resetting it.
template <typename Sample>
void ExpectEqualsModel(const CompressorSettings& first, const CompressorSettings& second, std::size_t channels,
                       std::uint32_t rate_hz, std::uint32_t seed) {
  StartedCompressor started(first, channels, rate_hz, true);
  CompressorModel model(rate_hz, channels);
  model.Load(first, false);

  std::vector<Sample> actual = SamplesOf<Sample>(Programme(2000, channels, 300, seed));
  std::vector<Sample> expected = actual;
  std::vector<CompressorMeters> meters;
  std::size_t at = 0;
  for (std::size_t block = 0; block < std::size(kBlockFrames); ++block) {
    if (block == 3 || block == 5) {
      const CompressorSettings& settings = block == 3 ? second : first;
      started.engine.LoadParameters(settings, block == 3 ? ProcessMode::kContinuous : ProcessMode::kDiscontinuity);
      model.Load(settings, block == 3);
    }
    std::uint32_t frames = kBlockFrames[block];
    ASSERT_LE(at + frames * channels, actual.size());
    EXPECT_EQ(Process(started.engine, ProcessMode::kContinuous, &actual[at], &frames), S_OK);
    EXPECT_EQ(frames, kBlockFrames[block]);
    meters.push_back(model.Process(&expected[at], frames));
    at += frames * channels;
  }
  EXPECT_TRUE(SameBits(actual, expected));
  ASSERT_EQ(started.published.size(), meters.size());
  for (std::size_t i = 0; i < meters.size(); ++i) ExpectMeters(started.published[i], meters[i], 0.0);
}

TYPED_TEST(CompressorFormat, SamplesAndMetersEqualTheModelInEveryBit) {
  const std::vector<CompressorSettings> all = ManySettings();
  for (std::uint32_t i = 0; i < all.size(); ++i) {
    const std::uint32_t rate_hz = kRates[i % std::size(kRates)];
    const std::size_t channels = i / std::size(kRates) % 2 + 1;
    SCOPED_TRACE(::testing::Message() << "settings " << i << " at " << rate_hz << ", channels: " << channels);
    ExpectEqualsModel<TypeParam>(all[i], all[(i + 1) % all.size()], channels, rate_hz, i);
    if (::testing::Test::HasFailure()) return;
  }
}

TYPED_TEST(CompressorFormat, DrainTouchesNeitherBufferNorState) {
  const auto input = SamplesOf<TypeParam>(Programme(2000, 2, 700, 0));
  StartedCompressor started(kHeavy, 2, 44100);
  std::vector<TypeParam> head(input.begin(), input.begin() + 2000);
  std::vector<TypeParam> tail(input.begin() + 2000, input.end());
  RunAll(started.engine, head, 2);
  started.published.clear();
  started.changed = true;
  std::vector<TypeParam> buffer = input;
  std::uint32_t frames = 2000;
  EXPECT_EQ(Process(started.engine, ProcessMode::kDrain, buffer.data(), &frames), S_FALSE);
  EXPECT_EQ(frames, 0u);
  EXPECT_TRUE(SameBits(buffer, input));
  EXPECT_TRUE(started.published.empty());
  EXPECT_TRUE(started.changed);
  started.changed = false;
  RunAll(started.engine, tail, 2);
  head.insert(head.end(), tail.begin(), tail.end());
  EXPECT_TRUE(SameBits(head, Compressed(kHeavy, input, 2)));
}

// All but 32-bit floats look for changes themselves; for those the processing loop does.
TYPED_TEST(CompressorFormat, TakesWaitingSettingsAndResetsOnADiscontinuity) {
  constexpr bool kLooksItself = !std::is_same_v<TypeParam, float>;
  for (const ProcessMode mode : {ProcessMode::kContinuous, ProcessMode::kDiscontinuity}) {
    StartedCompressor started(FakeOwner{}.settings, 2, 44100);
    CompressorModel model(44100, 2, !kLooksItself);
    model.Load(started.settings, false);
    started.settings = kHeavySmooth;
    started.changed = true;
    if (kLooksItself) model.Load(kHeavySmooth, mode == ProcessMode::kContinuous);
    auto actual = SamplesOf<TypeParam>(Programme(2000, 2, 700, 0));
    auto expected = actual;
    std::uint32_t frames = 2000;
    Process(started.engine, mode, actual.data(), &frames);
    model.Process(expected.data(), frames);
    EXPECT_EQ(started.changed, !kLooksItself);
    EXPECT_TRUE(SameBits(actual, expected));
  }
}

// Stereo takes level and hold in single precision, mono does not.
TEST(CompressorEngine, UnwatchedFloatFollowsItsModelAndStaysByTheDoubleOne) {
  const std::vector<CompressorSettings> all = ManySettings();
  for (std::size_t n = 0; n < all.size(); ++n) {
    SCOPED_TRACE(n);
    const CompressorSettings& settings = all[n];
    const std::size_t channels = 2 - n % 2;
    const std::vector<float> input = SamplesOf<float>(Programme(4000, channels, 700, 0));
    std::vector<float> expected = input;
    std::vector<float> precise = input;
    CompressorModel model(44100, channels, channels == 2);
    CompressorModel precise_model(44100, channels);
    model.Load(settings, false);
    precise_model.Load(settings, false);
    model.Process(expected.data(), 4000);
    precise_model.Process(precise.data(), 4000);
    const std::vector<float> output = Compressed(settings, input, channels);
    ASSERT_TRUE(SameBits(output, expected));
    for (std::size_t i = 0; i < output.size(); ++i) {
      ASSERT_NEAR(output[i], precise[i], 1e-4f * std::fabs(precise[i])) << i;
    }
  }
}

TEST(CompressorEngine, AtUnityFloatsStayAsTheyAre) {
  const std::vector<float> input = {0.25f, -0.5f, -0.0f, 1e-40f, std::numeric_limits<float>::quiet_NaN(), 0.125f};
  for (const bool watched : {false, true}) {
    EXPECT_TRUE(SameBits(Compressed(compressor::kPresets[0].settings, input, 2, watched), input));
  }
}

TEST(CompressorEngine, UnitySettingsLeave16BitSamplesExactlyAsTheyAreOnceTheGainHasSettled) {
  const auto input = SamplesOf<std::int16_t>(Programme(200000, 2, 20000, 0));
  const auto output = Compressed(compressor::kPresets[0].settings, input, 2);
  const auto settled = 2 * 100000;
  EXPECT_TRUE(std::equal(input.begin() + settled, input.end(), output.begin() + settled));
}

TEST(CompressorEngine, OutputLevelRunsStraightFromTheThresholdToTheFullScaleOutputOfTheRatio) {
  for (const double threshold_db : {-60.0, -40.0, -20.0, -6.0, -3.0}) {
    for (const double amount : {1.5, 4.0, 25.0, 50.0}) {
      const auto settings =
          CompressorSettings{0, 0, static_cast<float>(threshold_db), static_cast<float>(amount), 5, 20, 0, 0, 0, 0};
      const double thr = Db(threshold_db);
      const double full = amount == 50.0 ? thr : Db(threshold_db * (1.0 - 1.0 / amount));
      for (const double part : {-0.5, 0.001, 0.3, 0.7, 1.0}) {
        SCOPED_TRACE(::testing::Message() << threshold_db << " dB, " << amount << " at " << part);
        const double level = part < 0.0 ? thr * 0.5 : thr + part * (1.0 - thr);
        const double expected = part < 0.0 ? level : thr + part * (full - thr);
        EXPECT_NEAR(SettledGain(settings, level) * level, expected, 1e-9);
      }
    }
  }
}

TEST(CompressorEngine, SteadySquareWavesSettleAtTheGainsThatTheirSettingsPromise) {
  const struct {
    const char* what;
    CompressorSettings settings;
    double level_db;
    double gain_db;
  } kRows[] = {
      {"make-up 0.7 x 0.75 x 20 over 15 dB of compression", {0, 0, -20, 4, 15, 250, 1, 0, 0, 0}, 0, 10.5 - 15},
      {"hard limiter with make-up", {0, 0, -6, 50, 0, 250, 1, 0, 0, 0}, 0, -6 + 0.7 * 6},
      {"output gain behind the limiter", {0, 4, -6, 50, 0, 250, 0, 0, 0, 0}, 0, -2},
      {"input gain into the limiter", {10, 0, -6, 50, 0, 250, 0, 0, 0, 0}, -10, -6 + 10},
      {"a threshold above -3 dB: below it", {0, 0, -1, 8, 15, 250, 0, 0, 0, 0}, -1.01, 0},
      {"a threshold above -3 dB: limiting at it", {0, 0, -1, 50, 15, 250, 0, 0, 0, 0}, 0, -1},
      {"the low-pass passes a steady gain", {0, 0, -6, 50, 0, 250, 0, 1, 0, 0}, 0, -6},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    const double gain = SettledGain(row.settings, Db(row.level_db));
    EXPECT_NEAR(20.0 * std::log10(gain), row.gain_db, 1e-6);
  }
}

// A release of no time lets the gain follow its target: while silence lets the held level decay, the probe shows the
// target.
TEST(CompressorEngine, HeldLevelDecaysByAThousandthPerFrameDownToTheThreshold) {
  const CompressorSettings settings{0, 0, -20, 4, 5, 0, 0, 0, 0, 0};
  constexpr std::size_t kLoud = 30000;
  constexpr double kProbe = 1e-6;
  std::vector<double> data(kLoud, 1.0);
  data.resize(kLoud + 3000, kProbe);
  const std::vector<double> output = Compressed(settings, data, 1);
  const double thr = Db(-20);
  const double slope = (1.0 - Db(-15)) / (1.0 - thr);
  double level = 1.0;
  for (std::size_t i = kLoud; i < data.size(); ++i) {
    const double next =
        level * 0.999;  // the hold after a peak is one step down; the gain still belongs to the level before
    const double expected = next > thr ? slope * thr / next + 1.0 - slope : 1.0;
    ASSERT_NEAR(output[i] / kProbe, expected, 1e-6) << i - kLoud;
    if (next > thr) level = next;
  }
}

TEST(CompressorEngine, MetersDivideGainsOutAndKnowSilence) {
  const struct {
    CompressorSettings settings;
    CompressorMeters expected;
  } kRows[] = {
      {{2, 3, -6, 50, 0, 250, 1, 0, 0, 0}, {Db(2), 0.5 * Db(2), Db(-6 + 4.2 + 3), 0.5 * Db(-6 + 4.2 + 3), Db(-8)}},
      {{0, 0, -1, 50, 0, 250, 0, 0, 0, 0}, {1, 0.5, Db(-1), 0.5 * Db(-1), Db(-1)}},
      {{6, 6, -6, 50, 0, 250, 1, 0, 0, 1}, {Db(6), 0.5 * Db(6), 1, 0.5, 1}},
      {{-60, 0, -6, 50, 0, 250, 0, 0, 0, 0}, {0, 0, 0, 0, 1}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(&row - kRows);
    StartedCompressor started(row.settings, 2, 44100);
    std::vector<double> data(80000);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = i % 2 == 0 ? 1.0 : -0.5;
    RunAll(started.engine, data, 2);
    ExpectMeters(started.published.back(), row.expected, 1e-6);
  }
}

TEST(CompressorEngine, PageThatComesAndGoesDoesNotMoveTheGain) {
  const std::vector<float> input = SamplesOf<float>(Programme(40000, 2, 3000, 0));
  for (const CompressorSettings& settings : {kHeavy, kHeavySmooth}) {
    StartedCompressor started(settings, 2, 44100);
    std::vector<float> data = input;
    for (std::size_t at = 0; at < data.size(); at += 1000) {
      started.watched = !started.watched;
      std::uint32_t frames = 500;
      started.engine.ProcessFloat32(ProcessMode::kContinuous, &data[at], &frames, false);
    }
    const std::vector<float> undisturbed = Compressed(settings, input, 2);
    for (std::size_t i = 0; i < data.size(); ++i)
      ASSERT_NEAR(data[i], undisturbed[i], 1e-4f * std::fabs(undisturbed[i])) << i;
  }
}

TEST(CompressorEngine, HugeLevelsDoNotOutliveAChangeOfTheFormat) {
  for (const std::size_t channels : {1u, 2u}) {
    StartedCompressor started(kHeavy, channels, 44100), fresh(kHeavy, channels, 44100);
    std::vector<double> huge(2 * channels, 1e200);
    RunAll(started.engine, huge, channels);
    started.engine.SetFormat(FormatOf(channels, 44100));
    std::vector<float> after(channels * 44100, 0.05f), expected = after;
    RunAll(started.engine, after, channels);
    RunAll(fresh.engine, expected, channels);
    EXPECT_NEAR(after.back(), expected.back(), 1e-6f);
  }
}

TEST(CompressorEngine, StopFlagEndsTheStreamAndAsksForNewSettings) {
  StartedCompressor started(FakeOwner{}.settings, 2, 44100);
  const std::vector<float> input = SamplesOf<float>(Programme(500, 2, 700, 0));
  std::vector<float> data = input;
  std::uint32_t frames = 500;
  EXPECT_EQ(started.engine.ProcessFloat32(ProcessMode::kDrain, data.data(), &frames, true), S_FALSE);
  EXPECT_TRUE(started.engine.loaded());
  EXPECT_TRUE(started.published.empty());

  frames = 500;
  EXPECT_EQ(started.engine.ProcessFloat32(ProcessMode::kContinuous, data.data(), &frames, true), S_FALSE);
  EXPECT_EQ(frames, 0u);
  EXPECT_FALSE(started.engine.loaded());
  EXPECT_TRUE(SameBits(data, input));
  ASSERT_EQ(started.published.size(), 1u);
  EXPECT_EQ(std::memcmp(&started.published[0], &kIdleMeters, sizeof kIdleMeters), 0);

  started.settings = kHeavy;  // not flagged as a change
  frames = 500;
  EXPECT_EQ(started.engine.ProcessFloat32(ProcessMode::kDiscontinuity, data.data(), &frames, false), S_OK);
  EXPECT_EQ(frames, 500u);
  EXPECT_TRUE(started.engine.loaded());
  EXPECT_TRUE(SameBits(data, Compressed(kHeavy, input, 2)));
}

template <typename Sample>
struct CompressorFloats : ::testing::Test {};
TYPED_TEST_SUITE(CompressorFloats, Floats);

// Settled again after ten releases of 60 ms.
TYPED_TEST(CompressorFloats, SamplesThatAreNotFiniteLeaveNoTrace) {
  using Limits = std::numeric_limits<TypeParam>;
  const auto input = SamplesOf<TypeParam>(Programme(60000, 2, 3000, 2));
  for (const TypeParam bad : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::max()}) {
    for (const bool watched : {false, true}) {
      for (const CompressorSettings& settings : {kHeavy, kHeavySmooth}) {
        SCOPED_TRACE(std::to_string(bad) + (watched ? " watched" : ""));
        auto undisturbed = input, output = input;
        const std::size_t kAt[] = {0, 1, 7000, 7001, 7003, 9998};
        for (const std::size_t i : kAt) output[i] = bad;
        StartedCompressor clean(settings, 2, 44100, watched), disturbed(settings, 2, 44100, watched);
        RunAll(clean.engine, undisturbed, 2);
        RunAll(disturbed.engine, output, 2);
        for (const std::size_t i : kAt) output[i] = 0;
        for (const TypeParam sample : output) ASSERT_TRUE(std::isfinite(sample));
        for (const CompressorMeters& m : disturbed.published) ASSERT_TRUE(std::isfinite(m.input_left + m.output_left));
        for (std::size_t i = 10000 + 2 * 26460; i < output.size(); ++i) {
          ASSERT_NEAR(output[i], undisturbed[i], 1e-6 * std::fabs(undisturbed[i])) << i;
        }
      }
    }
  }
}

}  // namespace
}  // namespace tervan
