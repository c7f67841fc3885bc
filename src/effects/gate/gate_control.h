// The gate's control object: settings that are parameters, and nothing besides.
#pragma once

#include "effects/gate/gate_settings.h"
#include "shell/record_control.h"

namespace tervan {

class GateControl final : public RecordControl<GateSettings> {
 public:
  explicit GateControl(WindowPoster& poster) : RecordControl(gate::kParams, poster) {}
};

}  // namespace tervan
