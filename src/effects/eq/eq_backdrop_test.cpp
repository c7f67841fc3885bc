#include "effects/eq/eq_backdrop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace tervan {
namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF;

TEST(EqShades, RunThroughThreeBluesWithALittleNoise) {
  constexpr int kEnds[2][2][3] = {{{0, 0, 64}, {0, 64, 255}}, {{0, 64, 255}, {0, 192, 255}}};
  for (const ui::Size size : {ui::Size{600, 200}, {341, 97}, {3, 9}, {1, 1}}) {
    const auto shades = MakeEqShades(size);
    EXPECT_EQ(shades, MakeEqShades(size));
    const int width = size.width, half = width / 2;
    std::set<std::vector<std::uint32_t>> rows;
    for (auto row = shades.begin(); row != shades.end(); row += width) {
      rows.emplace(row, row + width);
      for (int x = 0; x < width; ++x) {
        const auto& [first, last] = kEnds[x < half ? 0 : 1];
        const int length = x < half ? half : width - half;
        const double share = length > 1 ? (x < half ? x : x - half) / (length - 1.0) : 0.0;
        for (int channel = 0; channel < 3; ++channel) {
          const std::uint32_t level = row[x] >> (16 - 8 * channel) & 255;
          ASSERT_NEAR(level, std::lerp(first[channel], last[channel], share), 0.511) << width << ", " << x;
        }
      }
    }
    EXPECT_TRUE(width < 100 || rows.size() == 8) << "the noise is not the same everywhere";
  }
}

// Whether the rules fill the pixel: a bar of one column for each point, which in wide graphs reaches to the next bar.
bool IsFilled(const EqResponse& response, ui::Size size, int x, int y) {
  const auto column = [&](int point) { return std::lround(point * (size.width - 1) / 1000.0); };
  const int half = size.height / 2;
  for (int point = 1; point <= 1000; ++point) {
    if (column(point) > x || std::max(column(point) + 1, column(point + 1)) <= x) continue;
    const long bar = half - std::lround(response[point] * half / 2048.0);
    if (y < half ? y >= bar : y < bar) return true;
  }
  return false;
}

TEST(EqBackdrop, FillsFromTheCentreLineToTheResponse) {
  EqResponse flat, curve;
  curve.Add({.frequency = 100, .gain = -150, .bandwidth = 0, .rolloff = 4, .mode = 1, .enable = 1});
  curve.Add({.frequency = 2000, .gain = 150, .bandwidth = 10, .rolloff = 0, .mode = 2, .enable = 1});
  for (const ui::Size size : {ui::Size{300, 100}, {91, 33}, {2200, 12}, {3, 3}, {1, 9}, {9, 1}, {0, 5}, {5, 0}}) {
    const auto shades = MakeEqShades(size);
    for (const EqResponse* response : {&flat, &curve}) {
      std::vector<std::uint32_t> pixels(shades.size(), 1);
      ui::Canvas canvas(pixels.data(), size);
      PaintEqResponse(canvas, *response, shades.data());
      for (int i = 0; i < size.width * size.height; ++i) {
        const int x = i % size.width, y = i / size.width;
        const std::uint32_t ground = IsFilled(*response, size, x, y) ? shades[static_cast<std::size_t>(i)] : kWhite;
        ASSERT_EQ(pixels[static_cast<std::size_t>(i)], y == size.height / 2 ? 0 : ground)
            << size.width << " wide: " << x << ", " << y;
      }
    }
  }
}

}  // namespace
}  // namespace tervan
