// The gate's signal path: one gain for all channels, in place, in all sample formats.
#pragma once

#include <cstdint>

#include "effects/gate/gate_plain.h"
#include "effects/gate/gate_settings.h"
#include "shell/automated_engine.h"

namespace tervan {

class GateEngine final : public AutomatedEngine<GateEngine, GateSettings> {
 public:
  using AutomatedEngine::AutomatedEngine;

  // The level window starts anew.
  void Start();

 private:
  friend class AutomatedEngine<GateEngine, GateSettings>;

  // Safe for any settings. A reset closes the gate; the level window runs on.
  void Design(const GateSettings& settings, ProcessMode mode);

  template <typename Codec>
  void Run(typename Codec::Sample* data, std::uint32_t frames);

  bool EndStream() const { return true; }

  gate::Coefficients coefficients_;
  gate::State state_;
};

}  // namespace tervan
