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

template <typename Codec>
void EqEngine::Run(typename Codec::Sample* data, std::uint32_t frames) {
  eq::StageRun stages[std::size_t{kEqBands} * kEqMaxStages];
  std::size_t count = 0;
  for (std::size_t slot = 0; slot < used_slots_; ++slot) {
    for (std::int32_t stage = 0; stage < sections_[slot].stages; ++stage) {
      stages[count++] = {&sections_[slot], {&channels_[0].slots[slot][stage], &channels_[1].slots[slot][stage]}};
    }
  }
  if (format().nChannels == 1) {
    eq::RunStages<Codec, 1>(simd_level_, {stages, count}, data, frames);
  } else {
    eq::RunStages<Codec, 2>(simd_level_, {stages, count}, data, frames);
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
