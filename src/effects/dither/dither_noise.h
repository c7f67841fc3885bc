// The noises, value by value. u is a word of the generator as a number in [-1, 1), a the amplitude.
#pragma once

#include <cmath>
#include <cstdint>

#include "effects/dither/dither_state.h"
#include "effects/dither/r250_generator.h"

namespace tervan {

inline constexpr double kHighpassCoefficient = 0.99;

inline double NoNoise(R250Generator&, double, double&) { return 0.0; }

// u a
inline double Rectangular(R250Generator& generator, double amplitude, double&) {
  return generator.DrawUniform() * amplitude;
}

// (u1 + u2) a / 2
inline double Triangular(R250Generator& generator, double amplitude, double&) {
  const double first = generator.DrawUniform();
  return (first + generator.DrawUniform()) * amplitude * 0.5;
}

// (u - 0.99 h) a / 2, where h is the u before
inline double HighpassTriangular(R250Generator& generator, double amplitude, double& history) {
  const double uniform = generator.DrawUniform();
  const double noise = (uniform - kHighpassCoefficient * history) * amplitude * 0.5;
  history = uniform;
  return noise;
}

// A point of the square around the unit circle. Words is whatever has a Draw.
struct SquarePoint {
  template <typename Words>
  explicit SquarePoint(Words& words) noexcept {
    const double first = Coordinate(words.Draw());
    second = Coordinate(words.Draw());
    r = first * first + second * second;
  }

  bool IsInCircle() const noexcept { return r < 1.0 && r != 0.0; }

  double second;
  double r;  // squared distance from the centre

 private:
  static double Coordinate(std::uint32_t word) noexcept {
    constexpr std::uint32_t kLowWord = 0xFFFF;
    constexpr double kLowWordScale = 2.0 / 65535.0;  // to [-1, 1]
    return (word & kLowWord) * kLowWordScale - 1.0;
  }
};

// Polar method: the first point within the circle. Source: G. Marsaglia, T. A. Bray, "A convenient method for
// generating normal variables", SIAM Review 6 (1964).
template <typename Words>
double GaussianOf(Words& words, double amplitude) {
  for (;;) {
    const SquarePoint point(words);
    if (point.IsInCircle()) return point.second * std::sqrt(-2.0 * std::log(point.r) / point.r) * amplitude;
  }
}
inline double Gaussian(R250Generator& generator, double amplitude, double&) { return GaussianOf(generator, amplitude); }

struct NoiseSource {
  NoiseFunction function;
  double amplitude_lsb;
};

// Indexed by DitherType.
inline constexpr NoiseSource kNoiseSources[kDitherTypeCount] = {
    {NoNoise, 0.0},    {Rectangular, 0.5},        {Rectangular, 1.0},
    {Triangular, 1.0}, {HighpassTriangular, 1.0}, {Gaussian, 0.5},
};

}  // namespace tervan
