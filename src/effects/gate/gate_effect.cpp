#include "effects/gate/gate_effect.h"

namespace tervan {

constinit const EffectTraits kGateTraits{
    .filter_clsid = {0x869419dd, 0x501f, 0x11d3, {0x8c, 0xdc, 0x00, 0xc0, 0x4f, 0x6b, 0x8e, 0x4c}},
    .page_clsid = {0x869419de, 0x501f, 0x11d3, {0x8c, 0xdc, 0x00, 0xc0, 0x4f, 0x6b, 0x8e, 0x4c}},
    .drains_at_end = false,
    .mode_settles = ModeSettles::kAfterPush,
    .settings_replaced_code = kSettingsReplaced,
    .param_set_code = kParamSetByHost,
    .stored = {gate::kForms, sizeof(GateSettings), LoadNotifies::kAlways},
    .presets = ListOf(gate::kPresets),
};

}  // namespace tervan
