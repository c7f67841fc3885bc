#include "effects/compressor/compressor_coefficients.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace tervan {
namespace {

// {in dB, out dB, threshold dB, amount, attack ms, release ms, auto gain, smooth, reserved, bypass}
constexpr CompressorSettings kPlain{0, 0, -20, 4, 20, 300, 0, 0, 0, 0};

TEST(CompressorCoefficients, TimesAreWholeFramesForNineTenthsOfAStepOrSteps) {
  const struct {
    float attack_ms, release_ms;
    std::int32_t smooth;
    std::uint32_t rate_hz;
    double attack_frames, release_frames;  // 0: a step
  } kRows[] = {
      {0, 0, 0, 44100, 44, 0},  // no attack time is one of a millisecond,
      {0, 0, 0, 999, 0, 0},     // where that lasts a frame
      {0, 0, 1, 44100, 0, 0},   // and not before the low-pass
      {0.02f, 0.02f, 0, 44100, 0, 0},
      {0.04f, 0.04f, 0, 44100, 1, 1},
      {0.04f, 0.04f, 1, 44100, 0, 0},
      {10.9f, 10.9f, 0, 1000, 10, 10},     // whole frames, truncated
      {72.5f, 145, 0, 48000, 3480, 6960},  // 3479 and 6959 if the milliseconds became seconds first
      {-5, -5, 0, 44100, 0, 0},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(testing::Message() << row.attack_ms << " ms at " << row.rate_hz);
    CompressorSettings settings = kPlain;
    settings.attack_time_ms = row.attack_ms;
    settings.release_time_ms = row.release_ms;
    settings.smooth_saturation = row.smooth;
    const CompressorCoefficients c = DesignCompressor(settings, row.rate_hz);
    EXPECT_EQ(c.attack, row.attack_frames > 0 ? std::pow(0.1, 1.0 / row.attack_frames) : 0.0);
    EXPECT_EQ(c.release, row.release_frames > 0 ? std::pow(0.1, 1.0 / row.release_frames) : 0.0);
  }
}

// The 0.05 of the gains is a single-precision number, that of the threshold is not.
TEST(CompressorCoefficients, GainsTakeTheSinglePrecisionFactor) {
  CompressorSettings settings = kPlain;
  settings.input_gain_db = 20;
  const CompressorCoefficients c = DesignCompressor(settings, 44100);
  EXPECT_EQ(c.in_gain, std::pow(10.0, 20.0 * static_cast<double>(0.05f)));
  EXPECT_NEAR(c.threshold_in * c.in_gain, 0.1, 1e-15);
}

TEST(CompressorCoefficients, UnityNeedsExactlyTheNeutralGainsAndRatio) {
  constexpr float kTiny = std::numeric_limits<float>::denorm_min();
  const struct {
    float in_db, out_db, amount;
    bool unity;
  } kRows[] = {{0, 0, 1, true},       {-0.0f, -0.0f, 1, true},   {kTiny, 0, 1, false},
               {0, -kTiny, 1, false}, {0, 0, 1.0000001f, false}, {0, 0, 0.5f, false}};
  for (const auto& row : kRows) {
    CompressorSettings settings = kPlain;
    settings.input_gain_db = row.in_db;
    settings.output_gain_db = row.out_db;
    settings.amount = row.amount;
    EXPECT_EQ(DesignCompressor(settings, 44100).unity, row.unity)
        << row.in_db << ' ' << row.out_db << ' ' << row.amount;
  }
}

}  // namespace
}  // namespace tervan
