#include "effects/eq/eq_design.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>

#include "effects/eq/eq_model.h"

namespace tervan {
namespace {

using namespace tervan::testing;

EqSection Designed(const EqSettings& settings, std::uint32_t band, std::uint32_t rate_hz) {
  return DesignSection(DescribeBand(settings, band, rate_hz));
}

TEST(EqDesign, FollowsTheFormulas) {
  std::mt19937 random(1);
  for (int i = 0; i < 20000; ++i) {
    const EqSettings settings = RandomEqSettings(random, 0);
    for (const std::uint32_t rate_hz : {8000u, 22050u, 44100u, 192000u}) {
      const std::uint32_t k = random() % kEqBands;
      SCOPED_TRACE(::testing::Message() << settings.mode[k] << ' ' << settings.frequency[k] << " Hz, "
                                        << settings.gain[k] << ' ' << settings.bandwidth[k] << ' '
                                        << settings.rolloff[k] << " at " << rate_hz);
      const EqSection expected = ModelSection(settings, k, rate_hz);
      EXPECT_EQ(DescribeBand(settings, k, rate_hz).gain_db != 0.0, settings.enable[k] != 0 && settings.gain[k] != 0);
      const EqSection actual = Designed(settings, k, rate_hz);
      EXPECT_EQ(actual.mode, expected.mode);
      EXPECT_EQ(actual.stages, expected.stages);
      EXPECT_NEAR(actual.c0, expected.c0, 1e-13);
      EXPECT_NEAR(actual.c1, expected.c1, 1e-13);
      // The response of a narrow band far below the rate is the quotient of two small differences.
      const double f = settings.frequency[k] / static_cast<double>(rate_hz);
      const double relative = settings.mode[k] == 2 ? 1e-13 / (f * f * settings.bandwidth[k]) + 1e-12 : 1e-12;
      EXPECT_NEAR(actual.gain, expected.gain, relative * std::fabs(expected.gain));
      if (HasFailure()) return;
    }
  }
}

TEST(EqDesign, OctaveBandAtOneKilohertz) {
  EqSettings settings{};
  settings.enable[2] = 1;
  settings.gain[2] = 120;
  settings.bandwidth[2] = 10;
  settings.frequency[2] = 1000;
  settings.mode[2] = 2;
  const EqSection section = Designed(settings, 2, 44100);
  EXPECT_NEAR(section.c0, 1.8846997664443277, 1e-15);
  EXPECT_NEAR(section.c1, -0.904008513244086, 1e-15);
}

// Whatever a stored record holds, at whatever rate: poles inside the unit circle.
TEST(EqDesign, IsStableForAbsurdRecordsAndRates) {
  std::mt19937 random(2);
  for (int i = 0; i < 50000; ++i) {
    const EqSettings settings = RandomEqSettings(random, 2);
    for (const std::uint32_t rate_hz : {0u, 1u, 44100u, 768000u, 0xFFFFFFFFu}) {
      const std::uint32_t k = random() % kEqBands;
      SCOPED_TRACE(::testing::Message() << settings.mode[k] << ' ' << settings.frequency[k] << " Hz, "
                                        << settings.gain[k] << ' ' << settings.bandwidth[k] << ' '
                                        << settings.rolloff[k] << " at " << rate_hz);
      const EqSection section = Designed(settings, k, rate_hz);
      ASSERT_TRUE(section.stages >= 1 && section.stages <= kEqMaxStages);
      ASSERT_LT(std::fabs(section.c1), 1.0);
      ASSERT_LT(std::fabs(section.c0), 1.0 - section.c1);
      ASSERT_TRUE(std::isfinite(section.gain));
    }
  }
}

}  // namespace
}  // namespace tervan
