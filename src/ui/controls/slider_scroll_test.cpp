#include "ui/controls/slider_scroll.h"

#include "gtest/gtest.h"

namespace tervan::ui {
namespace {

constexpr int kCodes = 10;
constexpr SliderScale kGain = {.minimum = -60, .maximum = 12};
constexpr SliderScale kTime = {.minimum = 0, .maximum = 500};
constexpr SliderScale kPositive = {.minimum = 1, .maximum = 9};

// From position 5, by code: line up and down, page up and down, position, track, top, bottom, end, begin.
TEST(SliderScroll, MovesByCode) {
  enum Helper { kHorizontal, kVertical, kFader };
  struct Case {
    Helper helper;
    SliderScale scale;
    ScrollSteps steps;
    int expected[kCodes];
  };
  for (const auto& [helper, scale, steps, expected] : {
           Case{kHorizontal, kTime, {1, 10}, {4, 6, 0, 15, 5, 5, 0, 500, 5, 5}},
           Case{kVertical, kTime, {1, 10}, {6, 4, 15, 0, 5, 5, 500, 0, 5, 5}},
           Case{kHorizontal, kTime, {2, 0}, {3, 7, 0, 55, 5, 5, 0, 500, 5, 5}},
           Case{kHorizontal, kTime, {2, 10, true}, {3, 7, 0, 105, 5, 5, 0, 500, 5, 5}},
           Case{kFader, kGain, {1, 1}, {6, 4, 6, 4, 5, 5, 0, -60, 5, 5}},
           Case{kFader, kGain, {1, 1, true}, {6, 4, 12, -5, 5, 5, 12, -60, 5, 5}},
           Case{kFader, kGain, {9, 0}, {12, -4, 12, -2, 5, 5, 0, -60, 5, 5}},
           Case{kFader, kPositive, {1, 0}, {6, 4, 6, 4, 5, 5, 9, 1, 5, 5}},
           Case{kFader, kTime, {1, 1}, {6, 4, 6, 4, 5, 5, 500, 0, 5, 5}},
       }) {
    for (int code = 0; code < kCodes; ++code) {
      const auto scroll_code = static_cast<ScrollCode>(code);
      EXPECT_EQ(helper == kFader ? ScrolledFader(scale, 5, scroll_code, steps)
                                 : ScrolledTrackbar(scale, 5, scroll_code, steps, helper == kVertical),
                expected[code])
          << "helper " << helper << ", page " << steps.page << ", code " << code;
    }
  }
}

}  // namespace
}  // namespace tervan::ui
