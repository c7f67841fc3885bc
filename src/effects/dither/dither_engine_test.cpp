#include "effects/dither/dither_engine.h"

#include <emmintrin.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "effects/dither/dither_model.h"
#include "effects/dither/dither_settings.h"
#include "testing/engine_rig.h"
#include "testing/programme.h"

namespace tervan {
namespace {

using namespace tervan::testing;

constexpr std::uint32_t kSeed = 7;
constexpr std::uint32_t kTypes = 6, kShapings = 4;

// Takes the numbers of enumerators, and beyond.
CLmDither Engine(std::uint32_t bits, std::uint32_t type, std::uint32_t shaping) {
  return CLmDither(bits, static_cast<DitherType>(type), static_cast<NoiseShaping>(shaping), [] { return kSeed; });
}

std::vector<float> Input() {
  auto input = SamplesOf<float>(Programme(900, 2, 150, 0));
  for (float& x : input) x *= 0.98f;
  return input;
}

// In LSB, at every word length, without noise.
TEST(DitherEngine, RoundsToEvenAndFeedsErrorsBack) {
  const struct {
    std::uint32_t shaping, frames_a_call;
    std::vector<double> input, expected;
  } kRows[] = {
      {0, 9, {0.5, 1.5, 2.5, -0.5, -1.5, 0.499999, 0.500001, -0.75, 77}, {0, 2, 2, 0, -2, 0, 1, -1, 77}},
      {1, 8, std::vector(8, 0.25), {0, 0, 1, 0, 0, 0, 1, 0}},
      {2, 6, std::vector(6, 0.25), {0, 0, 1, -1, 1, 0}},
      {3, 5, std::vector(5, 0.25), {0, 0, 1, 0, 0}},
      // Errors below 2^-32 tip the balance within a call, but do not outlive it.
      {1, 2, {0x1p-33, 0.5}, {0, 1}},
      {1, 1, {0x1p-33, 0.5}, {0, 0}},
      {1, 1, {0x1p-32, 0.5}, {0, 1}},
      {2, 1, {0x1p-33, 0.5}, {0, 0}},
      {2, 3, {-0x1p-32, 0x1p-32, 0.5}, {0, 0, 1}},
      {2, 1, {-0x1p-32, 0x1p-32, 0.5}, {0, 0, 0}},
      {2, 1, {-0x1p-31, 0x1p-31, 0.5}, {0, 0, 1}},
  };
  for (const std::uint32_t bits : dither::kWordLengthBits) {
    for (const auto& row : kRows) {
      CLmDither engine = Engine(bits, 0, row.shaping);
      std::vector<double> samples = row.input;
      for (double& sample : samples) sample *= std::exp2(1.0 - bits);
      for (std::size_t at = 0; at < samples.size(); at += row.frames_a_call) {
        engine.Process(&samples[at], row.frames_a_call, 1);
      }
      for (double& sample : samples) sample *= std::exp2(bits - 1.0);
      EXPECT_EQ(samples, row.expected) << bits << " bits, row " << &row - kRows;
    }
  }
}

// Types, shapings and channels go one past their last: calls without effect leave the state, too.
TEST(DitherEngine, EqualsTheModelInEveryBitWhateverTheControlWord) {
  const unsigned usual = _mm_getcsr();
  const auto input = Input();
  for (std::uint32_t i = 0; i < 2 * 4 * (kTypes + 1) * (kShapings + 1); ++i) {
    const std::uint32_t channels = i / 2 % 4, type = i / 8 % (kTypes + 1), shaping = i / 8 / (kTypes + 1);
    const bool valid = type < kTypes && shaping < kShapings;
    auto actual = input, expected = input;
    CLmDither engine = Engine(32, type, shaping);
    DitherModel model(32, type, shaping, kSeed);
    _mm_setcsr((usual & ~_MM_ROUND_MASK) | (i % 2 == 0 ? _MM_ROUND_DOWN : _MM_ROUND_UP | _MM_FLUSH_ZERO_ON));
    engine.Process(actual.data(), 300, channels);
    _mm_setcsr(usual);
    engine.Process(&actual[600], 600, 2);
    if (valid && (channels == 1 || channels == 2)) model.Process(expected.data(), 300, channels);
    if (valid) model.Process(&expected[600], 600, 2);
    EXPECT_TRUE(SameBits(actual, expected)) << type << shaping << channels << ' ' << i % 2;
  }
}

TEST(DitherEngine, OverloadAndNoNumbersAreBoundedAndForgotten) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const std::uint32_t bits : {8u, 24u, 32u}) {
    const double lsb = std::exp2(1.0 - bits);
    for (std::uint32_t shaping = 0; shaping < kShapings; ++shaping) {
      for (const double bad : {1.0, -1.0, 1.5, -300.0, 1e300, kInfinity, -kInfinity, std::nan("")}) {
        SCOPED_TRACE(::testing::Message() << bits << " bits, shaping " << shaping << ", " << bad);
        CLmDither engine = Engine(bits, 0, shaping);
        std::vector<double> samples(1000, bad);
        engine.Process(samples.data(), 500, 2);
        const double end = std::isnan(bad) ? 0.0 : std::clamp(bad, -0x1p31 * lsb, (0x1p31 - 1) * lsb);
        for (const double y : samples) ASSERT_NEAR(y, end, 1.5 * lsb);

        samples.assign(200, 0.3);
        engine.Process(samples.data(), 100, 2);
        for (std::size_t i = 0; i < samples.size(); ++i) ASSERT_NEAR(samples[i], 0.3, (i < 4 ? 32 : 1.5) * lsb) << i;
      }
    }
  }
}

TEST(DitherEngine, CopiesGoOnAlikeAndIndependently) {
  for (std::uint32_t head = 80; head < 100; ++head) {  // of what was before, some outputs show every bit
    auto input = Input(), first_out = input, second_out = input;
    CLmDither first = Engine(8, 4, 2);
    CLmDither second = Engine(16, 0, 0);
    first.Process(input.data(), head, 2);
    second = first;
    const CLmDither& itself = first;
    first = itself;
    first.Process(first_out.data(), 900, 2);
    second.Process(second_out.data(), 900, 2);
    EXPECT_TRUE(SameBits(first_out, second_out)) << head;
  }
}

}  // namespace
}  // namespace tervan
