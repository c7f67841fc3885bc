// The EQ once more, written down formula by formula, without regard for speed. Tests hold the engine against it.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <numbers>
#include <random>
#include <type_traits>
#include <vector>

#include "effects/eq/eq_design.h"
#include "testing/sample_model.h"

namespace tervan::testing {

// A shelf or a band of G times the level, from settings in their ranges. f: corner or centre in parts of the rate.
inline EqSection ModelShelf(bool low, std::int32_t stages, double f, double G) {
  constexpr double kT[3][5] = {
      {1.67, 1.4944, 1.2882, 1.1176, 1.0}, {2.035, 1.7751, 1.4132, 1.1609, 1.0}, {2.385, 1.9735, 1.4891, 1.1854, 1.0}};
  if (stages >= 2) {
    const double* T = kT[stages - 2];
    const int i = static_cast<int>(8.0 * f);
    const double F = i == 4 ? T[4] : T[i] + (f - i / 8.0) * (T[i + 1] - T[i]);
    f = low ? f / F : f * F;
  }
  if (f >= 0.5) f = 0.4999;
  const double t = std::tan(std::numbers::pi * f);
  const double c0 = (1.0 - t) / (1.0 + t);
  const double b = low ? (1.0 - c0) / 2.0 : (1.0 + c0) / 2.0;
  return {low ? EqMode::kLowShelf : EqMode::kHighShelf, stages, c0, 0.0, b * (G - 1.0)};
}

inline EqSection ModelBand(double f, double octaves, double G) {
  using Complex = std::complex<double>;
  const double r = std::sqrt(std::pow(2.0, octaves));
  const double fl = f / r;
  const double fh = std::min(f * r, 0.49);
  const double Wl = 2.0 * std::tan(std::numbers::pi * fl);
  const double Wh = 2.0 * std::tan(std::numbers::pi * fh);
  const double p = -(Wh - Wl) / 2.0;
  const Complex root = std::sqrt(Complex(1.0 - Wl * Wh / (p * p)));
  const auto digital = [](Complex s) { return (2.0 + s) / (2.0 - s); };
  const Complex z1 = digital(p * (1.0 + root));
  const Complex z2 = digital(p * (1.0 - root));
  const double c0 = (z1 + z2).real();
  const double c1 = -(z1 * z2).real();
  const Complex z = std::polar(1.0, std::numbers::pi * (fl + fh));
  const Complex H = (1.0 - 1.0 / (z * z)) / (1.0 - c0 / z - c1 / (z * z));
  return {EqMode::kBand, 1, c0, c1, (G - 1.0) / std::abs(H)};
}

// Gain 0: the band takes no part.
inline EqSection ModelSection(const EqSettings& settings, std::size_t k, double rate_hz) {
  double g = settings.enable[k] == 0 ? 0.0 : settings.gain[k] * 0.1;
  const double f = std::min(settings.frequency[k] / rate_hz, 0.5);
  const bool band = settings.mode[k] == 2;
  const std::int32_t stages = settings.rolloff[k];
  if (!band && g > -15.0 && stages >= 2) g = g / (stages * static_cast<double>(0.8f));
  const double G = g > -15.0 ? std::pow(10.0, g * 0.05) : 0.0;
  return band ? ModelBand(f, settings.bandwidth[k] * 0.1, G) : ModelShelf(settings.mode[k] == 1, stages, f, G);
}

// Takes the engine's sections, so that its passes can be compared bit by bit. Samples have to be finite.
class EqModel {
 public:
  EqModel(std::uint32_t rate_hz, std::size_t channels) : rate_hz_(rate_hz), channels_(channels) {}

  void Load(const EqSettings& settings) {
    sections_.clear();
    for (std::uint32_t k = 0; k < kEqBands; ++k) {
      const EqBandDesign band = DescribeBand(settings, k, rate_hz_);
      if (band.gain_db != 0.0) sections_.push_back(DesignSection(band));
    }
    if (sections_.empty()) states_ = {};
  }

  template <typename Sample>
  void Process(Sample* data, std::size_t frames) {
    bool quiet = true;
    for (std::size_t c = 0; c < channels_; ++c) {
      for (std::size_t slot = 0; slot < sections_.size(); ++slot) {
        auto& stages = states_[c][slot];
        for (std::int32_t pass = 0; pass < sections_[slot].stages; ++pass) {
          for (std::size_t i = c; i < frames * channels_; i += channels_) {
            FromReal(Next(sections_[slot], stages[static_cast<std::size_t>(pass)], ToReal(data[i])), data[i]);
          }
        }
        quiet = quiet && stages[0].w1 <= 1e-5 && stages[0].w2 <= 1e-5;
      }
    }
    if (std::is_same_v<Sample, float> && !sections_.empty()) quiet_ = quiet;
  }

  bool quiet() const { return quiet_; }

 private:
  struct State {
    double w1 = 0.0, w2 = 0.0;
  };

  static double Next(const EqSection& s, State& p, double x) {
    const bool band = s.mode == EqMode::kBand;
    double w = s.c0 * p.w1 + (band ? s.c1 * p.w2 : 0.0) + s.gain * x;
    if (std::fabs(w) < std::ldexp(1.0, -32)) w = 0.0;
    const double y = band ? x + w - p.w2 : s.mode == EqMode::kLowShelf ? x + w + p.w1 : x + w - p.w1;
    p = {w, band ? p.w1 : p.w2};
    return y;
  }

  const std::uint32_t rate_hz_;
  const std::size_t channels_;
  std::vector<EqSection> sections_;
  std::array<std::array<std::array<State, 4>, kEqBands>, 2> states_{};
  bool quiet_ = true;
};

// Settings in their ranges, but for one field in absurd_one_in, which no setter would accept; 0: none.
inline EqSettings RandomEqSettings(std::mt19937& random, std::uint32_t absurd_one_in) {
  constexpr std::int32_t kAbsurd[] = {INT32_MIN, INT32_MAX, -100000, -250, -1, 0, 5, 99, 1000, 100000};
  const auto pick = [&](std::int32_t low, std::int32_t high) {
    if (absurd_one_in != 0 && random() % absurd_one_in == 0) return kAbsurd[random() % std::size(kAbsurd)];
    return low + static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(high - low + 1));
  };
  EqSettings settings{};
  for (std::size_t k = 0; k < kEqBands; ++k) {
    settings.gain[k] = pick(-160, 150);
    settings.bandwidth[k] = pick(1, 40);
    settings.frequency[k] = pick(20, random() % 2 == 0 ? 400 : 20000);
    settings.mode[k] = pick(1, 3);
    settings.rolloff[k] = pick(1, 4);
    settings.enable[k] = pick(-1, 1);
  }
  return settings;
}

}  // namespace tervan::testing
