#include "ui/canvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace tervan::ui {
namespace {

constexpr std::uint32_t kUntouched = 0xABCDEF;

// A picture in the middle of memory that nobody may write to.
class Picture {
 public:
  explicit Picture(Size size) : size_(size), pixels_(Area() * 3, kUntouched) {
    canvas().Fill({0, 0, 1000, 1000}, kBlack);
  }
  Canvas canvas() { return {pixels_.data() + Area(), size_}; }
  int LevelAt(int x, int y) { return canvas().PixelAt({x, y}).red; }
  bool OutsideIsUntouched() const {
    const auto is_untouched = [](std::uint32_t pixel) { return pixel == kUntouched; };
    return std::all_of(pixels_.begin(), pixels_.begin() + Area(), is_untouched) &&
           std::all_of(pixels_.end() - Area(), pixels_.end(), is_untouched);
  }

 private:
  std::ptrdiff_t Area() const { return std::ptrdiff_t{size_.width} * size_.height; }
  Size size_;
  std::vector<std::uint32_t> pixels_;
};

TEST(Canvas, NeverDrawsOutside) {
  for (const Rect area :
       {Rect{-5, -5, 50, 50}, {30, 30, 40, 40}, {5, 5, 5, 9}, {9, 9, 5, 5}, {-9, 3, -1, 6}, {0, 0, 20, 10}}) {
    Picture picture({20, 10});
    picture.canvas().Fill(area, kWhite);
    picture.canvas().CopyFrom(std::vector(200, kUntouched).data(), area);
    picture.canvas().FillGradient(area, kBlack, kWhite, Direction::kAcross);
    picture.canvas().FillRounded(area, 4, kWhite, kBlack);
    picture.canvas().StrokeRounded(area, 4, 2, kWhite);
    EXPECT_TRUE(picture.OutsideIsUntouched()) << area.left << ' ' << area.top;
  }
}

TEST(Canvas, GradientsReachBothColoursAndRise) {
  Picture picture({33, 3});
  picture.canvas().FillGradient({0, 0, 33, 3}, kBlack, kWhite, Direction::kAcross);
  EXPECT_EQ(picture.LevelAt(0, 1), 0);
  EXPECT_EQ(picture.LevelAt(32, 1), 255);
  EXPECT_NEAR(picture.LevelAt(16, 1), 128, 1);
  for (int x = 1; x < 33; ++x) EXPECT_GT(picture.LevelAt(x, 2), picture.LevelAt(x - 1, 2)) << x;
}

// The white area of a circle of radius r is pi r^2, whatever pixels it falls on.
TEST(Canvas, ARoundShapeHasItsAreaAndIsSymmetric) {
  constexpr int kSide = 24;
  Picture picture({kSide, kSide});
  picture.canvas().FillRounded({2, 2, 22, 22}, 10, kWhite, kWhite);
  double area = 0.0;
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      area += picture.LevelAt(x, y) / 255.0;
      EXPECT_EQ(picture.LevelAt(x, y), picture.LevelAt(kSide - 1 - x, y));
      EXPECT_EQ(picture.LevelAt(x, y), picture.LevelAt(y, x));
    }
  }
  EXPECT_NEAR(area, 314.16, 2.0);
  picture.canvas().StrokeRounded({0, 0, kSide, kSide}, 0, 1, kWhite);
  EXPECT_EQ(picture.LevelAt(0, 0), 255);
  EXPECT_EQ(picture.LevelAt(1, 1), 0) << "a ring has a hole";
}

// As many pixels of the second colour as its share, and no colour in between.
TEST(Canvas, FewColoursMixByPattern) {
  Picture picture({64, 16});
  Canvas canvas = picture.canvas();
  canvas.SetFewColours(true);
  canvas.FillGradient({0, 0, 64, 16}, kBlack, kWhite, Direction::kAcross);
  int white = 0;
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 64; ++x) {
      EXPECT_TRUE(picture.LevelAt(x, y) == 0 || picture.LevelAt(x, y) == 255);
      white += picture.LevelAt(x, y) == 255;
    }
  }
  EXPECT_NEAR(white, 512, 32);
}

}  // namespace
}  // namespace tervan::ui
