// The EQ's passes in their plain form: one runs a stage of a section over a buffer, in place. The integer formats are
// requantised by every pass. Tests and benchmarks hold the wavefront of eq_kernel.h against it.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "effects/eq/eq_design.h"
#include "effects/eq/eq_kernel.h"
#include "shell/sample_codec.h"
#include "support/state_floor.h"

namespace tervan::eq {

// Coefficients and states of a pass in locals, and one frame of one channel.
template <EqMode kMode>
struct Stage {
  double c0, c1, gain;
  double w1 = 0.0, w2 = 0.0;

  Stage() = default;
  Stage(const EqSection& section, const StatePair& state) noexcept
      : c0(section.c0), c1(section.c1), gain(section.gain), w1(Flushed(state.newest)), w2(Flushed(state.older)) {}

  [[gnu::always_inline]] double Next(double x) noexcept {
    const double feedback = kMode == EqMode::kBand ? c0 * w1 + c1 * w2 : c0 * w1;
    double w = feedback + gain * x;
    const double magnitude = std::fabs(w);
    if (!(magnitude >= kStateFloor && magnitude <= kStateLimit)) [[unlikely]]
      w = magnitude < kStateFloor ? 0.0 : Unexcited(feedback);
    double y = x + w;
    if constexpr (kMode == EqMode::kLowShelf) y += w1;
    if constexpr (kMode == EqMode::kHighShelf) y -= w1;
    if constexpr (kMode == EqMode::kBand) {
      y -= w2;
      w2 = w1;
    }
    w1 = w;
    return y;
  }

 private:
  // What becomes of the state when its sample is left out.
  static double Unexcited(double feedback) noexcept {
    return std::fabs(feedback) <= kStateLimit ? Flushed(feedback) : 0.0;
  }
};

// frames × kChannels interleaved samples. states: those of this stage, one per channel.
template <typename Codec, EqMode kMode, std::size_t kChannels>
void RunPass(const EqSection& section, StatePair* const (&states)[kChannels], typename Codec::Sample* samples,
             std::uint32_t frames) noexcept {
  Stage<kMode> stage[kChannels];
  for (std::size_t channel = 0; channel < kChannels; ++channel) stage[channel] = {section, *states[channel]};
  for (std::uint32_t frame = 0; frame < frames; ++frame, samples += kChannels) {
#pragma GCC unroll 2  // or the states would lie in memory
    for (std::size_t channel = 0; channel < kChannels; ++channel) {
      samples[channel] = Codec::Encode(stage[channel].Next(Codec::Decode(samples[channel])));
    }
  }
  for (std::size_t channel = 0; channel < kChannels; ++channel)
    *states[channel] = {stage[channel].w1, stage[channel].w2};
}

template <typename Codec, std::size_t kChannels>
void RunStagesPlainly(std::span<const StageRun> stages, typename Codec::Sample* samples,
                      std::uint32_t frames) noexcept {
  for (const StageRun& stage : stages) {
    StatePair* states[kChannels];
    for (std::size_t channel = 0; channel < kChannels; ++channel) states[channel] = stage.states[channel];
    switch (stage.section->mode) {
      case EqMode::kLowShelf: RunPass<Codec, EqMode::kLowShelf>(*stage.section, states, samples, frames); break;
      case EqMode::kBand: RunPass<Codec, EqMode::kBand>(*stage.section, states, samples, frames); break;
      case EqMode::kHighShelf: RunPass<Codec, EqMode::kHighShelf>(*stage.section, states, samples, frames); break;
    }
  }
}

}  // namespace tervan::eq
