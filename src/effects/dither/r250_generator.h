// A shift-register noise source: fast, with a period of 2^250 - 1.
//
//   x[n] = x[n-250] xor x[n-147]
//
// Source: S. Kirkpatrick, E. P. Stoll, "A very fast shift-register sequence random number generator", Journal of
// Computational Physics 40 (1981).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tervan {

class R250Generator {
 public:
  static constexpr std::uint32_t kWords = 250;
  static constexpr std::uint32_t kPartnerOffset = 103;  // of words, from the oldest one

  // Fills the table. The same seed gives the same sequence.
  void Seed(std::uint32_t seed);

  std::uint32_t Draw() noexcept {
    const std::uint32_t word = words_[cursor_a_] ^ words_[cursor_b_];
    words_[cursor_a_] = word;
    cursor_a_ = successor_[cursor_a_];
    cursor_b_ = successor_[cursor_b_];
    return word;
  }

  // As so many draws.
  void Skip(std::size_t count) noexcept;

  std::uint32_t LastDrawn() const noexcept { return words_[(cursor_a_ + kWords - 1) % kWords]; }

  // For drawing elsewhere: copies the last kWords words, the oldest first.
  void CopyTo(std::uint32_t* words) const noexcept;
  // As after count more draws, which left these as the last kWords words, the oldest first.
  void GoOnFrom(const std::uint32_t* words, std::size_t count) noexcept;

  bool operator==(const R250Generator&) const = default;

  // In [-1, 1).
  double DrawUniform() noexcept { return static_cast<std::int32_t>(Draw()) * 0x1p-31; }

 private:
  std::uint32_t cursor_a_ = 0;                    // the word that the next draw replaces
  std::uint32_t cursor_b_ = 0;                    // its partner
  std::array<std::uint8_t, kWords> successor_{};  // i + 1, and 0 for the last
  std::array<std::uint32_t, kWords> words_{};
};

}  // namespace tervan
