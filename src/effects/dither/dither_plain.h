// The dither sample by sample, as its formulas read. With the LSB as unit, noise d, and k the factor of the second
// order:
//
//   off            q = round(x + d)
//   first order    v = x - a;      q = round(v + d);             a = q - v    total error shaped by 1 - z^-1
//   second order   v = x - a + b;  q = round(v + d);  b = k a;   a = q - v    by 1 - z^-1 + k z^-2
//
// Source: S. P. Lipshitz, J. Vanderkooy, R. A. Wannamaker, "Minimally audible noise shaping", Journal of the Audio
// Engineering Society 39 (1991).
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "effects/dither/dither_state.h"
#include "support/round_to_nearest.h"
#include "support/state_floor.h"

namespace tervan::dither_plain {

// The errors of one channel that feed back.
struct Errors {
  double a = 0.0;
  double b = 0.0;
};

// No error that noise and rounding leave is as large. One that is comes from a sample beyond the range, or from one
// that is not a number, and does not go on into the next.
inline double Carried(double error_lsb) noexcept {
  constexpr double kMostError_lsb = 16.0;
  return std::fabs(error_lsb) <= kMostError_lsb ? error_lsb : 0.0;
}

// Quantisers: what a sample of a channel becomes, both with full scale 1.0, and the errors carried on.
struct Flat {
  Flat(const DitherState& state, const Errors& errors)
      : scale(state.scale), inverse_scale(state.inverse_scale), errors(errors) {}

  double operator()(double x, double noise) const noexcept {
    return RoundedToInt32((x + noise) * scale) * inverse_scale;
  }

  const double scale, inverse_scale;
  Errors errors;
};

struct FirstOrder {
  FirstOrder(const DitherState& state, const Errors& errors)
      : scale(state.scale), inverse_scale(state.inverse_scale), errors(errors) {}

  double operator()(double x, double noise_lsb) noexcept {
    const double v = x * scale - errors.a;
    const double q = RoundedToInt32(v + noise_lsb);
    errors.a = Carried(q - v);
    return q * inverse_scale;
  }

  const double scale, inverse_scale;
  Errors errors;
};

constexpr double FeedbackFactor(NoiseShaping second_order) {
  return second_order == NoiseShaping::kEqualLoudnessContour ? 0.75 : 0.5;
}

struct SecondOrder {
  SecondOrder(const DitherState& state, const Errors& errors)
      : scale(state.scale), inverse_scale(state.inverse_scale), k(FeedbackFactor(state.shaping)), errors(errors) {}

  double operator()(double x, double noise_lsb) noexcept {
    const double v = x * scale - errors.a + errors.b;
    const double q = RoundedToInt32(v + noise_lsb);
    errors.b = k * errors.a;
    errors.a = Carried(q - v);
    return q * inverse_scale;
  }

  const double scale, inverse_scale, k;
  Errors errors;
};

inline Errors Flushed(const Errors& errors) noexcept { return {tervan::Flushed(errors.a), tervan::Flushed(errors.b)}; }

template <typename Codec, typename Quantiser>
void ProcessWith(const DitherState& state, typename Codec::Sample* samples, std::uint32_t frames,
                 std::uint32_t channels) {
  for (std::uint32_t channel = 0; channel < channels; ++channel) {
    Quantiser quantise(state, {state.error_a[channel], state.error_b[channel]});
    auto* sample = samples + channel;
    for (std::uint32_t frame = 0; frame < frames; ++frame, sample += channels) {
      const double noise = state.noise_function(state.generator, state.amplitude, state.highpass_history);
      *sample = Codec::Encode(quantise(Codec::Decode(*sample), noise));
    }
    const Errors kept = Flushed(quantise.errors);
    state.error_a[channel] = kept.a;
    state.error_b[channel] = kept.b;
  }
}

// Channel by channel.
template <typename Codec>
void Process(const DitherState& state, typename Codec::Sample* samples, std::uint32_t frames, std::uint32_t channels) {
  switch (state.shaping) {
    case NoiseShaping::kOff: return ProcessWith<Codec, Flat>(state, samples, frames, channels);
    case NoiseShaping::kHighPassContour: return ProcessWith<Codec, FirstOrder>(state, samples, frames, channels);
    case NoiseShaping::kEqualLoudnessContour:
    case NoiseShaping::kSecondOrderHalf: return ProcessWith<Codec, SecondOrder>(state, samples, frames, channels);
  }
}

// Frame by frame, as in so many calls of one frame.
template <typename Codec>
void ProcessFrames(const DitherState& state, typename Codec::Sample* samples, std::uint32_t frames,
                   std::uint32_t channels) {
  for (std::uint32_t frame = 0; frame < frames; ++frame) {
    Process<Codec>(state, samples + frame * channels, 1, channels);
  }
}

}  // namespace tervan::dither_plain
