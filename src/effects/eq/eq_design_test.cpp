#include "effects/eq/eq_design.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <span>

#include "effects/eq/eq_model.h"

namespace tervan {
namespace {

using namespace tervan::testing;

// Calls check(settings, band, rate) for many of them.
template <typename Check>
void ForManyBands(std::span<const std::uint32_t> rates_hz, std::uint32_t absurd_one_in, const Check& check) {
  std::mt19937 random(1);
  for (int i = 0; i < 60000 && !::testing::Test::HasFailure(); ++i) {
    const EqSettings settings = RandomEqSettings(random, absurd_one_in);
    const std::uint32_t k = random() % kEqBands;
    const std::uint32_t rate_hz = rates_hz[random() % rates_hz.size()];
    SCOPED_TRACE(::testing::Message() << "mode " << settings.mode[k] << ", gain " << settings.gain[k] << ", bandwidth "
                                      << settings.bandwidth[k] << ", rolloff " << settings.rolloff[k] << ", "
                                      << settings.frequency[k] << " Hz at " << rate_hz);
    check(settings, k, rate_hz);
  }
}

EqSection Designed(const EqSettings& settings, std::uint32_t band, std::uint32_t rate_hz) {
  return DesignSection(DescribeBand(settings, band, rate_hz));
}

TEST(EqDesign, FollowsTheFormulas) {
  constexpr std::uint32_t kRates[] = {8000, 22050, 44100, 192000};
  ForManyBands(kRates, 0, [](const EqSettings& settings, std::uint32_t k, std::uint32_t rate_hz) {
    const EqSection expected = ModelSection(settings, k, rate_hz);
    const EqSection actual = Designed(settings, k, rate_hz);
    EXPECT_EQ(DescribeBand(settings, k, rate_hz).gain_db != 0.0, settings.enable[k] != 0 && settings.gain[k] != 0);
    EXPECT_EQ(actual.mode, expected.mode);
    EXPECT_EQ(actual.stages, expected.stages);
    EXPECT_NEAR(actual.c0, expected.c0, 1e-14);
    EXPECT_NEAR(actual.c1, expected.c1, 1e-14);
    // The response of a narrow band far below the rate is a quotient of small differences.
    const double f = settings.frequency[k] / static_cast<double>(rate_hz);
    const double lost = settings.mode[k] == 2 ? 1.0 / (f * f * settings.bandwidth[k]) : 0.0;
    EXPECT_NEAR(actual.gain, expected.gain, (1e-13 + 1e-15 * lost) * std::fabs(expected.gain));
  });
}

// Poles inside the unit circle, whatever a stored record holds.
TEST(EqDesign, IsStableForAbsurdRecordsAndRates) {
  constexpr std::uint32_t kRates[] = {0, 1, 44100, 768000, UINT32_MAX};
  ForManyBands(kRates, 2, [](const EqSettings& settings, std::uint32_t k, std::uint32_t rate_hz) {
    const EqSection section = Designed(settings, k, rate_hz);
    EXPECT_TRUE(section.stages >= 1 && section.stages <= kEqMaxStages);
    EXPECT_LT(std::fabs(section.c1), 1.0);
    EXPECT_LT(std::fabs(section.c0), 1.0 - section.c1);
    EXPECT_LE(std::fabs(section.gain), 1e5);
  });
}

}  // namespace
}  // namespace tervan
