// What the noise does to the sound, measured. Bounds are five standard deviations; the seed is fixed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

#include "effects/dither/dither_engine.h"

namespace tervan {
namespace {

constexpr std::size_t kFrames = 1 << 18;

// Output less input, in LSB.
std::vector<double> Errors(std::uint32_t type, std::uint32_t shaping, const std::vector<double>& input_lsb) {
  std::vector<double> samples = input_lsb;
  for (double& sample : samples) sample *= 0x1p-15;
  CLmDither engine(16, static_cast<DitherType>(type), static_cast<NoiseShaping>(shaping), [] { return 7u; });
  engine.Process(samples.data(), static_cast<std::uint32_t>(samples.size()), 1);
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = samples[i] * 0x1p15 - input_lsb[i];
  return samples;
}

// The chance that the noise exceeds t LSB, 0 < t. All of them are symmetric.
double Exceeds(DitherType type, double t) {
  const auto tail = [t](double end) { return std::max(end - t, 0.0); };
  switch (type) {
    case DitherType::kNone: return 0.0;
    case DitherType::kHalfRectangular: return tail(0.5);
    case DitherType::kRectangular: return tail(1.0) / 2.0;
    case DitherType::kTriangular: return tail(1.0) * tail(1.0) / 2.0;
    case DitherType::kHighpassTriangular: return t < 0.005 ? 0.5 - t : tail(0.995) * tail(0.995) / 1.98;
    case DitherType::kGaussian: return std::erfc(t * std::numbers::sqrt2) / 2.0;
  }
  return 0.0;
}

// An input t below the next threshold is lifted over it as often as the noise exceeds t.
TEST(DitherNoise, HasItsDistribution) {
  for (std::uint32_t type = 0; type < 6; ++type) {
    for (const double t : {0.002, 0.1, 0.25, 0.45, 0.499, 0.5, 0.7, 0.9, 0.98, 0.994, 0.995, 1.0, 1.2, 1.8}) {
      const double p = Exceeds(static_cast<DitherType>(type), t);
      for (const double sign : {1.0, -1.0}) {
        const auto errors = Errors(type, 0, std::vector(kFrames, sign * (0.5 - t)));
        const auto lifted = std::ranges::count_if(errors, [&](double e) { return sign * e > t - 0.25; });
        EXPECT_NEAR(static_cast<double>(lifted) / kFrames, p, 5.0 * std::sqrt(p * (1.0 - p) / kFrames))
            << type << ": " << sign * t;
      }
    }
  }
}

// Of a sequence with itself, lag places later.
double Correlation(const std::vector<double>& v, std::size_t lag) {
  double sum = 0.0;
  for (std::size_t i = lag; i < v.size(); ++i) sum += v[i] * v[i - lag];
  return sum;
}

TEST(DitherNoise, TotalErrorIsShaped) {
  constexpr double kTolerance = 0.015;  // 5 √(2 / frames), and more because shaped errors are related
  constexpr double kStep = 1.0 / 12.0;  // power of a rounding error, in LSB^2
  constexpr double kPower[] = {0.0, 1.0 / 12.0, 1.0 / 3.0, 1.0 / 6.0, 1.0 / 12.0, 0.25};
  const std::vector<double> kShapes[] = {{1.0}, {1.0, -1.0}, {1.0, -1.0, 0.75}, {1.0, -1.0, 0.5}};
  std::mt19937 random(1);
  std::vector<double> busy(2 * kFrames);  // so that rounding errors are even and unrelated
  for (double& x : busy) x = static_cast<double>(random()) * 0x1p-19;
  for (std::uint32_t type = 0; type < 6; ++type) {
    for (std::uint32_t shaping = 0; shaping < 4; ++shaping) {
      const std::vector<double>& shape = kShapes[shaping];
      std::vector<double> noise = shape;
      noise.push_back(0.0);
      for (std::size_t i = shape.size(); type == 4 && i > 0; --i) noise[i] -= 0.99 * noise[i - 1];
      const auto errors = Errors(type, shaping, busy);
      const auto expected = [&](std::size_t lag) {
        return kStep * Correlation(shape, lag) + kPower[type] * Correlation(noise, lag);
      };
      for (std::size_t lag = 0; lag < 6; ++lag) {
        EXPECT_NEAR(Correlation(errors, lag) / (2.0 * kFrames), expected(lag), kTolerance * expected(0))
            << type << shaping << lag;
      }
    }
  }
}

}  // namespace
}  // namespace tervan
