// The Track EQ as the shell sees it.
#pragma once

#include "effects/eq/eq_control.h"
#include "effects/eq/eq_engine.h"
#include "shell/automated_effect.h"

namespace tervan {

extern const EffectTraits kEqTraits;

class EqEffect final : public AutomatedEffect<EqSettings, EqControl, EqEngine> {
 public:
  explicit EqEffect(WindowPoster& poster) : AutomatedEffect(kEqTraits, poster) {}

  bool IsActive() override { return control_.params().GetInteger(eq::kBypassParam) == 0; }
};

}  // namespace tervan
