// The fast routine and the sweep of the meters against the plain routine, by bits.
#include "effects/compressor/compressor_kernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <vector>

#include "effects/compressor/compressor_test_settings.h"
#include "effects/compressor/peak_levels.h"
#include "testing/engine_rig.h"
#include "testing/programme.h"

namespace tervan::compressor {
namespace {

using namespace tervan::testing;

constexpr std::size_t kFrames = 4000;

// A square wave in small steps up and down, now and then in large ones: levels that just reach what is held, and
// valleys at every depth, down to their floor.
std::vector<double> Staircase(std::size_t channels, std::mt19937& random) {
  std::vector<double> signal(kFrames * channels);
  double level = 0.0;
  for (std::size_t i = 0; i < signal.size(); ++i) {
    if (random() % 200 == 0) level = std::min(1.0, level * (0.96 + 0.0001 * static_cast<double>(random() % 600)));
    if (i == 0 || random() % 2000 == 0) level = std::exp2(-static_cast<double>(random() % 8 * (random() % 8)));
    signal[i] = i % 2 == 0 ? level : -level;
  }
  return signal;
}

// In floats there is also what they may hold, alone or for a while.
template <typename Sample>
std::vector<Sample> HostileSamples(std::size_t channels, std::uint32_t seed) {
  std::mt19937 random(seed);
  auto samples =
      SamplesOf<Sample>(seed % 2 == 0 ? Programme(kFrames, channels, 400, seed) : Staircase(channels, random));
  using Limits = std::numeric_limits<Sample>;
  if constexpr (!Limits::is_integer) {
    constexpr Sample kHostile[] = {Limits::quiet_NaN(), Limits::infinity(),   Limits::max(),
                                   -Limits::min(),      Limits::denorm_min(), Sample(-2e37),
                                   Sample(1e20),        Sample(-1e-9),        Sample(-0.0)};
    for (std::size_t i = seed % 3 == 0 ? 0 : samples.size(); i < samples.size(); ++i) {
      if (random() % 1000 != 0) continue;
      const Sample hostile = kHostile[random() % std::size(kHostile)];
      const std::size_t run = random() % 2 == 0 ? 1 : random() % 300;
      std::fill_n(samples.begin() + static_cast<std::ptrdiff_t>(i), std::min(run, samples.size() - i), hostile);
    }
  }
  return samples;
}

void ExpectSameState(const State& a, const State& b) {
  const auto bits = [](const State& s) {
    return std::vector<double>{s.gain, s.hold, s.reduction, s.valley, s.low_pass, static_cast<double>(s.hold_single)};
  };
  EXPECT_TRUE(SameBits(bits(a), bits(b)));
}

template <typename Codec, std::size_t kChannels, bool kSingle>
void ExpectEqualsPlain(const CompressorCoefficients& c, std::uint32_t seed) {
  using Sample = typename Codec::Sample;
  std::vector<Sample> expected = HostileSamples<Sample>(kChannels, seed);
  std::vector<Sample> actual = expected;
  State expected_state{.gain = 1.0, .low_pass = dynamics::kLowPassStart};
  State state = expected_state;
  std::size_t at = 0;
  for (std::size_t block = 0; at < actual.size(); ++block) {
    const auto left = static_cast<std::uint32_t>((actual.size() - at) / kChannels);
    const std::uint32_t frames = std::min(left, kBlockFrames[block % std::size(kBlockFrames)]);
    PeakMeter meter;
    RunPlain<Codec, kChannels, kSingle>(c, expected_state, &expected[at], frames, meter);
    const PeakLevels input = PeakLevelsOf<Codec, kChannels>(&actual[at], frames);
    if (block % 2 == 0) {
      const double least_gain = RunFrames<Codec, kChannels, kSingle, true>(c, state, &actual[at], frames);
      EXPECT_EQ(least_gain, meter.least_gain);
    } else {
      RunFrames<Codec, kChannels, kSingle, false>(c, state, &actual[at], frames);
    }
    const PeakLevels output = PeakLevelsOf<Codec, kChannels>(&actual[at], frames);
    for (std::size_t channel = 0; channel < kChannels; ++channel) {
      EXPECT_EQ(input[channel], meter.input[channel]);
      EXPECT_EQ(output[channel], meter.output[channel]);
    }
    ExpectSameState(state, expected_state);
    at += frames * kChannels;
  }
  EXPECT_TRUE(SameBits(actual, expected));
}

template <typename Codec>
struct CompressorKernel : ::testing::Test {};
using Codecs = ::testing::Types<Pcm8Codec, Pcm16Codec, Pcm32Codec, Float32Codec, Float64Codec>;
TYPED_TEST_SUITE(CompressorKernel, Codecs);

TYPED_TEST(CompressorKernel, EqualsThePlainRoutineInEveryBit) {
  std::vector<CompressorSettings> all = ManySettings();
  all[0] = {0, -60, -30, 4, 0, 0, 0, 0, 0, 0};       // fades out
  all[3] = {0, -59, -59, 50, 0, 1e30f, 0, 1, 0, 0};  // fades behind the low-pass, at levels of 1e20
  for (std::uint32_t i = 0; i < all.size(); ++i) {
    SCOPED_TRACE(i);
    const CompressorCoefficients c = DesignCompressor(all[i], i % 3 == 0 ? 8000 : 44100);
    ExpectEqualsPlain<TypeParam, 1, false>(c, i);
    ExpectEqualsPlain<TypeParam, 2, false>(c, i);
    ExpectEqualsPlain<TypeParam, 2, true>(c, i);
    if (::testing::Test::HasFailure()) return;
  }
}

}  // namespace
}  // namespace tervan::compressor
