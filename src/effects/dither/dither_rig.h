// What a test or a benchmark of the dither's routines works on.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

#include "effects/dither/dither_noise.h"
#include "effects/dither/dither_state.h"
#include "effects/dither/r250_generator.h"

namespace tervan::testing {

// A state by itself, as an engine configures it.
class DitherRig {
 public:
  DitherRig(std::uint32_t bits, std::uint32_t type, std::uint32_t shaping, std::uint32_t seed)
      : source_(kNoiseSources[type]),
        type_(static_cast<DitherType>(type)),
        shaping_(static_cast<NoiseShaping>(shaping)),
        scale_(std::exp2(bits - 1.0)) {
    generator_.Seed(seed);
  }

  DitherState State() {
    const double amplitude = shaping_ == NoiseShaping::kOff ? source_.amplitude_lsb / scale_ : source_.amplitude_lsb;
    return {type_,        shaping_,   source_.function,  amplitude, scale_,
            1.0 / scale_, generator_, highpass_history_, error_a_,  error_b_};
  }

  bool operator==(const DitherRig& other) const {
    return generator_ == other.generator_ && highpass_history_ == other.highpass_history_ &&
           std::memcmp(error_a_, other.error_a_, sizeof error_a_) == 0 &&
           std::memcmp(error_b_, other.error_b_, sizeof error_b_) == 0;
  }

 private:
  const NoiseSource source_;
  const DitherType type_;
  const NoiseShaping shaping_;
  const double scale_;
  R250Generator generator_;
  double highpass_history_ = 0.0;
  double error_a_[kMaxDitherChannels] = {};
  double error_b_[kMaxDitherChannels] = {};
};

}  // namespace tervan::testing
