// Rounding to the nearest integer, ties to even, whatever mode the caller runs in.
#pragma once

#include <emmintrin.h>

#include <cstdint>
#include <limits>

namespace tervan {

// Sets the mode for its lifetime and puts the caller's control word back. Both widths compute with SSE, so MXCSR is all
// there is to it.
class RoundToNearestScope {
 public:
  RoundToNearestScope() noexcept : caller_(_mm_getcsr()) {
    if (IsOther()) _mm_setcsr(caller_ & ~static_cast<unsigned>(_MM_ROUND_MASK));
  }
  ~RoundToNearestScope() {
    if (IsOther()) _mm_setcsr((_mm_getcsr() & ~static_cast<unsigned>(_MM_ROUND_MASK)) | (caller_ & _MM_ROUND_MASK));
  }
  RoundToNearestScope(const RoundToNearestScope&) = delete;
  RoundToNearestScope& operator=(const RoundToNearestScope&) = delete;

 private:
  bool IsOther() const noexcept { return (caller_ & _MM_ROUND_MASK) != _MM_ROUND_NEAREST; }

  const unsigned caller_;
};

// Within a RoundToNearestScope. Saturates; NaN becomes 0.
inline std::int32_t RoundToInt32(double y) noexcept {
  using Limits = std::numeric_limits<std::int32_t>;
  if (!(y > Limits::min() && y < Limits::max())) [[unlikely]] {
    if (y >= Limits::max()) return Limits::max();
    return y <= Limits::min() ? Limits::min() : 0;
  }
  return _mm_cvtsd_si32(_mm_set_sd(y));
}

}  // namespace tervan
