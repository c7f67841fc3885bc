#include "ui/controls/slider_ticks.h"

#include <limits>

#include "gtest/gtest.h"

namespace tervan::ui {
namespace {

TEST(SliderTicks, MarkRoundNumbersAtTheirPlacesAndKeepTheirDistance) {
  constexpr int kLeastGap_px = 5;
  struct Case {
    SliderScale scale;
    int track_px, majors, minors;
  };
  for (const auto& [scale, track_px, majors, minors] : {
           Case{{.minimum = 0, .maximum = 100}, 100, 11, 10},  // tens, 10 pixels apart, and fives
           Case{{.minimum = -60, .maximum = 25}, 85, 9, 8},    // -60 to 20
           Case{{.minimum = 3, .maximum = 38}, 350, 3, 18},    // 10, 20, 30, and all between them
           Case{{.minimum = 0, .maximum = 29}, 58, 10, 0},     // one in three: they are 2 pixels apart
           Case{{.minimum = 5, .maximum = 5}, 100, 0, 0},
           Case{{.minimum = std::numeric_limits<int>::min(), .maximum = std::numeric_limits<int>::max()}, 30, 5, 0},
       }) {
    SCOPED_TRACE(testing::Message() << scale.minimum << ".." << scale.maximum);
    int major_count = 0;
    const std::vector<SliderTick> ticks = TicksOf(scale, track_px, kLeastGap_px);
    for (std::size_t i = 0; i < ticks.size(); ++i) {
      major_count += ticks[i].is_major;
      EXPECT_TRUE(i == 0 || ticks[i].pixel - ticks[i - 1].pixel >= kLeastGap_px) << i;
    }
    EXPECT_EQ(major_count, majors);
    EXPECT_EQ(static_cast<int>(ticks.size()) - major_count, minors);
  }
}

}  // namespace
}  // namespace tervan::ui
