// The fast routine and the sweep of the meters against the plain routine, by bits.
#include "effects/compressor/compressor_kernel.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

#include "effects/compressor/compressor_test_settings.h"
#include "effects/compressor/peak_levels.h"
#include "testing/engine_rig.h"
#include "testing/programme.h"

namespace tervan::compressor {
namespace {

using namespace tervan::testing;

// Programme material, and in floats now and then what they may hold: alone, or to the end of a part.
template <typename Sample>
std::vector<Sample> HostileSamples(std::size_t channels, std::uint32_t seed) {
  std::vector<Sample> samples = SamplesOf<Sample>(Programme(4000, channels, 400, seed));
  using Limits = std::numeric_limits<Sample>;
  if constexpr (!Limits::is_integer) {
    const Sample kHostile[] = {Limits::quiet_NaN(), Limits::infinity(),   Limits::max(),  Sample(-1e37), Sample(-1e20),
                               Sample(-1e-9),       Limits::denorm_min(), -Limits::min(), Sample(-0.0),  Sample(1e30)};
    std::mt19937 random(seed);
    for (std::size_t i = 0; i < samples.size(); ++i) {
      if (random() % 400 != 0) continue;
      const std::size_t end = random() % 4 == 0 ? i + random() % 300 : i + 1;
      for (const Sample hostile = kHostile[random() % std::size(kHostile)]; i < end && i < samples.size(); ++i) {
        samples[i] = hostile;
      }
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
  State expected_state{.gain = c.start_gain, .low_pass = dynamics::kLowPassStart};
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
  const std::vector<CompressorSettings> all = ManySettings();
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
