#include "effects/eq/eq_kernel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>
#include <vector>

#include "effects/eq/eq_model.h"
#include "effects/eq/eq_plain.h"
#include "shell/sample_codec.h"
#include "support/simd_level.h"
#include "testing/engine_rig.h"
#include "testing/programme.h"

namespace tervan::eq {
namespace {

using namespace tervan::testing;

// Sections in a row, and states for each of their stages.
struct Stages {
  Stages(const EqSettings& settings, std::vector<StatePair>& states) {
    for (std::uint32_t band = 0; band < kEqBands; ++band) {
      const EqBandDesign design = DescribeBand(settings, band, 44100);
      if (design.gain_db != 0.0) sections.push_back(DesignSection(design));
    }
    for (const EqSection& section : sections) {
      for (std::int32_t i = 0; i < section.stages; ++i) {
        StatePair* const pair = &states[2 * runs.size()];
        runs.push_back({&section, {pair, pair + 1}});
      }
    }
  }
  std::vector<EqSection> sections;
  std::vector<StageRun> runs;
};

// Levels from full scale to far below the floor of the states, where channel 1 may be silent; in floats also what is no
// audio.
template <typename Sample>
std::vector<Sample> Material(std::mt19937& random, std::size_t frames, std::size_t channels) {
  constexpr double kLevels[] = {1.0, 1.0, 1e-4, 1e-8, 1e-9, 1e-12, 0.0};
  std::vector<double> signal = Programme(frames, channels, 1 + random() % 2000, random());
  const double level = kLevels[random() % std::size(kLevels)];
  const bool one_sounds = random() % 4 == 0;
  for (std::size_t i = 0; i < signal.size(); ++i) signal[i] *= one_sounds && i % 2 == 1 ? 0.0 : level;
  std::vector<Sample> samples = SamplesOf<Sample>(signal);
  if constexpr (std::is_floating_point_v<Sample>) {
    using Limits = std::numeric_limits<Sample>;
    const Sample hostile[] = {Limits::quiet_NaN(), Limits::infinity(),   -Limits::infinity(),
                              Limits::max(),       -Limits::max(),       static_cast<Sample>(3e29),
                              Limits::min(),       Limits::denorm_min(), static_cast<Sample>(-0.0)};
    const std::uint32_t one_in = 3u << random() % 12;
    const bool all = random() % 3 == 0;
    for (Sample& sample : samples) {
      if (random() % one_in == 0) sample = hostile[all ? random() % std::size(hostile) : std::size(hostile) - 1];
    }
  }
  return samples;
}

template <typename Codec, std::size_t kChannels>
void CompareWithPlainPasses(SimdLevel level) {
  constexpr std::uint32_t kLengths[] = {0, 1, 2, 3, 7, 13, 64, 100, 333, 1024, 1025, 2500};
  constexpr double kStates[] = {0.0, 1.0, -1e-3, 0x1p-32, -0x1p-33, 3e-10, 1e29, -1e30, 1e-310};
  std::mt19937 random(7);
  std::vector<StatePair> states(std::size_t{2} * kEqBands * kEqMaxStages);
  for (std::uint32_t part = 0; part < 400; ++part) {
    if (part % 8 == 0) {
      const bool all_kinds = random() % 4 == 0;
      for (StatePair& pair : states) {
        const auto pick = [&] { return all_kinds ? kStates[random() % std::size(kStates)] : 0.0; };
        pair = {pick(), pick()};
      }
    }
    std::vector<StatePair> plain_states = states;
    const EqSettings settings = RandomEqSettings(random, part % 4 == 0 ? 5 : 0);
    const Stages fast(settings, states), plain(settings, plain_states);
    const std::uint32_t frames = kLengths[random() % std::size(kLengths)];
    auto actual = Material<typename Codec::Sample>(random, frames, kChannels);
    auto expected = actual;
    RunStages<Codec, kChannels>(level, fast.runs, actual.data(), frames);
    RunStagesPlainly<Codec, kChannels>(plain.runs, expected.data(), frames);
    SCOPED_TRACE(::testing::Message() << "part " << part << ", frames: " << frames << ", stages: " << fast.runs.size());
    ASSERT_TRUE(SameBits(actual, expected));
    ASSERT_EQ(std::memcmp(states.data(), plain_states.data(), states.size() * sizeof(StatePair)), 0);
  }
}

template <typename Codec>
struct EqKernel : ::testing::Test {};
using Codecs = ::testing::Types<Pcm8Codec, Pcm16Codec, Pcm32Codec, Float32Codec, Float64Codec>;
TYPED_TEST_SUITE(EqKernel, Codecs);

TYPED_TEST(EqKernel, SamplesAndStatesAreThoseOfThePlainPassesInEveryBit) {
  for (const SimdLevel level : {SimdLevel::kSse2, BestSimdLevel()}) {
    SCOPED_TRACE(static_cast<int>(level));
    CompareWithPlainPasses<TypeParam, 1>(level);
    CompareWithPlainPasses<TypeParam, 2>(level);
  }
}

}  // namespace
}  // namespace tervan::eq
