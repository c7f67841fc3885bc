// The EQ's signal path: up to four sections one after the other, in place, in all sample formats.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "effects/eq/eq_design.h"
#include "effects/eq/eq_kernel.h"
#include "effects/eq/eq_settings.h"
#include "shell/automated_engine.h"
#include "support/simd_level.h"

namespace tervan {

// The states of a channel belong to the slots that sections take, not to bands: a section goes on with what it finds.
struct EqChannelState {
  eq::StatePair slots[kEqBands][kEqMaxStages];
};

class EqEngine final : public AutomatedEngine<EqEngine, EqSettings> {
 public:
  using AutomatedEngine::AutomatedEngine;

  // Another rate or channel count than before clears the states.
  void SetFormat(const StreamFormat& format);

  // Clears the states.
  void Start();

 private:
  friend class AutomatedEngine<EqEngine, EqSettings>;

  // Bands that take part fill the slots in their order. States are kept in either mode, and cleared when no band is
  // left.
  void Design(const EqSettings& settings, ProcessMode mode);

  template <typename Codec>
  void Run(typename Codec::Sample* data, std::uint32_t frames);

  // The tail has died away.
  bool EndStream() const { return quiet_; }

  bool IsQuiet() const;

  const SimdLevel simd_level_ = BestSimdLevel();
  std::array<EqSection, kEqBands> sections_;
  std::size_t used_slots_ = 0;  // 0: all bands are off and no pass runs
  std::array<EqChannelState, 2> channels_{};
  bool quiet_ = true;  // as the last pass over 32-bit floats left it
};

}  // namespace tervan
