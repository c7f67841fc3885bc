#include "effects/eq/eq_response.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

namespace tervan {
namespace {

constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();

int Ratio(double number, double numerator, double denominator) {
  return static_cast<int>(std::lround(number * numerator / denominator));
}

// The drawing rules, step by step, in floating point.
void AddPlainly(std::vector<int>& curve, const EqBand& band) {
  const int g = std::clamp(band.gain, -150, 150);
  if (band.enable == 0 || g == 0) return;
  const auto add = [&curve](int point, int value) {
    if (point >= 0 && point <= 1000) curve[static_cast<std::size_t>(point)] += value;
  };
  const int c = band.frequency <= 0 ? 0 : Ratio(1000, std::log10(band.frequency / 20.0), 3);  // three decades
  if (band.mode == 2) {
    const int half = std::clamp(band.bandwidth, 1, 40) * 5;
    const auto bell = [g](int i) {
      return Ratio(g, std::trunc(1024 * (1 + std::cos(std::numbers::pi * (i - 1000) / 1000))), 150);
    };
    for (int j = 0; j < half; ++j) {
      const int value = bell(Ratio(j, 1000, half));
      if (c - half + j > 0) add(c - half + j, value);
      add(c + half - j, value);
    }
    return add(c, bell(999));
  }

  const bool cuts_fully = g == -150;
  const int slope = std::array{7, 15, 22, 29}[static_cast<std::size_t>(std::clamp(band.rolloff, 1, 4) - 1)];
  const int a = std::abs(g) == 150 ? g / 150 * 2051 : Ratio(g, 2048, 150);
  const int length = std::abs(a) / slope, middle = length / 2;
  const bool is_low = band.mode < 2;
  for (int j = -length; j < length; ++j) {
    if (cuts_fully && is_low != (j >= 0)) continue;
    const int bend = Ratio(j, j, length), twice = is_low ? -2 * j : 2 * j;
    add((is_low ? c - middle : c + length - middle) + j, Ratio(a, bend + twice + length, 2 * (bend + length)));
  }
  int value = cuts_fully ? a / 2 : a;
  const int fall = cuts_fully ? slope : 0, reach = middle + (cuts_fully ? 0 : length);
  if (is_low) {
    for (int p = c - reach - 1; p >= 0; --p, value -= value > 4 * a ? fall : 0) add(p, value);
  } else {
    for (int p = c + reach + length % 2; p <= 1000; ++p, value -= value > 4 * a ? fall : 0) add(p, value);
  }
}

TEST(EqResponse, IsTheSumOfItsBandsShapes) {
  const std::vector<std::int32_t> frequencies{kMin, -1, 0, 1, 10, 20, 21, 100, 1000, 5000, 19999, 20000, 30000, kMax};
  const std::vector<std::int32_t> gains{kMin, -250, -151, -150, -149, -75, -1, 0, 1, 2, 33, 60, 149, 150, 151, kMax};
  const std::vector<std::int32_t> widths{kMin, -1, 0, 1, 2, 3, 4, 5, 7, 10, 39, 40, 41, kMax};
  std::mt19937 random(1);
  const auto pick = [&random](const std::vector<std::int32_t>& legal_and_not, std::int32_t low, std::int32_t high) {
    if (random() % 2 == 0) return legal_and_not[random() % legal_and_not.size()];
    return std::uniform_int_distribution(low, high)(random);
  };
  EqResponse response;
  for (int round = 0; round < 3000; ++round) {
    response.Clear();
    std::vector<int> curve(1001);
    for (int bands = round % 4; bands >= 0; --bands) {
      const EqBand band{pick(frequencies, 20, 20000), pick(gains, -150, 150),      pick(widths, 1, 40),
                        pick(widths, 1, 4),           pick({1, 2, 3, 0, 4}, 1, 3), pick({0}, 0, 1)};
      response.Add(band);
      AddPlainly(curve, band);
    }
    for (int i = 0; i <= 1000; ++i) ASSERT_EQ(response[i], curve[static_cast<std::size_t>(i)]) << round << ", " << i;
  }
}

// What a user sees, whatever the arithmetic: 2048 units are 15 dB, a point is very nearly a hundredth of an octave.
TEST(EqResponse, ShowsGainFrequencyWidthAndRolloff) {
  EqResponse response;
  response.Add({.frequency = 632, .gain = 150, .bandwidth = 10, .rolloff = 0, .mode = 2, .enable = 1});
  EXPECT_NEAR(response[500], 2048, 1);
  for (const int foot : {449, 551}) EXPECT_EQ(response[foot], 0) << foot;

  for (const int mode : {1, 3}) {
    for (const int rolloff : {1, 2, 3, 4}) {
      for (const int gain : {-120, 60}) {
        response.Clear();
        response.Add({.frequency = 632, .gain = gain, .bandwidth = 0, .rolloff = rolloff, .mode = mode, .enable = 1});
        const double height = gain * 2048.0 / 150;
        EXPECT_NEAR(response[mode == 1 ? 1 : 1000], height, 1);
        EXPECT_EQ(response[mode == 1 ? 1000 : 1], 0);
        int half = 1;
        while ((std::abs(response[half]) > std::fabs(height) / 2) == (mode == 1)) ++half;
        const double slope = std::abs(response[half + 5] - response[half - 5]) / 10.0 * 15 / 20.48;
        EXPECT_NEAR(slope, rolloff * 6, rolloff) << "dB per octave; gain " << gain << ", mode " << mode;
      }
    }
  }
}

}  // namespace
}  // namespace tervan
