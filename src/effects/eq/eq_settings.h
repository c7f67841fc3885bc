// The Track EQ's settings: record, parameter table, stored form and factory presets.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "params/param_descriptor.h"
#include "shell/stored_state.h"
#include "support/result.h"

namespace tervan {

inline constexpr std::uint32_t kEqBands = 4;

// Hosts keep this record: its layout is fixed.
struct EqSettings {
  std::int32_t gain[kEqBands];       // tenths of a dB
  std::int32_t bandwidth[kEqBands];  // tenths of an octave
  std::int32_t frequency[kEqBands];  // Hz
  std::int32_t mode[kEqBands];       // 1 low shelf, 2 band, 3 high shelf
  std::int32_t rolloff[kEqBands];    // 1..4: 6, 12, 18, 24 dB/octave
  std::int32_t enable[kEqBands];     // 0 or 1
  std::int32_t selected_band;        // 0..3, for the page; no parameter
  std::int32_t bypass;               // 0 or 1
};
static_assert(sizeof(EqSettings) == 104 && offsetof(EqSettings, bypass) == 100);

namespace eq {

inline constexpr std::uint32_t kParamsPerBand = 6;
inline constexpr std::uint32_t kBypassParam = kEqBands * kParamsPerBand;

struct BandNeutrals {
  float frequency_hz, rolloff, mode;
};
inline constexpr BandNeutrals kNeutrals[kEqBands] = {{100, 2, 1}, {300, 1, 2}, {1000, 1, 2}, {5000, 2, 3}};

// label behind "BandN ", unit, type, min, max, neutral of band 1, control min, control max, kind, offset of band 1,
// items
inline constexpr ParamRow kBandRows[kParamsPerBand] = {
    {u"Frequency", u"Hz", ParamType::kFloat, 20, 20000, 100, 20, 20000, ControlKind::kInteger, 32},
    {u"Gain", u"dB", ParamType::kFloat, -15, 15, 0, -150, 150, ControlKind::kInteger, 0},
    {u"Bandwidth", u"octaves", ParamType::kFloat, 0.1f, 4, 1, 1, 40, ControlKind::kInteger, 16},
    {u"Rolloff", u"dB/octave", ParamType::kEnum, 1, 4, 2, 1, 4, ControlKind::kInteger, 64, u"6,12,18,24"},
    {u"Mode", u"", ParamType::kEnum, 1, 3, 1, 1, 3, ControlKind::kInteger, 48, u"Low Shelf,Band,High Shelf"},
    {u"Enable", u"", ParamType::kBool, 0, 1, 1, 0, 1, ControlKind::kSwitch, 80},
};
enum BandRow : std::uint32_t { kFrequency, kGain, kBandwidth, kRolloff, kMode, kEnable };

constexpr std::uint32_t ParamIndex(std::uint32_t band, std::uint32_t row) { return band * kParamsPerBand + row; }

constexpr ParamDescriptor DescribeBandRow(std::uint32_t band, std::uint32_t row) {
  constexpr std::u16string_view kPrefix = u"Band";
  char16_t label[kParamTextLength] = {};
  std::size_t length = 0;
  for (const char16_t c : kPrefix) label[length++] = c;
  label[length++] = static_cast<char16_t>(u'1' + band);
  label[length++] = u' ';
  for (const char16_t c : kBandRows[row].label) label[length++] = c;

  ParamRow described = kBandRows[row];
  described.label = {label, length};
  described.offset += 4 * band;
  if (row == kFrequency) described.neutral = kNeutrals[band].frequency_hz;
  if (row == kRolloff) described.neutral = kNeutrals[band].rolloff;
  if (row == kMode) described.neutral = kNeutrals[band].mode;
  return Describe(described);
}

// Index = ParamIndex(band, row), then the bypass. Hosts save it.
inline constexpr auto kParams = [] {
  std::array<ParamDescriptor, kBypassParam + 1> table{};
  for (std::uint32_t band = 0; band < kEqBands; ++band) {
    for (std::uint32_t row = 0; row < kParamsPerBand; ++row) {
      table[ParamIndex(band, row)] = DescribeBandRow(band, row);
    }
  }
  table[kBypassParam] = Describe({u"Bypass", u"", ParamType::kBool, 0, 1, 0, 0, 1, ControlKind::kSwitch, 100});
  return table;
}();

static_assert(kParams.size() <= kMaxParams);

inline constexpr GUID kTag{0x8cb69a0d, 0x10e8, 0x11d2, {0x9b, 0x89, 0x00, 0x10, 0x4b, 0x8d, 0x13, 0xc2}};

inline constexpr EqSettings kMissingFields{};

// The size field is 4 short of the 124 bytes that a save writes, and a load leaves the bypass behind it unread.
inline constexpr StoredForm kForms[] = {{120, &kTag, 100, &kMissingFields}};

// One row each:
// clang-format off
// name, {gains, bandwidths, frequencies, modes, rolloffs, enables, selected band, bypass}. Gains of -150 and below cut fully.
inline constexpr FactoryPreset<EqSettings> kPresets[] = {
    {"(Default)",
     {{0, 0, 0, 0}, {10, 10, 10, 10}, {100, 300, 1000, 5000}, {1, 2, 2, 3}, {2, 1, 1, 2}, {1, 1, 1, 1}, 0, 0}},
    {"Default all parameters",
     {{0, 0, 0, 0}, {10, 10, 10, 10}, {100, 300, 1000, 5000}, {1, 2, 2, 3}, {2, 1, 1, 2}, {1, 1, 1, 1}, 0, 0}},
    {"15 dB notch centered at 1000 Hz",
     {{0, 0, -150, 0}, {10, 10, 10, 10}, {100, 300, 1000, 5000}, {1, 2, 2, 3}, {1, 1, 1, 1}, {0, 0, 1, 0}, 2, 0}},
    {"60 Hz hum notch using four stacked filters",
     {{-250, -250, -250, -250}, {3, 3, 3, 3}, {60, 60, 60, 60}, {2, 2, 2, 2}, {1, 1, 1, 1}, {1, 1, 1, 1}, 0, 0}},
    {"Add air (3 dB peak at 15 kHz)",
     {{0, 0, 0, 30}, {10, 10, 10, 7}, {100, 300, 1000, 15000}, {2, 2, 2, 2}, {1, 1, 1, 1}, {0, 0, 0, 1}, 3, 0}},
    {"Add air (boost above 16k by 6 dB)",
     {{0, 0, 0, 60}, {10, 10, 10, 10}, {100, 300, 1000, 16000}, {1, 2, 2, 3}, {1, 1, 1, 1}, {0, 0, 0, 1}, 3, 0}},
    {"Anti-DTMF Talkoff",
     {{-250, -250, -250, -250}, {3, 3, 3, 3}, {1209, 1336, 1447, 1633}, {2, 2, 2, 2}, {1, 1, 1, 1}, {1, 1, 1, 1}, 0, 0}},
    {"Boost bass frequencies below 250 Hz by 4 dB",
     {{40, 0, 0, 0}, {10, 10, 10, 10}, {250, 300, 1000, 5000}, {1, 2, 2, 3}, {1, 1, 1, 1}, {1, 0, 0, 0}, 0, 0}},
    {"Boost frequencies above 7 kHz",
     {{0, 0, 0, 30}, {10, 10, 10, 10}, {100, 300, 1000, 7000}, {1, 2, 2, 3}, {1, 1, 1, 1}, {0, 0, 0, 1}, 3, 0}},
    {"Fletcher-Munson curve (low volume compensation)",
     {{60, 0, -120, 60}, {10, 10, 10, 10}, {200, 300, 4000, 8000}, {1, 2, 2, 3}, {1, 1, 1, 1}, {1, 0, 1, 1}, 0, 0}},
    {"Hiss cut (cut above 8 kHz by 6 dB)",
     {{0, 0, 0, -60}, {10, 10, 10, 10}, {100, 300, 1000, 8000}, {1, 2, 2, 3}, {1, 1, 1, 1}, {0, 0, 0, 1}, 3, 0}},
    {"Remove low rumble below 80 Hz",
     {{-250, 0, 0, 0}, {10, 10, 10, 10}, {80, 300, 1000, 5000}, {1, 2, 2, 3}, {1, 1, 1, 1}, {1, 0, 0, 0}, 0, 0}},
    {"Remove very low and inaudible frequencies below 20 Hz",
     {{-250, 0, 0, 0}, {10, 10, 10, 10}, {20, 300, 1000, 5000}, {1, 2, 2, 3}, {1, 1, 1, 1}, {1, 0, 0, 0}, 0, 0}},
};
// clang-format on

}  // namespace eq
}  // namespace tervan
