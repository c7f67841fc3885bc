#include "effects/eq/eq_engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

#include "effects/eq/eq_model.h"
#include "testing/engine_rig.h"
#include "testing/programme.h"

namespace tervan {
namespace {

using namespace tervan::testing;
using StartedEq = StartedEngine<EqEngine, EqSettings>;

constexpr std::uint32_t kRates[] = {1, 8000, 22050, 44100, 96000, 192000, 768000};

// {gains, bandwidths, frequencies, modes, rolloffs, enables, selected band, bypass}
constexpr EqSettings kOff{
    {60, 60, -60, 0}, {10, 10, 10, 10}, {100, 300, 1000, 5000}, {1, 2, 2, 3}, {4, 1, 1, 4}, {0, 0, 0, 1}, 0, 0};
constexpr EqSettings kFourBands{
    {60, -40, 90, -60}, {10, 10, 5, 10}, {100, 300, 1000, 5000}, {1, 2, 2, 3}, {4, 1, 1, 3}, {1, 1, 1, 1}, 0, 0};

template <typename Sample>
std::vector<Sample> Equalised(const EqSettings& settings, std::vector<Sample> data, std::size_t channels) {
  StartedEq started(settings, channels, 44100);
  RunAll(started.engine, data, channels);
  return data;
}

template <typename Sample>
struct EqFormat : ::testing::Test {};
TYPED_TEST_SUITE(EqFormat, Formats);

// The engine in blocks, the model at one go; between the parts of a stream the settings change.
TYPED_TEST(EqFormat, SamplesEqualTheModelInEveryBit) {
  std::vector<EqSettings> all;
  for (const auto& preset : eq::kPresets) all.push_back(preset.settings);
  std::mt19937 random(3);
  while (all.size() < 200) all.push_back(random() % 8 == 0 ? kOff : RandomEqSettings(random, random() % 4));
  for (std::uint32_t i = 0; i + 2 < all.size(); ++i) {
    const std::uint32_t rate_hz = kRates[i % std::size(kRates)];
    const std::size_t channels = i / std::size(kRates) % 2 + 1;
    StartedEq started(all[i], channels, rate_hz);
    EqModel model(rate_hz, channels);
    for (std::uint32_t part = 0; part < 3; ++part) {
      SCOPED_TRACE(::testing::Message() << "settings " << i << " + " << part << ", channels: " << channels);
      const ProcessMode mode = i % 2 == 0 ? ProcessMode::kContinuous : ProcessMode::kDiscontinuity;
      if (part != 0) started.engine.LoadParameters(all[i + part], mode);
      model.Load(all[i + part]);
      auto actual = SamplesOf<TypeParam>(Programme(1200, channels, 300, i + part));
      auto expected = actual;
      RunAll(started.engine, actual, channels);
      model.Process(expected.data(), 1200);
      ASSERT_TRUE(SameBits(actual, expected));
    }
  }
}

TEST(EqEngine, StartAndAnotherFormatForgetWhatCameBefore) {
  const auto input = Programme(3000, 2, 700, 0);
  const auto expected = Equalised(kFourBands, input, 2);
  StartedEq started(kFourBands, 2, 44100);
  const auto forgot = [&] {
    auto output = input;
    RunAll(started.engine, output, 2);
    return SameBits(output, expected);
  };
  EXPECT_TRUE(forgot());
  EXPECT_FALSE(forgot());
  started.engine.Start();
  EXPECT_TRUE(forgot());
  started.engine.SetFormat(FormatOf(2, 44100));  // the same one
  EXPECT_FALSE(forgot());
  for (const StreamFormat& other : {FormatOf(2, 48000), FormatOf(1, 44100)}) {
    started.engine.SetFormat(other);
    started.engine.SetFormat(FormatOf(2, 44100));
    EXPECT_TRUE(forgot());
  }
}

// The flag is raised at every block while bursts die away, now and then with all bands off; whenever it ends the
// stream, the host goes on without it.
TEST(EqEngine, StopFlagEndsTheStreamWhileTheStatesAreQuiet) {
  constexpr std::uint32_t kBlock = 50;
  std::mt19937 random(5);
  int ends[2] = {};
  for (std::uint32_t i = 0; i < 40; ++i) {
    const std::size_t channels = i % 2 + 1;
    const EqSettings settings = RandomEqSettings(random, 0);
    StartedEq started(settings, channels, 44100);
    EqModel model(44100, channels);
    for (std::uint32_t block = 0; block < 100; ++block) {
      if (block % 5 == 0) {
        started.settings = block % 20 == 15 ? kOff : settings;
        started.engine.LoadParameters(started.settings, ProcessMode::kContinuous);
        model.Load(started.settings);
      }
      auto actual = SamplesOf<float>(Programme(kBlock, channels, 20, i + block / 20));
      for (std::size_t n = 0; i % 4 == 1 && n < actual.size(); n += 2) actual[n] = 0.0f;  // one channel sounds
      auto expected = actual;
      const bool quiet = model.quiet();
      std::uint32_t frames = kBlock;
      ASSERT_EQ(started.engine.ProcessFloat32(ProcessMode::kContinuous, actual.data(), &frames, true), quiet);
      ASSERT_EQ(frames, quiet ? 0 : kBlock);
      ASSERT_EQ(started.engine.loaded(), !quiet);
      if (quiet) RunAll(started.engine, actual, channels);
      model.Process(expected.data(), kBlock);
      ASSERT_TRUE(SameBits(actual, expected));
      ++ends[quiet];
    }
    started.engine.Start();
    std::uint32_t frames = 0;
    EXPECT_EQ(started.engine.ProcessFloat32(ProcessMode::kContinuous, nullptr, &frames, true), S_FALSE);
  }
  EXPECT_GT(std::min(ends[0], ends[1]), 300);
}

// From the response to an impulse, high enough for the floor of the states not to matter.
double GainAt(const EqSettings& settings, double hz) {
  constexpr double kHeight = 1e9;
  std::vector<double> response(1 << 15);
  response[0] = kHeight;
  response = Equalised(settings, response, 1);
  std::complex<double> sum = 0.0;
  for (std::size_t n = 0; n < response.size(); ++n) {
    sum += response[n] * std::polar(1.0, -2.0 * std::numbers::pi * hz * static_cast<double>(n) / 44100.0);
  }
  return std::abs(sum) / kHeight;
}

TEST(EqEngine, GainsAreThoseThatTheSettingsPromise) {
  enum { kLow = 1, kBand = 2, kHigh = 3 };
  constexpr double kTop = 22050;
  const auto db = [](double gain_db) { return std::pow(10.0, gain_db / 20.0); };
  const auto half_way = [&](double gain_db) { return std::sqrt((1.0 + db(2.0 * gain_db)) / 2.0); };
  const struct {
    std::int32_t mode, gain, frequency, rolloff;
    double hz, expected, tolerance;
  } kRows[] = {
      {kLow, 60, 1000, 1, 0, db(6), 1e-9},
      {kLow, 60, 1000, 1, 1000, half_way(6), 1e-9},
      {kLow, 60, 1000, 1, kTop, 1, 1e-9},
      {kHigh, -149, 3000, 1, 0, 1, 1e-9},
      {kHigh, -149, 3000, 1, 3000, half_way(-14.9), 1e-9},
      {kHigh, -149, 3000, 1, kTop, db(-14.9), 1e-9},
      {kLow, 60, 100, 2, 0, db(7.5), 1e-6},  // cascades reach 1.25 times their setting
      {kHigh, 60, 5000, 3, kTop, db(7.5), 1e-6},
      {kLow, 60, 100, 4, 0, db(7.5), 1e-6},
      {kLow, -150, 300, 1, 0, 0, 1e-9},  // the full cut of a shelf: a high-pass,
      {kLow, -150, 300, 1, 300, std::sqrt(0.5), 1e-9},
      {kHigh, -250, 3000, 4, kTop, 0, 1e-9},    // or a low-pass,
      {kLow, -150, 100, 2, 100, db(-3), 0.03},  // about 3 dB down at its corner
      {kLow, -150, 100, 3, 100, db(-3), 0.03},
      {kHigh, -150, 100, 4, 100, db(-3), 0.03},
      {kBand, 120, 1000, 4, 1000, db(12.09), 5e-3},  // 1 at the mean of the edges is a little more at the centre
      {kBand, 120, 1000, 1, 1000 / std::numbers::sqrt2, half_way(12.09), 5e-3},  // bandwidth: an octave
      {kBand, 120, 1000, 1, 1000 * std::numbers::sqrt2, half_way(12.09), 5e-3},
      {kBand, -150, 1000, 1, 100, 1, 0.02},
  };
  for (const auto& row : kRows) {
    const EqSettings settings{{row.gain}, {10}, {row.frequency}, {row.mode}, {row.rolloff}, {1}, 0, 0};
    EXPECT_NEAR(GainAt(settings, row.hz), row.expected, row.tolerance) << "row " << &row - kRows;
  }
}

template <typename Sample>
struct EqFloats : ::testing::Test {};
TYPED_TEST_SUITE(EqFloats, Floats);

TYPED_TEST(EqFloats, SamplesThatAreNotFiniteLeaveNoTrace) {
  using Limits = std::numeric_limits<TypeParam>;
  const auto input = SamplesOf<TypeParam>(Programme(12000, 2, 3000, 0));
  const auto undisturbed = Equalised(kFourBands, input, 2);
  for (const TypeParam bad : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
    auto disturbed = input;
    for (const std::size_t frame : {0, 700, 701, 703, 2000}) disturbed[2 * frame] = bad;
    EXPECT_TRUE(SameBits(Equalised(kOff, disturbed, 2), disturbed));
    const auto output = Equalised(kFourBands, disturbed, 2);
    for (std::size_t i = 0; i < output.size(); ++i) {
      ASSERT_EQ(std::isfinite(output[i]), std::isfinite(disturbed[i])) << i;
      if (i % 2 == 1) {  // the other channel never knows
        ASSERT_EQ(output[i], undisturbed[i]) << i;
      } else if (i >= std::size_t{2} * 6000) {  // more than 20 time constants of 42 Hz later
        ASSERT_NEAR(output[i], undisturbed[i], 1e-7) << i;
      }
    }
  }
}

}  // namespace
}  // namespace tervan
