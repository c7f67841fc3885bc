// The Dither's settings: record, ranges, stored form and factory presets. They are indices into lists, not automatable
// parameters.
#pragma once

#include <cstdint>
#include <iterator>

#include "shell/stored_state.h"
#include "support/result.h"

namespace tervan {

// Hosts keep this record: its layout is fixed.
struct DitherSettings {
  std::int32_t quantization_depth;  // index into kWordLengthBits
  std::int32_t dither_type;         // a DitherType
  std::int32_t noise_shaping;       // a NoiseShaping; the last one is not offered
};
static_assert(sizeof(DitherSettings) == 12);

namespace dither {

inline constexpr std::uint32_t kWordLengthBits[] = {8, 12, 16, 18, 20, 24, 32};

// A field of the record and the highest index it takes, from 0.
struct Field {
  std::int32_t DitherSettings::*member;
  std::int32_t highest;
};
inline constexpr Field kDepth{&DitherSettings::quantization_depth, std::size(kWordLengthBits) - 1};
inline constexpr Field kType{&DitherSettings::dither_type, 5};
inline constexpr Field kShaping{&DitherSettings::noise_shaping, 2};
inline constexpr Field kFields[] = {kDepth, kType, kShaping};

inline constexpr GUID kTag{0x260df3e4, 0xac77, 0x11d2, {0x9e, 0x93, 0x00, 0xc0, 0x4f, 0x68, 0xbe, 0x44}};

inline constexpr StoredForm kForms[] = {{32, &kTag, 12, nullptr}};

// name, {depth, type, shaping}; a shaping above its range is clamped when the preset is applied
inline constexpr FactoryPreset<DitherSettings> kPresets[] = {
    {"(Default)", {2, 1, 0}},
    {"Default all parameters", {2, 1, 0}},
    {"Dither for 8-bit (low sample rate)", {0, 3, 0}},
    {"Dither for 8-bit", {0, 4, 1}},
    {"Dither for 16-bit (low sample rate)", {2, 3, 2}},
    {"Dither for 16-bit", {2, 4, 3}},
};

}  // namespace dither
}  // namespace tervan
