#include "effects/dither/r250_generator.h"

#include <emmintrin.h>

#include <algorithm>

namespace tervan {
namespace {

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

__m128i LoadWords(const std::uint32_t* words) noexcept {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(words));
}
void StoreWords(std::uint32_t* words, __m128i vector) noexcept {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(words), vector);
}

// words[i] ^= partners[i], where no word is the partner of one of the next three. The last vector is drawn first and
// stored last: it overlaps the one before it.
void DrawRun(std::uint32_t* words, const std::uint32_t* partners, std::size_t count) noexcept {
  if (count < 4) {
    for (std::size_t i = 0; i < count; ++i) words[i] ^= partners[i];
    return;
  }
  const auto drawn = [=](std::size_t i) { return _mm_xor_si128(LoadWords(words + i), LoadWords(partners + i)); };
  const __m128i last = drawn(count - 4);
  for (std::size_t i = 0; i < count - 4; i += 4) StoreWords(words + i, drawn(i));
  StoreWords(words + count - 4, last);
}

std::uint32_t Wrapped(std::size_t cursor) noexcept {
  return static_cast<std::uint32_t>(cursor < R250Generator::kWords ? cursor : cursor - R250Generator::kWords);
}

}  // namespace

// Up to the place where either cursor wraps, words lie one behind the other.
void R250Generator::Skip(std::size_t count) noexcept {
  while (count > 0) {
    const std::size_t run = std::min<std::size_t>(count, kWords - std::max(cursor_a_, cursor_b_));
    DrawRun(words_.data() + cursor_a_, words_.data() + cursor_b_, run);
    cursor_a_ = Wrapped(cursor_a_ + run);
    cursor_b_ = Wrapped(cursor_b_ + run);
    count -= run;
  }
}

void R250Generator::CopyTo(std::uint32_t* words) const noexcept {
  const auto oldest = words_.begin() + cursor_a_;
  std::copy(words_.begin(), oldest, std::copy(oldest, words_.end(), words));
}

void R250Generator::GoOnFrom(const std::uint32_t* words, std::size_t count) noexcept {
  cursor_a_ = Wrapped(cursor_a_ + count % kWords);
  cursor_b_ = Wrapped(cursor_b_ + count % kWords);
  const auto oldest = words_.begin() + cursor_a_;
  const auto* const rest = words + (kWords - cursor_a_);
  std::copy(words, rest, oldest);
  std::copy(rest, words + kWords, words_.begin());
}

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
