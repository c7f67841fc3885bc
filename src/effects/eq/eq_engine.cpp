#include "effects/eq/eq_engine.h"

#include <type_traits>

namespace tervan {
namespace {

constexpr double kQuietState = 1e-5;

}  // namespace

void EqEngine::SetFormat(const StreamFormat& format) {
  if (format.nSamplesPerSec != this->format().nSamplesPerSec || format.nChannels != this->format().nChannels) {
    channels_ = {};
  }
  AutomatedEngine::SetFormat(format);
}

void EqEngine::Start() {
  channels_ = {};
  quiet_ = true;
  AutomatedEngine::Start();
}

void EqEngine::Design(const EqSettings& settings, ProcessMode) {
  used_slots_ = 0;
  for (std::uint32_t band = 0; band < kEqBands; ++band) {
    const EqBandDesign design = DescribeBand(settings, band, format().nSamplesPerSec);
    if (design.gain_db != 0.0) sections_[used_slots_++] = DesignSection(design);
  }
  if (used_slots_ == 0) channels_ = {};
}

template <typename Codec, std::size_t kChannels>
void EqEngine::RunSlot(std::size_t slot, typename Codec::Sample* data, std::uint32_t frames) {
  const EqSection& section = sections_[slot];
  for (std::int32_t stage = 0; stage < section.stages; ++stage) {
    eq::StatePair* states[kChannels];
    for (std::size_t channel = 0; channel < kChannels; ++channel)
      states[channel] = &channels_[channel].slots[slot][stage];
    switch (section.mode) {
      case EqMode::kLowShelf: eq::RunPass<Codec, EqMode::kLowShelf>(section, states, data, frames); break;
      case EqMode::kBand: eq::RunPass<Codec, EqMode::kBand>(section, states, data, frames); break;
      case EqMode::kHighShelf: eq::RunPass<Codec, EqMode::kHighShelf>(section, states, data, frames); break;
    }
  }
}

template <typename Codec>
void EqEngine::Run(typename Codec::Sample* data, std::uint32_t frames) {
  for (std::size_t slot = 0; slot < used_slots_; ++slot) {
    if (format().nChannels == 1) {
      RunSlot<Codec, 1>(slot, data, frames);
    } else {
      RunSlot<Codec, 2>(slot, data, frames);
    }
  }
  if constexpr (std::is_same_v<Codec, Float32Codec>) {
    if (used_slots_ != 0) quiet_ = IsQuiet();
  }
}

// Levels are compared with their sign: a negative state counts as quiet.
bool EqEngine::IsQuiet() const {
  for (std::size_t channel = 0; channel < format().nChannels; ++channel) {
    for (std::size_t slot = 0; slot < used_slots_; ++slot) {
      const eq::StatePair& first = channels_[channel].slots[slot][0];
      if (first.newest > kQuietState || first.older > kQuietState) return false;
    }
  }
  return true;
}

template void EqEngine::Run<Pcm8Codec>(std::uint8_t* data, std::uint32_t frames);
template void EqEngine::Run<Pcm16Codec>(std::int16_t* data, std::uint32_t frames);
template void EqEngine::Run<Pcm32Codec>(std::int32_t* data, std::uint32_t frames);
template void EqEngine::Run<Float32Codec>(float* data, std::uint32_t frames);
template void EqEngine::Run<Float64Codec>(double* data, std::uint32_t frames);

}  // namespace tervan
