// The floating-point environment that our arithmetic expects: rounding to nearest, ties to even, full precision,
// subnormals kept, exceptions masked. Hosts run with others: some unmask exceptions, some flush subnormals, some leave
// the older unit at single precision.
#pragma once

#include <xmmintrin.h>

#include <cstdint>

namespace tervan {

// Sets it for its lifetime, then puts the caller's back. All builds compute with SSE; the platform's logarithms and
// powers still use the x87 unit. The compiler knows nothing of either control word and may move arithmetic across their
// change: keep that in functions of their own.
class FloatEnvironmentScope {
 public:
  FloatEnvironmentScope() noexcept : caller_(_mm_getcsr()) {
    asm volatile("fnstcw %0" : "=m"(caller_x87_));
    if (IsOther()) _mm_setcsr(kExpected);
    if (IsOtherX87()) SetX87(kExpectedX87);
  }
  ~FloatEnvironmentScope() {
    if (IsOther()) _mm_setcsr(caller_);
    if (IsOtherX87()) SetX87(caller_x87_);
  }
  FloatEnvironmentScope(const FloatEnvironmentScope&) = delete;
  FloatEnvironmentScope& operator=(const FloatEnvironmentScope&) = delete;

 private:
  static constexpr unsigned kExpected = 0x1f80;
  static constexpr unsigned kStatusBits = 0x3f;  // what has happened, not what shall
  static constexpr std::uint16_t kExpectedX87 = 0x037f;

  bool IsOther() const noexcept { return (caller_ & ~kStatusBits) != kExpected; }
  bool IsOtherX87() const noexcept { return caller_x87_ != kExpectedX87; }
  // An exception that was raised where it is masked strikes where it is not, so none is left behind.
  static void SetX87(std::uint16_t control_word) noexcept { asm volatile("fnclex\n\tfldcw %0" : : "m"(control_word)); }

  const unsigned caller_;
  std::uint16_t caller_x87_;
};

}  // namespace tervan
