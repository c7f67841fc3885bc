// The dither once more, written down formula by formula, without regard for speed. Tests hold the engine against it.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "effects/dither/r250_generator.h"
#include "testing/sample_model.h"

namespace tervan::testing {

// Takes words from the generator, which has a test of its own. Samples stay within the range of 32 bits, and errors
// above what is forgotten between calls.
class DitherModel {
 public:
  DitherModel(std::uint32_t bits, std::uint32_t type, std::uint32_t shaping, std::uint32_t seed)
      : scale_(std::exp2(bits - 1.0)), type_(type), shaping_(shaping) {
    generator_.Seed(seed);
  }

  // Integers frame by frame, floats channel by channel.
  template <typename Sample>
  void Process(Sample* samples, std::size_t frames, std::size_t channels) {
    for (std::size_t n = 0; n < frames * channels; ++n) {
      const std::size_t i = std::is_integral_v<Sample> ? n : n % frames * channels + n / frames;
      FromReal(Quantised(ToReal(samples[i]), i % channels), samples[i]);
    }
  }

 private:
  double Uniform() { return static_cast<std::int32_t>(generator_.Draw()) / 2147483648.0; }
  double Coarse() { return (generator_.Draw() & 0xFFFF) * (2.0 / 65535.0) - 1.0; }

  double Gaussian() {
    for (;;) {
      const double s1 = Coarse();
      const double s2 = Coarse();
      const double r = s1 * s1 + s2 * s2;
      if (r > 0.0 && r < 1.0) return s2 * std::sqrt(-2.0 * std::log(r) / r);
    }
  }

  double Noise_lsb() {
    const double u = type_ >= 1 && type_ <= 4 ? Uniform() : 0.0;
    const double previous = std::exchange(previous_, u);
    switch (type_) {
      case 1: return 0.5 * u;
      case 2: return u;
      case 3: return (u + Uniform()) / 2.0;
      case 4: return (u - 0.99 * previous) / 2.0;
      case 5: return 0.5 * Gaussian();
    }
    return 0.0;
  }

  static double Rounded(double y) {
    return static_cast<double>(std::clamp<long long>(std::llrint(y), INT32_MIN, INT32_MAX));
  }

  double Quantised(double x, std::size_t c) {
    const double d = Noise_lsb();
    if (shaping_ == 0) return Rounded((x + d / scale_) * scale_) / scale_;
    const double v = x * scale_ - a_[c] + b_[c];
    const double q = Rounded(v + d);
    b_[c] = (shaping_ == 1 ? 0.0 : shaping_ == 2 ? 0.75 : 0.5) * a_[c];
    a_[c] = q - v;
    return q / scale_;
  }

  double scale_;
  std::uint32_t type_, shaping_;
  R250Generator generator_;
  double previous_ = 0.0;
  double a_[2] = {}, b_[2] = {};
};

}  // namespace tervan::testing
