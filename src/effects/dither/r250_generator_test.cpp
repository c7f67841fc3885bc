#include "effects/dither/r250_generator.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tervan {
namespace {

std::vector<std::uint32_t> Sequence(std::uint32_t seed) {
  R250Generator generator;
  generator.Seed(~seed);
  generator.Draw();
  generator.Seed(seed);  // whatever came before
  std::vector<std::uint32_t> x(1 << 16);
  for (std::uint32_t& word : x) word = generator.Draw();
  return x;
}

// The share of bits under the mask in which a[i] and b[i + lag] differ: its distance from one half, in standard
// deviations.
double Relation(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b, std::size_t lag,
                std::uint32_t mask = ~0u) {
  const auto n = static_cast<double>(b.size() - lag) * std::popcount(mask);
  double differing = 0.0;
  for (std::size_t i = 0; i + lag < b.size(); ++i) differing += std::popcount((a[i] ^ b[i + lag]) & mask);
  return std::fabs(differing - n / 2.0) / (std::sqrt(n) / 2.0);
}

TEST(R250Generator, BitsAreEvenAndSeedsUnrelated) {
  constexpr std::uint32_t kSeeds[] = {0, 1, 2, 1000, 0x80000000, 0xFFFFFFFF};
  for (const std::uint32_t seed : kSeeds) {
    SCOPED_TRACE(seed);
    const auto x = Sequence(seed);
    for (std::size_t n = 250; n < x.size(); ++n) ASSERT_EQ(x[n], x[n - 250] ^ x[n - 147]) << n;
    const std::vector<std::uint32_t> zeros(x.size());
    for (int bit = 0; bit < 32; ++bit) EXPECT_LT(Relation(x, zeros, 0, 1u << bit), 5.0) << bit;
    for (const std::uint32_t other : kSeeds) {
      const auto y = Sequence(other);
      for (const std::size_t lag : {0, 1, 2, 3, 4, 103, 147, 250, 1000}) {
        EXPECT_TRUE(Relation(x, y, lag) < 5.0 || (other == seed && lag == 0)) << other << ' ' << lag;
      }
    }
    // Word 3 + 7 j of the register starts with j zeros and a one. The register follows from what is drawn first.
    std::uint32_t words[250];
    for (std::size_t n = 250; n-- > 0;) words[n] = x[n] ^ (n < 147 ? words[n + 103] : x[n - 147]);
    for (std::uint32_t j = 0; j < 32; ++j) EXPECT_EQ(words[3 + 7 * j] >> (31 - j), 1u) << j;
  }
}

}  // namespace
}  // namespace tervan
