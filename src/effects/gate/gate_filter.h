// The Track Noise Gate's filter: the shell plus IGateSettings.
#pragma once

#include "effects/gate/gate_effect.h"
#include "effects/gate/gate_interface.h"
#include "shell/effect_filter.h"

namespace tervan {

inline constexpr wchar_t kGateFilterName[] = L"Tervan Track Noise Gate";
inline constexpr directshow::FilterSetup kGateFilterSetup =
    EffectFilterSetup(&kGateTraits.filter_clsid, kGateFilterName);

class GateFilter final : public EffectFilter<IGateSettings, GateSettings, GateEffect, kGateFilterSetup> {
 public:
  using EffectFilter::EffectFilter;

#define TERVAN_GATE_SLOTS(P) TERVAN_FORWARD_PARAM_SLOTS(P, INT32, control_, static_cast<std::uint32_t>(GateParam::k##P))
  TERVAN_GATE_SLOTS(AttackTime)
  TERVAN_GATE_SLOTS(ReleaseTime)
  TERVAN_GATE_SLOTS(ThresholdLevel)
  TERVAN_GATE_SLOTS(Bypass)
#undef TERVAN_GATE_SLOTS
};

}  // namespace tervan
