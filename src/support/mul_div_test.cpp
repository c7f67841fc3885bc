#include "support/mul_div.h"

#include <gtest/gtest.h>

namespace tervan {
namespace {

TEST(MulDiv, RoundsHalfAwayFromZeroAndKnowsWhatDoesNotFit) {
  constexpr std::int32_t kMax = 0x7FFFFFFF, kMin = -kMax - 1;
  const struct {
    std::int32_t number, numerator, denominator, result;
  } rows[] = {
      {5, 1, 2, 3},      {-5, 1, 2, -3},   {5, 1, -2, -3},      {-5, -1, 2, 3},           {4, 1, 3, 1},
      {-5, 1, 3, -2},    {7, 0, 3, 0},     {7, 3, 0, -1},       {kMax, kMax, kMax, kMax}, {kMin, kMin, kMin, kMin},
      {kMin, 1, -1, -1}, {kMax, 2, 1, -1}, {kMin, kMax, 3, -1}, {kMin, kMax, kMax, kMin}};
  for (const auto& row : rows) {
    EXPECT_EQ(MulDiv(row.number, row.numerator, row.denominator), row.result)
        << row.number << " * " << row.numerator << " / " << row.denominator;
  }
}

}  // namespace
}  // namespace tervan
