#include "effects/eq/eq_effect.h"

namespace tervan {

constinit const EffectTraits kEqTraits{
    .filter_clsid = {0x8cb69a0a, 0x10e8, 0x11d2, {0x9b, 0x89, 0x00, 0x10, 0x4b, 0x8d, 0x13, 0xc2}},
    .page_clsid = {0x8cb69a0b, 0x10e8, 0x11d2, {0x9b, 0x89, 0x00, 0x10, 0x4b, 0x8d, 0x13, 0xc2}},
    .drains_at_end = false,
    .mode_settles = ModeSettles::kAfterFirstChunk,
    .settings_replaced_code = kSettingsReplaced,
    .param_set_code = std::nullopt,  // the page polls instead
    .stored = {eq::kForms, sizeof(EqSettings), LoadNotifies::kAfterBodyRead},
    .presets = ListOf(eq::kPresets),
};

}  // namespace tervan
