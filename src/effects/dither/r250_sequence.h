// The words of a generator laid out in the order of time, so that vectors of them can be drawn:
//
//   x[n] = x[n-250] xor x[n-147]
#pragma once

#include <immintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "effects/dither/r250_generator.h"

namespace tervan {

class R250Sequence {
 public:
  static constexpr std::size_t kMostAtOnce = 256;

  // Draws from a place on.
  class Reader {
   public:
    [[gnu::target("avx2")]] __m256i DrawEight() noexcept {
      const auto at = [this](std::ptrdiff_t offset) { return reinterpret_cast<__m256i*>(next_ + offset); };
      const __m256i words = _mm256_xor_si256(_mm256_loadu_si256(at(kOldest)), _mm256_loadu_si256(at(kPartner)));
      _mm256_storeu_si256(at(0), words);
      next_ += 8;
      return words;
    }
    __m128i DrawFour() noexcept {
      const __m128i words = _mm_xor_si128(_mm_loadu_si128(At(kOldest)), _mm_loadu_si128(At(kPartner)));
      _mm_storeu_si128(At(0), words);
      next_ += 4;
      return words;
    }
    // In the lower half.
    __m128i DrawTwo() noexcept {
      const __m128i words = _mm_xor_si128(_mm_loadl_epi64(At(kOldest)), _mm_loadl_epi64(At(kPartner)));
      _mm_storel_epi64(At(0), words);
      next_ += 2;
      return words;
    }
    std::uint32_t Draw() noexcept {
      *next_ = next_[kOldest] ^ next_[kPartner];
      return *next_++;
    }

   private:
    friend R250Sequence;
    static constexpr std::ptrdiff_t kOldest = -static_cast<std::ptrdiff_t>(R250Generator::kWords);
    static constexpr std::ptrdiff_t kPartner = kOldest + R250Generator::kPartnerOffset;

    explicit Reader(std::uint32_t* next) noexcept : next_(next) {}
    __m128i* At(std::ptrdiff_t offset) const noexcept { return reinterpret_cast<__m128i*>(next_ + offset); }

    std::uint32_t* next_;
  };

  // Goes on from where the generator is.
  void Start(const R250Generator& generator) noexcept { generator.CopyTo(words_); }

  // Leaves the generator where the sequence is.
  void Finish(R250Generator& generator) const noexcept { generator.GoOnFrom(words_ + at_, drawn_); }

  // For up to kMostAtOnce words. What is drawn and not passed will be drawn again.
  Reader Read() noexcept {
    if (at_ + kMostAtOnce > kRoom) StartOver();
    return Reader(words_ + at_ + R250Generator::kWords);
  }
  void Pass(std::size_t words) noexcept {
    at_ += words;
    drawn_ += words;
  }

  std::uint32_t Draw() noexcept {
    const std::uint32_t word = Read().Draw();
    Pass(1);
    return word;
  }

 private:
  static constexpr std::size_t kRoom = 1024;  // several times what is kept, so that starting over costs little

  [[gnu::noinline]] void StartOver() noexcept {
    std::copy_n(words_ + at_, R250Generator::kWords, words_);
    at_ = 0;
  }

  std::uint32_t words_[R250Generator::kWords + kRoom];
  std::size_t at_ = 0;  // of the oldest word that counts
  std::size_t drawn_ = 0;
};

}  // namespace tervan
