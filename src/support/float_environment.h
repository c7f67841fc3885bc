// The floating-point environment that our arithmetic expects: rounding to nearest, ties to even, subnormals kept,
// exceptions masked. Hosts run with others: some unmask exceptions, some flush subnormals.
#pragma once

#include <xmmintrin.h>

namespace tervan {

// Sets it for its lifetime, then puts the caller's back. All builds compute with SSE, so its control word is all that
// counts. The compiler knows nothing of it and may move arithmetic across: keep that in functions of their own.
class FloatEnvironmentScope {
 public:
  FloatEnvironmentScope() noexcept : caller_(_mm_getcsr()) {
    if (IsOther()) _mm_setcsr(kExpected);
  }
  ~FloatEnvironmentScope() {
    if (IsOther()) _mm_setcsr(caller_);
  }
  FloatEnvironmentScope(const FloatEnvironmentScope&) = delete;
  FloatEnvironmentScope& operator=(const FloatEnvironmentScope&) = delete;

 private:
  static constexpr unsigned kExpected = 0x1f80;
  static constexpr unsigned kStatusBits = 0x3f;  // what has happened, not what shall

  bool IsOther() const noexcept { return (caller_ & ~kStatusBits) != kExpected; }

  const unsigned caller_;
};

}  // namespace tervan
