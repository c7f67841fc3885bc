#include "effects/dither/r250_generator.h"

namespace tervan {
namespace {

constexpr std::uint32_t kPartnerOffset = 103;

// Word kFirstIndependent + j kIndependentStep gets j leading zeros and then a one: 32 words that are linearly
// independent, so that the register never degenerates.
constexpr std::uint32_t kFirstIndependent = 3;
constexpr std::uint32_t kIndependentStep = 7;

// 15 bits at a time, well mixed: seeds that lie a millisecond apart give unrelated sequences.
// Source: G. L. Steele, D. Lea, C. H. Flood, "Fast splittable pseudorandom number generators" (2014).
class SeedSource {
 public:
  explicit SeedSource(std::uint32_t seed) : state_(seed) {}

  std::uint32_t Next() {
    std::uint64_t z = state_ += 0x9e3779b97f4a7c15;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
    z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
    return static_cast<std::uint32_t>((z ^ (z >> 31)) >> 49);
  }

 private:
  std::uint64_t state_;
};

}  // namespace

void R250Generator::Seed(std::uint32_t seed) {
  SeedSource source(seed);
  cursor_a_ = 0;
  cursor_b_ = kPartnerOffset;
  for (std::uint32_t i = kWords; i-- > 0;) {
    successor_[i] = static_cast<std::uint8_t>((i + 1) % kWords);
    const std::uint32_t high = source.Next();
    const std::uint32_t middle = source.Next();
    words_[i] = ((high << 15) + middle) * 4 + source.Next();
  }
  for (std::uint32_t j = 0; j < 32; ++j) {
    std::uint32_t& word = words_[kFirstIndependent + kIndependentStep * j];
    word = (word & (0xFFFFFFFFu >> j)) | (0x80000000u >> j);
  }
}

}  // namespace tervan
