// The Track Noise Gate as the shell sees it.
#pragma once

#include "effects/gate/gate_engine.h"
#include "effects/gate/gate_settings.h"
#include "shell/automated_effect.h"
#include "shell/record_control.h"

namespace tervan {

extern const EffectTraits kGateTraits;

class GateControl final : public RecordControl<GateSettings> {
 public:
  explicit GateControl(WindowPoster& poster) : RecordControl(gate::kParams, poster) {}
};

class GateEffect final : public AutomatedEffect<GateSettings, GateControl, GateEngine> {
 public:
  explicit GateEffect(WindowPoster& poster) : AutomatedEffect(kGateTraits, poster) {}
};

}  // namespace tervan
