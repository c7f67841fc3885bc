// Input and settings that no decent host sends.

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
#include <vector>

#include "effects/compressor/compressor_engine.h"
#include "effects/compressor/compressor_test_rig.h"
#include "testing/programme.h"

namespace tervan {
namespace {

using namespace tervan::testing;

template <typename Sample>
struct CompressorFloats : ::testing::Test {};
using Floats = ::testing::Types<float, double>;
TYPED_TEST_SUITE(CompressorFloats, Floats);

TYPED_TEST(CompressorFloats, SamplesThatAreNotFiniteLeaveNoTrace) {
  using Limits = std::numeric_limits<TypeParam>;
  const auto input = SamplesOf<TypeParam>(Programme(60000, 2, 3000, 2));
  for (const TypeParam bad : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::max()}) {
    for (const bool watched : {false, true}) {
      for (const CompressorSettings& settings : {kHeavy, kHeavySmooth}) {
        SCOPED_TRACE(std::to_string(bad) + (watched ? " watched" : ""));
        const auto undisturbed = Compressed(settings, input, 2, 44100, watched);
        auto disturbed = input;
        for (const std::size_t i : {0u, 1u, 7000u, 7001u, 7003u, 9998u}) disturbed[i] = bad;
        const auto output = Compressed(settings, disturbed, 2, 44100, watched);
        for (std::size_t i = 0; i < output.size(); ++i) {
          ASSERT_TRUE(std::isfinite(output[i]) || disturbed[i] == bad || std::isnan(disturbed[i])) << i;
        }
        // Ten releases of 60 ms later.
        for (std::size_t i = 10000 + 2 * 26460; i < output.size(); ++i) {
          ASSERT_NEAR(output[i], undisturbed[i], 1e-6 * std::fabs(undisturbed[i])) << i;
        }
      }
    }
  }
}

TYPED_TEST(CompressorFloats, ResetForgetsWhateverCameBefore) {
  const auto input = SamplesOf<TypeParam>(Programme(3000, 2, 700, 0));
  StartedCompressor started(kHeavySmooth, 2, 44100);
  std::vector<TypeParam> loud(4000, TypeParam{1e30});
  RunAll(started.engine, loud, 2);
  started.engine.LoadParameters(kHeavySmooth, ProcessMode::kDiscontinuity);
  auto output = input;
  RunAll(started.engine, output, 2);
  EXPECT_TRUE(SameBits(output, Compressed(kHeavySmooth, input, 2)));
}

// Whatever bytes a stored record holds: no setter would let them in, but a load does.
TYPED_TEST(CompressorFloats, AbsurdRecordsGiveFiniteOutput) {
  constexpr std::uint32_t kWords[] = {0xFFFFFFFF, 0x7F800000, 0xFF800000, 0x7F7F7F7F, 0xFF7FFFFF, 0x7E967699,
                                      0xFE967699, 0x00000001, 0x80000000, 0x43480000, 0xC3480000};
  const auto input = SamplesOf<TypeParam>(Programme(600, 2, 100, 0));
  std::mt19937 random(7);
  for (int i = 0; i < 3000; ++i) {
    std::uint32_t words[10];
    for (std::uint32_t& word : words) word = random() % 4 == 0 ? random() : kWords[random() % std::size(kWords)];
    if (i < static_cast<int>(std::size(kWords))) std::fill(std::begin(words), std::end(words), kWords[i]);
    words[9] = 0;  // no bypass
    CompressorSettings settings{};
    std::memcpy(&settings, words, sizeof settings);
    constexpr std::uint32_t kAnyRate[] = {0, 1, 44100, 768000, 0xFFFFFFFF};
    const std::uint32_t rate_hz = kAnyRate[i % std::size(kAnyRate)];
    SCOPED_TRACE(Text(settings) + " at " + std::to_string(rate_hz));
    StartedCompressor started(settings, 2, rate_hz, i % 2 == 0);
    auto output = input;
    RunAll(started.engine, output, 2);
    for (const TypeParam sample : output) ASSERT_TRUE(std::isfinite(sample));
    for (const CompressorMeters& meters : started.published) {
      for (const double value :
           {meters.input_left, meters.input_right, meters.output_left, meters.output_right, meters.reduction}) {
        ASSERT_TRUE(std::isfinite(value));
      }
    }
  }
}

}  // namespace
}  // namespace tervan
