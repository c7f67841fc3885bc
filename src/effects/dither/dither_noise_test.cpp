// What the noise does to the sound, measured. Bounds are five standard deviations; the seed is fixed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
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

TEST(DitherNoise, TriangularMakesMeanAndPowerOfTheErrorIndependentOfTheSignal) {
  for (const double x : {0.0, 0.1, 0.25, 0.5, 0.75, 1000.3}) {
    double mean = 0.0, power = 0.0;
    for (const double e : Errors(3, 0, std::vector(kFrames, x))) mean += e / kFrames, power += e * e / kFrames;
    EXPECT_NEAR(mean, 0.0, 5.0 * 0.5 / 512.0) << x;
    EXPECT_NEAR(power, 3.0 / 12.0, 5.0 * 0.5 / 512.0) << x;  // the square spreads by less than 0.5
  }
}

// Mean power at a frequency, in radians per frame, of windowed segments; 1 for white noise of power 1.
double Power(const std::vector<double>& signal, double w) {
  constexpr std::size_t kSegment = 128;
  std::complex<double> kernel[kSegment];
  for (std::size_t n = 0; n < kSegment; ++n) {
    const double t = static_cast<double>(n);
    kernel[n] = std::polar(1.0 - std::cos(2.0 * std::numbers::pi * t / kSegment), -w * t);
  }
  double sum = 0.0;
  for (std::size_t at = 0; at < signal.size(); at += kSegment) {
    std::complex<double> line = 0.0;
    for (std::size_t n = 0; n < kSegment; ++n) line += signal[at + n] * kernel[n];
    sum += std::norm(line);
  }
  return sum / (1.5 * static_cast<double>(signal.size()));  // the window's power is 1.5 per frame
}

TEST(DitherNoise, TotalErrorHasTheShapedSpectrum) {
  constexpr double kStep = 1.0 / 12.0;  // power of a rounding error, in LSB^2
  constexpr double kPower[] = {0.0, 1.0 / 12.0, 1.0 / 3.0, 1.0 / 6.0, 0.0, 0.25};
  constexpr double k[] = {0.0, 0.0, 0.75, 0.5};
  std::mt19937 random(1);
  std::vector<double> busy(2 * kFrames);  // so that rounding errors are even and unrelated
  for (double& x : busy) x = random() * 0x1p-19;
  for (std::uint32_t type = 0; type < 6; ++type) {
    for (std::uint32_t shaping = 0; shaping < 4; ++shaping) {
      const auto errors = Errors(type, shaping, busy);
      for (int band = 1; band <= 8; ++band) {
        const std::complex<double> z = std::polar(1.0, -band * std::numbers::pi / 8.0);
        const double noise = type == 4 ? std::norm(1.0 - 0.99 * z) / 12.0 : kPower[type];
        const double shape = shaping == 0 ? 1.0 : std::norm(1.0 - z + k[shaping] * z * z);
        // 5 / sqrt(4096 segments), more by a root of 2 where the line is real, and the window's bias.
        const double tolerance = band == 8 ? 0.12 : 0.09;
        EXPECT_NEAR(Power(errors, band * std::numbers::pi / 8.0) / ((noise + kStep) * shape), 1.0, tolerance)
            << type << shaping << ' ' << band;
      }
    }
  }
}

}  // namespace
}  // namespace tervan
