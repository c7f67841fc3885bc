// The Track Noise Gate's settings: record, parameter table, stored forms and factory presets.
#pragma once

#include <cstddef>
#include <cstdint>

#include "params/param_descriptor.h"
#include "shell/stored_state.h"
#include "support/result.h"

namespace tervan {

// Hosts keep this record: its layout is fixed.
struct GateSettings {
  std::int32_t attack_ms;
  std::int32_t release_ms;
  std::int32_t threshold_tenth_db;  // the lowest value keeps the gate open
  std::int32_t bypass;              // 0 or 1
};
static_assert(sizeof(GateSettings) == 16);

// Row numbers of the parameter table. Hosts save them.
enum class GateParam : std::uint32_t { kThresholdLevel, kAttackTime, kReleaseTime, kBypass };

namespace gate {

inline constexpr ControlKind kInteger = ControlKind::kInteger;
inline constexpr ControlKind kSwitch = ControlKind::kSwitch;

// label, unit, type, min, max, neutral, control min, control max, kind, offset
inline constexpr ParamDescriptor kParams[] = {
    Describe({u"Threshold level", u"dB", ParamType::kFloat, -80, 0, -40, -800, 0, kInteger, 8}),
    Describe({u"Attack time", u"ms", ParamType::kFloat, 0, 500, 250, 0, 500, kInteger, 0}),
    Describe({u"Release time", u"ms", ParamType::kFloat, 1, 5000, 2500, 1, 5000, kInteger, 4}),
    Describe({u"Bypass", u"", ParamType::kBool, 0, 1, 0, 0, 1, kSwitch, 12}),
};

// The compressor's tag, too: the size tells the records apart.
inline constexpr GUID kTag{0xc400f99b, 0x0c6e, 0x444c, {0x8f, 0x20, 0x98, 0xdb, 0x21, 0x6b, 0xe5, 0x6e}};
inline constexpr GUID kOlderTag{0x869419e0, 0x501f, 0x11d3, {0x8c, 0xdc, 0x00, 0xc0, 0x4f, 0x6b, 0x8e, 0x4c}};

inline constexpr GateSettings kMissingFields{};

inline constexpr StoredForm kForms[] = {
    {36, &kTag, 16, nullptr},
    {32, &kOlderTag, 12, &kMissingFields},
};

// One row each:
// clang-format off
// name, {attack ms, release ms, threshold in tenths of a dB, bypass}
inline constexpr FactoryPreset<GateSettings> kPresets[] = {
    {"(Default)", {3, 100, -800, 0}},
    {"Default all parameters", {3, 100, -800, 0}},
    {"Strong beats only", {1, 300, -60, 0}},
    {"Long decay time", {10, 1000, -380, 0}},
    {"Noise gate 1", {10, 500, -600, 0}},
    {"Noise gate 2", {1, 500, -320, 0}},
    {"Slow attack", {300, 1000, -400, 0}},
};
// clang-format on

}  // namespace gate
}  // namespace tervan
