// The Track Noise Gate as the shell sees it.
#pragma once

#include "effects/gate/gate_control.h"
#include "effects/gate/gate_engine.h"
#include "shell/automated_effect.h"

namespace tervan {

extern const EffectTraits kGateTraits;

class GateEffect final : public AutomatedEffect<GateSettings, GateControl, GateEngine> {
 public:
  explicit GateEffect(WindowPoster& poster) : AutomatedEffect(kGateTraits, poster) {}
};

}  // namespace tervan
