// The Track Compressor's settings: record, parameter table, stored forms and factory presets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

#include "params/param_descriptor.h"
#include "shell/stored_state.h"
#include "support/result.h"

namespace tervan {

// Hosts keep this record: its layout is fixed.
struct CompressorSettings {
  float input_gain_db;
  float output_gain_db;
  float threshold_db;
  float amount;  // compression ratio x:1; kAmountInfinite stands for an infinite one
  float attack_time_ms;
  float release_time_ms;
  std::int32_t auto_gain_compensation;  // 0 or 1
  std::int32_t smooth_saturation;       // 0 or 1
  std::int32_t reserved;                // written 0, never read
  std::int32_t bypass;                  // 0 or 1
};
static_assert(sizeof(CompressorSettings) == 40 && offsetof(CompressorSettings, bypass) == 36);

inline constexpr float kAmountInfinite = 50.0f;

// Row numbers of the parameter table. Hosts save them.
enum class CompressorParam : std::uint32_t {
  kInputGain,
  kOutputGain,
  kThreshold,
  kAmount,
  kAttackTime,
  kReleaseTime,
  kAutoGainCompensation,
  kSmoothSaturation,
  kBypass,
};

namespace compressor {

inline constexpr ControlKind kFloat = ControlKind::kFloat;
inline constexpr ControlKind kSwitch = ControlKind::kSwitch;

// label, unit, type, min, max, neutral, control min, control max, kind, offset
inline constexpr ParamDescriptor kParams[] = {
    Describe({u"Input Gain", u"dB", ParamType::kFloat, -60, 25, 0, -60, 25, kFloat, 0}),
    Describe({u"Output Gain", u"dB", ParamType::kFloat, -60, 25, 0, -60, 25, kFloat, 4}),
    Describe({u"Threshold", u"dB", ParamType::kFloat, -60, 0, -40, -60, 0, kFloat, 8}),
    Describe({u"Amount", u"", ParamType::kFloat, 1, 50, 2, 1, 50, kFloat, 12}),
    Describe({u"Attack Time", u"ms", ParamType::kFloat, 0, 500, 15, 0, 500, kFloat, 16}),
    Describe({u"Release Time", u"ms", ParamType::kFloat, 0, 5000, 250, 0, 5000, kFloat, 20}),
    Describe({u"Auto Gain Compensation", u"", ParamType::kBool, 0, 1, 1, 0, 1, kSwitch, 24}),
    Describe({u"Smooth Saturation", u"", ParamType::kBool, 0, 1, 0, 0, 1, kSwitch, 28}),
    Describe({u"Bypass", u"", ParamType::kBool, 0, 1, 0, 0, 1, kSwitch, 36}),
};
static_assert(std::size(kParams) == static_cast<std::size_t>(CompressorParam::kBypass) + 1);

inline constexpr GUID kTag{0xc400f99b, 0x0c6e, 0x444c, {0x8f, 0x20, 0x98, 0xdb, 0x21, 0x6b, 0xe5, 0x6e}};
inline constexpr GUID kOlderTag{0x23c9f22b, 0x40ec, 0x11d2, {0x9d, 0x36, 0x00, 0xc0, 0x4f, 0x8e, 0xdc, 0x1e}};

// What bodies that end early go without. A body of six words has no switches, one of eight no bypass.
inline constexpr CompressorSettings kMissingFields{0, 0, 0, 0, 0, 0, 1, 0, 0, 0};
inline constexpr std::uint32_t kLegacyWords6 = 6;
inline constexpr std::uint32_t kLegacyWords8 = 8;

inline constexpr StoredForm kForms[] = {
    {60, &kTag, 40, nullptr},
    {56, &kOlderTag, 36, &kMissingFields},
    {44, nullptr, 4 * kLegacyWords6, &kMissingFields},
    {52, nullptr, 4 * kLegacyWords8, &kMissingFields},
};

// name, {in dB, out dB, threshold dB, amount, attack ms, release ms, auto gain, smooth, reserved, bypass}
inline constexpr FactoryPreset<CompressorSettings> kPresets[] = {
    {"(Default)", {0, 0, 0, 1, 15, 250, 1, 0, 0, 0}},
    {"Default all parameters", {0, 0, 0, 1, 15, 250, 1, 0, 0, 0}},
    {"Soft Limiter", {0, 0, -6, 25, 0, 250, 0, 1, 0, 0}},
    {"1.5:1 compression starting at -24 dB", {0, 0, -24, 1.5f, 15, 250, 0, 1, 0, 0}},
    {"2:1 compression starting at -18 dB", {0, 0, -18, 2, 15, 250, 1, 0, 0, 0}},
    {"3:1 compression starting at -15 dB", {0, 0, -15, 3, 15, 250, 1, 1, 0, 0}},
    {"6:1 compression starting at -12 dB", {0, 0, -12, 6, 15, 250, 1, 1, 0, 0}},
    {"10:1 compression starting at -9 dB", {0, 0, -9, 10, 15, 250, 1, 1, 0, 0}},
    {"Limit levels to -6 dB (hard limiter)", {0, 0, -6, kAmountInfinite, 0, 250, 0, 0, 0, 0}},
};

}  // namespace compressor
}  // namespace tervan
