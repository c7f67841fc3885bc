#include "module/effects.h"

#include <bit>
#include <cmath>
#include <numeric>

namespace tervan::test {
namespace {

constexpr wchar_t kCompressorTag[] = L"{c400f99b-0c6e-444c-8f20-98db216be56e}";  // the gate's, too
constexpr wchar_t kOlderCompressorTag[] = L"{23c9f22b-40ec-11d2-9d36-00c04f8edc1e}";
constexpr wchar_t kGateTag[] = L"{869419e0-501f-11d3-8cdc-00c04f6b8e4c}";
constexpr wchar_t kEqTag[] = L"{8cb69a0d-10e8-11d2-9b89-00104b8d13c2}";
constexpr wchar_t kDitherTag[] = L"{260df3e4-ac77-11d2-9e93-00c04f68be44}";

EffectRow DitherRow() {
  return {
      .name = "Dither",
      .display_name = L"Tervan Dither",
      .clsid = Id(L"{260df3e1-ac77-11d2-9e93-00c04f68be44}"),
      .page_clsid = Id(L"{260df3e2-ac77-11d2-9e93-00c04f68be44}"),
      .control_iid = Id(L"{260df3e4-ac77-11d2-9e93-00c04f68be44}"),
      .format_slot = 5,
      .replaced_code = 100,
      .page_name = L"LmTDither Property Page",
      .loaded = {4, 3, 2},
      .forms = {{32, Id(kDitherTag), 3, {}}, {36, Id(kDitherTag), 0, {}}, {32, Id(kCompressorTag), 0, {}}},
      .params = {{L"Depth", L"", MPT_INT, 0, 6, 0, 7, 0},
                 {L"Type", L"", MPT_INT, 0, 5, 0, 9, 1},
                 {L"Shaping", L"", MPT_INT, 0, 2, 0, 11, 2}},
      .presets = {{L"(Default)", {2, 1, 0}},
                  {L"Default all parameters", {2, 1, 0}},
                  {L"Dither for 8-bit (low sample rate)", {0, 3, 0}},
                  {L"Dither for 8-bit", {0, 4, 1}},
                  {L"Dither for 16-bit (low sample rate)", {2, 3, 2}},
                  {L"Dither for 16-bit", {2, 4, 2}}},
      .has_automation = false,
      .audible = {0, 0, 0},  // to 8 bits, without noise
      .level = 38.25 / 128,
      .audible_level = 38.0 / 128,
      .transparent = {6, 0, 0},
  };
}

EffectRow CompressorRow() {
  return {
      .name = "Compressor",
      .display_name = L"Tervan Track Compressor",
      .clsid = Id(L"{23c9f225-40ec-11d2-9d36-00c04f8edc1e}"),
      .page_clsid = Id(L"{23c9f227-40ec-11d2-9d36-00c04f8edc1e}"),
      .control_iid = Id(L"{c400f99b-0c6e-444c-8f20-98db216be56e}"),
      .format_slot = 7,
      .replaced_code = 32701,
      .page_name = L"LmTComp Property Page",
      .set_by_host_code = 0,
      .float_words = 6,
      .loaded = {1, -2, -30, 4.5, 60, 700, 0, 1, 0, 1},
      .forms = {{60, Id(kCompressorTag), 10, {}},
                {56, Id(kOlderCompressorTag), 9, {0}},
                {44, Id(kGateTag), 6, {1, 0, 0, 0}},
                {52, Id(kOlderCompressorTag), 8, {0, 0}},
                {36, Id(kCompressorTag), 0, {}},
                {44, Id(kCompressorTag), 0, {}},
                {56, Id(kEqTag), 0, {}},
                {60, Id(kOlderCompressorTag), 0, {}}},
      .params = {{L"Input Gain", L"dB", MPT_FLOAT, -60, 25, 0, 9, 0},
                 {L"Output Gain", L"dB", MPT_FLOAT, -60, 25, 0, 14, 1},
                 {L"Threshold", L"dB", MPT_FLOAT, -60, 0, -40, 19, 2},
                 {L"Amount", L"", MPT_FLOAT, 1, 50, 2, 24, 3},
                 {L"Attack Time", L"ms", MPT_FLOAT, 0, 500, 15, 29, 4},
                 {L"Release Time", L"ms", MPT_FLOAT, 0, 5000, 250, 34, 5},
                 {L"Auto Gain Compensation", L"", MPT_BOOL, 0, 1, 1, 39, 6},
                 {L"Smooth Saturation", L"", MPT_BOOL, 0, 1, 0, 44, 7},
                 {L"Bypass", L"", MPT_BOOL, 0, 1, 0, 49, 9}},
      .presets = {{L"(Default)", {0, 0, 0, 1, 15, 250, 1, 0, 0, 0}},
                  {L"Default all parameters", {0, 0, 0, 1, 15, 250, 1, 0, 0, 0}},
                  {L"Soft Limiter", {0, 0, -6, 25, 0, 250, 0, 1, 0, 0}},
                  {L"1.5:1 compression starting at -24 dB", {0, 0, -24, 1.5, 15, 250, 0, 1, 0, 0}},
                  {L"2:1 compression starting at -18 dB", {0, 0, -18, 2, 15, 250, 1, 0, 0, 0}},
                  {L"3:1 compression starting at -15 dB", {0, 0, -15, 3, 15, 250, 1, 1, 0, 0}},
                  {L"6:1 compression starting at -12 dB", {0, 0, -12, 6, 15, 250, 1, 1, 0, 0}},
                  {L"10:1 compression starting at -9 dB", {0, 0, -9, 10, 15, 250, 1, 1, 0, 0}},
                  {L"Limit levels to -6 dB (hard limiter)", {0, 0, -6, 50, 0, 250, 0, 0, 0, 0}}},
      .audible = {0, 0, -6, 50, 0, 250, 0, 0, 0, 0},
      .level = 0.9375,
      .audible_level = 0.5011872336,
      .transparent = {0, 0, -6, 50, 0, 250, 0, 0, 0, 1},
  };
}

// Of bands 1 to 4: gains, bandwidths, frequencies, modes, rolloffs, enables. Then the selected band and the bypass.
const std::vector<PresetRow> kEqPresets = {
    {L"(Default)", {0, 0, 0, 0, 10, 10, 10, 10, 100, 300, 1000, 5000, 1, 2, 2, 3, 2, 1, 1, 2, 1, 1, 1, 1, 0, 0}},
    {L"Default all parameters",
     {0, 0, 0, 0, 10, 10, 10, 10, 100, 300, 1000, 5000, 1, 2, 2, 3, 2, 1, 1, 2, 1, 1, 1, 1, 0, 0}},
    {L"15 dB notch centered at 1000 Hz",
     {0, 0, -150, 0, 10, 10, 10, 10, 100, 300, 1000, 5000, 1, 2, 2, 3, 1, 1, 1, 1, 0, 0, 1, 0, 2, 0}},
    {L"60 Hz hum notch using four stacked filters",
     {-250, -250, -250, -250, 3, 3, 3, 3, 60, 60, 60, 60, 2, 2, 2, 2, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0}},
    {L"Add air (3 dB peak at 15 kHz)",
     {0, 0, 0, 30, 10, 10, 10, 7, 100, 300, 1000, 15000, 2, 2, 2, 2, 1, 1, 1, 1, 0, 0, 0, 1, 3, 0}},
    {L"Add air (boost above 16k by 6 dB)",
     {0, 0, 0, 60, 10, 10, 10, 10, 100, 300, 1000, 16000, 1, 2, 2, 3, 1, 1, 1, 1, 0, 0, 0, 1, 3, 0}},
    {L"Anti-DTMF Talkoff",
     {-250, -250, -250, -250, 3, 3, 3, 3, 1209, 1336, 1447, 1633, 2, 2, 2, 2, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0}},
    {L"Boost bass frequencies below 250 Hz by 4 dB",
     {40, 0, 0, 0, 10, 10, 10, 10, 250, 300, 1000, 5000, 1, 2, 2, 3, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0}},
    {L"Boost frequencies above 7 kHz",
     {0, 0, 0, 30, 10, 10, 10, 10, 100, 300, 1000, 7000, 1, 2, 2, 3, 1, 1, 1, 1, 0, 0, 0, 1, 3, 0}},
    {L"Fletcher-Munson curve (low volume compensation)",
     {60, 0, -120, 60, 10, 10, 10, 10, 200, 300, 4000, 8000, 1, 2, 2, 3, 1, 1, 1, 1, 1, 0, 1, 1, 0, 0}},
    {L"Hiss cut (cut above 8 kHz by 6 dB)",
     {0, 0, 0, -60, 10, 10, 10, 10, 100, 300, 1000, 8000, 1, 2, 2, 3, 1, 1, 1, 1, 0, 0, 0, 1, 3, 0}},
    {L"Remove low rumble below 80 Hz",
     {-250, 0, 0, 0, 10, 10, 10, 10, 80, 300, 1000, 5000, 1, 2, 2, 3, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0}},
    {L"Remove very low and inaudible frequencies below 20 Hz",
     {-250, 0, 0, 0, 10, 10, 10, 10, 20, 300, 1000, 5000, 1, 2, 2, 3, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0}},
};

// Slots and record go setting by setting, the parameters band by band.
std::vector<ParamRow> EqParams() {
  constexpr float kFrequencies[] = {100, 300, 1000, 5000}, kRolloffs[] = {2, 1, 1, 2}, kModes[] = {1, 2, 2, 3};
  std::vector<ParamRow> rows;
  for (int b = 0; b < 4; ++b) {
    const auto add = [&](const wchar_t* setting, const wchar_t* unit, MP_TYPE type, float min, float max, float neutral,
                         int first_word, double scale = 1, const wchar_t* items = L"") {
      rows.push_back({L"Band" + std::to_wstring(b + 1) + L" " + setting, unit, type, min, max, neutral,
                      7 + 5 * (first_word + b), static_cast<std::size_t>(first_word + b), scale, items});
    };
    add(L"Frequency", L"Hz", MPT_FLOAT, 20, 20000, kFrequencies[b], 8);
    add(L"Gain", L"dB", MPT_FLOAT, -15, 15, 0, 0, 10);
    add(L"Bandwidth", L"octaves", MPT_FLOAT, 0.1f, 4, 1, 4, 10);
    add(L"Rolloff", L"dB/octave", MPT_ENUM, 1, 4, kRolloffs[b], 16, 1, L"6,12,18,24");
    add(L"Mode", L"", MPT_ENUM, 1, 3, kModes[b], 12, 1, L"Low Shelf,Band,High Shelf");
    add(L"Enable", L"", MPT_BOOL, 0, 1, 1, 20);
  }
  rows.push_back({L"Bypass", L"", MPT_BOOL, 0, 1, 0, 130, 25});
  return rows;
}

EffectRow EqRow() {
  Settings audible = kEqPresets[7].settings, transparent = audible, loaded(26);
  transparent.back() = 1;
  std::iota(loaded.begin(), loaded.end(), 2);
  return {
      .name = "Eq",
      .display_name = L"Tervan Track EQ",
      .clsid = Id(L"{8cb69a0a-10e8-11d2-9b89-00104b8d13c2}"),
      .page_clsid = Id(L"{8cb69a0b-10e8-11d2-9b89-00104b8d13c2}"),
      .control_iid = Id(L"{bfeb9e9d-25e6-401e-bafd-6b8785c43053}"),
      .format_slot = 5,
      .replaced_code = 100,
      .page_name = L"LmTEQ Property Page",
      .loaded = loaded,
      .forms = {{120, Id(kEqTag), 25, {0}}, {124, Id(kEqTag), 0, {}}, {120, Id(kCompressorTag), 0, {}}},
      .params = EqParams(),
      .presets = kEqPresets,
      .audible = audible,
      .level = 0.5,
      .audible_level = 0.5 * std::pow(10.0, 4.0 / 20),
      .transparent = transparent,
  };
}

EffectRow GateRow() {
  return {
      .name = "Gate",
      .display_name = L"Tervan Track Noise Gate",
      .clsid = Id(L"{869419dd-501f-11d3-8cdc-00c04f6b8e4c}"),
      .page_clsid = Id(L"{869419de-501f-11d3-8cdc-00c04f6b8e4c}"),
      .control_iid = Id(L"{c400f99b-0c6e-444c-8f20-98db216be56e}"),
      .format_slot = 5,
      .replaced_code = 100,
      .page_name = L"LmTNoisg Property Page",
      .set_by_host_code = 0,
      .told_of_failed_loads = true,
      .loaded = {11, 22, -33, 1},
      .forms = {{36, Id(kCompressorTag), 4, {}},
                {32, Id(kGateTag), 3, {0}},
                {60, Id(kCompressorTag), 0, {}},
                {32, Id(kCompressorTag), 0, {}},
                {36, Id(kGateTag), 0, {}},
                {36, Id(kDitherTag), 0, {}}},
      .params = {{L"Threshold level", L"dB", MPT_FLOAT, -80, 0, -40, 17, 2, 10},
                 {L"Attack time", L"ms", MPT_FLOAT, 0, 500, 250, 7, 0},
                 {L"Release time", L"ms", MPT_FLOAT, 1, 5000, 2500, 12, 1},
                 {L"Bypass", L"", MPT_BOOL, 0, 1, 0, 22, 3}},
      .presets = {{L"(Default)", {3, 100, -800, 0}},
                  {L"Default all parameters", {3, 100, -800, 0}},
                  {L"Strong beats only", {1, 300, -60, 0}},
                  {L"Long decay time", {10, 1000, -380, 0}},
                  {L"Noise gate 1", {10, 500, -600, 0}},
                  {L"Noise gate 2", {1, 500, -320, 0}},
                  {L"Slow attack", {300, 1000, -400, 0}}},
      .audible = {1, 300, -60, 0},
      .level = 0.25,
      .audible_level = 0,
      .transparent = {1, 300, -60, 1},
  };
}

double NumberOf(const EffectRow& effect, std::size_t index, INT32 word) {
  return index < effect.float_words ? std::bit_cast<float>(word) : word;
}

}  // namespace

const std::vector<EffectRow>& Effects() {
  static const std::vector<EffectRow> effects = {DitherRow(), CompressorRow(), EqRow(), GateRow()};
  return effects;
}

std::vector<ClassRow> Classes() {
  std::vector<ClassRow> classes;
  for (const EffectRow& effect : Effects()) {
    classes.push_back({effect.display_name, effect.clsid, false});
    if (effect.page_name) classes.push_back({effect.page_name, effect.page_clsid, true});
  }
  return classes;
}

GUID Id(const wchar_t* text) {
  GUID id{};
  EXPECT_EQ(CLSIDFromString(text, &id), S_OK) << text;
  return id;
}

Bytes RecordBytes(const EffectRow& effect, const Settings& settings) {
  Bytes bytes(4 * settings.size());
  for (std::size_t word = 0; word < settings.size(); ++word) {
    const double number = settings[word];
    const INT32 bits =
        word < effect.float_words ? std::bit_cast<INT32>(static_cast<float>(number)) : static_cast<INT32>(number);
    std::memcpy(&bytes[4 * word], &bits, 4);
  }
  return bytes;
}

Filter::Filter(const EffectRow& row) : effect(row) {
  EXPECT_EQ(Create(effect.clsid, nullptr, effect.control_iid, control.PutVoid()), S_OK);
  values = Query<tervan::IMediaParams>(control.Get());
  direct = Query<IDirectBufferProcess>(control.Get());
  presets = Query<IPluginPresets>(control.Get());
  persist = Query<IPersistStream>(control.Get());
}

Settings Filter::Get(INT32 in_words_not_written) const {
  Settings settings;
  std::vector<INT32> words(effect.loaded.size(), in_words_not_written);
  EXPECT_EQ(Slot(3, words.data()), S_OK);
  for (const INT32 word : words) settings.push_back(NumberOf(effect, settings.size(), word));
  return settings;
}

void Filter::Set(const Settings& settings) const {
  const Bytes record = RecordBytes(effect, settings);
  EXPECT_EQ(Slot(4, record.data()), S_OK);
}

HRESULT Filter::SetAt(const ParamRow& param, double value) const {
  return param.word < effect.float_words ? Slot(param.slot + 1, static_cast<float>(value))
                                         : Slot(param.slot + 1, static_cast<INT32>(value));
}

double Filter::GetAt(const ParamRow& param) const {
  INT32 word = -77;
  EXPECT_EQ(Slot(param.slot, &word), S_OK);
  return NumberOf(effect, param.word, word);
}

}  // namespace tervan::test
