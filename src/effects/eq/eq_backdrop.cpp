#include "effects/eq/eq_backdrop.h"

#include <algorithm>
#include <cstddef>

#include "effects/dither/r250_generator.h"
#include "support/mul_div.h"

namespace tervan {
namespace {

constexpr ui::Colour kDarkBlue{0, 0, 64};
constexpr ui::Colour kBlue{0, 64, 255};
constexpr ui::Colour kLightBlue{0, 192, 255};

// Levels are mixed in fine steps, a few of which are noise.
constexpr int kStepsPerLevel = 1024;
constexpr std::uint32_t kMostNoise_steps = 10;
constexpr std::uint32_t kNoiseSeed = 1293456;

// So many rows are drawn; the picture repeats them in random order, which shows no pattern.
constexpr std::uint32_t kDrawnRows = 8;

// The place of so many at which the level is first at one end and last at the other.
std::uint8_t NoisyLevel(int first, int last, int place, int places, R250Generator& noise) {
  const int above_first = places > 1 ? MulDiv((last - first) * kStepsPerLevel, place, places - 1) : 0;
  const int offset = static_cast<int>(noise.Draw() % (2 * kMostNoise_steps + 1)) - static_cast<int>(kMostNoise_steps);
  return static_cast<std::uint8_t>((first * kStepsPerLevel + above_first + offset + kStepsPerLevel / 2) /
                                   kStepsPerLevel);
}

void DrawGradient(std::uint32_t* row, int width, ui::Colour first, ui::Colour last, R250Generator& noise) {
  for (int x = 0; x < width; ++x) {
    const std::uint8_t red = NoisyLevel(first.red, last.red, x, width, noise);
    const std::uint8_t green = NoisyLevel(first.green, last.green, x, width, noise);
    const std::uint8_t blue = NoisyLevel(first.blue, last.blue, x, width, noise);
    row[x] = ui::PixelOf({red, green, blue});
  }
}

}  // namespace

std::vector<std::uint32_t> MakeEqShades(ui::Size size) {
  if (size.width <= 0 || size.height <= 0) return {};
  const auto width = static_cast<std::size_t>(size.width);
  const auto height = static_cast<std::size_t>(size.height);
  const int half_px = size.width / 2;
  R250Generator noise;
  noise.Seed(kNoiseSeed);

  std::vector<std::uint32_t> drawn(width * kDrawnRows);
  for (std::size_t y = 0; y < kDrawnRows; ++y) {
    std::uint32_t* const row = drawn.data() + y * width;
    DrawGradient(row, half_px, kDarkBlue, kBlue, noise);
    DrawGradient(row + half_px, size.width - half_px, kBlue, kLightBlue, noise);
  }

  std::vector<std::uint32_t> shades(width * height);
  for (std::size_t y = 0; y < height; ++y) {
    std::copy_n(drawn.data() + noise.Draw() % kDrawnRows * width, width, shades.data() + y * width);
  }
  return shades;
}

void PaintEqResponse(ui::Canvas& canvas, const EqResponse& response, const std::uint32_t* shades) {
  const auto [width, height] = canvas.size();
  const int centre = height / 2;
  const auto column_of = [last = width - 1](int point) { return MulDiv(point, last, EqResponse::kLastPoint); };

  canvas.Fill({0, 0, width, height}, ui::kWhite);
  for (int point = 1; point <= EqResponse::kLastPoint; ++point) {
    const int level_px = MulDiv(response[point], height / 2, EqResponse::kFullScale);
    const int left = column_of(point);
    const int right = std::max(column_of(point + 1), left + 1);  // without gaps in wide graphs
    canvas.CopyFrom(shades, {left, std::min(centre, centre - level_px), right, std::max(centre, centre - level_px)});
  }
  canvas.Fill({0, centre, width, centre + 1}, ui::kBlack);
}

}  // namespace tervan
