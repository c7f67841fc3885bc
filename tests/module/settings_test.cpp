// The control interfaces: slots, factory presets, messages to windows.
#include <cmath>
#include <functional>
#include <numeric>
#include <sstream>

#include "effects/compressor/compressor_meters.h"
#include "module/effects.h"

namespace tervan::test {
namespace {

constexpr void* kNull = nullptr;

using SettingsTest = EffectTest;
using PresetsTest = EffectTest;
using NotificationTest = EffectTest;
using CompressorSettingsTest = ModuleTest;
using EqSettingsTest = ModuleTest;
TERVAN_FOR_ALL_EFFECTS(SettingsTest);
TERVAN_FOR_ALL_EFFECTS(PresetsTest);
TERVAN_FOR_ALL_EFFECTS(NotificationTest);

TEST_P(SettingsTest, ARecordIsStoredAsGivenOrByTheDitherClamped) {
  const Filter filter(effect);
  Settings record(effect.loaded.size());
  std::iota(record.begin(), record.end(), 1000);
  filter.Set(record);
  if (effect.float_words != 0) record[kReservedWord] = 77;  // neither taken nor given
  EXPECT_EQ(filter.Get(77), effect.has_automation ? record : (Settings{6, 5, 2}));
  for (const int number : {3, 4, effect.format_slot}) EXPECT_EQ(filter.Slot(number, kNull), E_POINTER) << number;
  if (effect.has_automation) return;
  filter.Set({-1, 7, 3});
  EXPECT_EQ(filter.Get(), (Settings{0, 5, 2}));
}

// Every slot by its place: it reaches its own parameter and word of the record, and no other.
TEST_P(SettingsTest, ParametersAnswerAtTheirSlots) {
  HostRecorder recorder;
  const Filter filter(effect);
  if (effect.has_automation) Query<IParamRecorderSite>(filter.control.Get())->SetRecorder(&recorder);
  for (std::size_t row = 0; row < effect.params.size(); ++row) {
    const ParamRow& param = effect.params[row];
    SCOPED_TRACE(row);
    filter.presets->ApplyPreset(0);
    recorder.Take();
    Settings expected = effect.presets[0].settings;
    const double low = std::round(param.min * param.scale), high = std::round(param.max * param.scale);
    const struct { double set, stored; } values[] = {{high + 1, high}, {low - 1, low}, {low + 1, low + 1}};
    for (const auto& value : values) {
      std::ostringstream heard;
      if (effect.has_automation && expected[param.word] != value.stored) {
        heard << " B" << row << " V" << row << '=' << value.stored / param.scale << " E" << row;
      }
      expected[param.word] = value.stored;
      EXPECT_EQ(filter.SetAt(param, value.set), S_OK);
      EXPECT_EQ(recorder.Take(), heard.str());
      EXPECT_EQ(filter.Get(), expected);
      EXPECT_EQ(filter.GetAt(param), value.stored);
    }
    EXPECT_EQ(filter.Slot(param.slot, kNull), E_POINTER);
    if (!effect.has_automation) continue;
    EXPECT_EQ(filter.Slot(param.slot + 2), S_OK);
    EXPECT_EQ(filter.Slot(param.slot + 2), S_FALSE) << "the edit is already in progress";
    EXPECT_EQ(filter.Slot(param.slot + 3), S_OK);
    EXPECT_EQ(recorder.Take(), " B" + std::to_string(row) + " E" + std::to_string(row));
    MP_DATA value = 77;
    EXPECT_EQ(filter.values->GetParam(static_cast<DWORD>(row), &value), S_OK);
    EXPECT_FLOAT_EQ(value, static_cast<float>((low + 1) / param.scale));
  }
}

TEST_F(CompressorSettingsTest, OlderRecordsAndMetersHaveSlots) {
  const Filter filter(kCompressor);
  const Settings older{-1, -2, -30, 40, 50, 60, 0, 1, 0, 0};
  const Bytes words = RecordBytes(filter.effect, older);
  EXPECT_EQ(filter.Slot(5, words.data()), S_OK);
  EXPECT_EQ(filter.Get(), (Settings{-1, -2, -30, 40, 50, 60, 1, 0, 0, 0}));
  EXPECT_EQ(filter.Slot(6, words.data()), S_OK);
  EXPECT_EQ(filter.Get(), older);

  const CompressorMeters published{0.1, 0.2, 0.3, 0.4, 0.5};
  CompressorMeters meters{7, 7, 7, 7, 7};
  EXPECT_EQ(filter.Slot(54, &meters), S_OK);
  EXPECT_EQ(std::memcmp(&meters, &kIdleMeters, sizeof meters), 0);
  EXPECT_EQ(filter.Slot(55, published), S_OK);
  EXPECT_EQ(filter.Slot(54, &meters), S_OK);
  EXPECT_EQ(std::memcmp(&meters, &published, sizeof meters), 0);
  for (const int number : {5, 6, 54}) EXPECT_EQ(filter.Slot(number, kNull), E_POINTER) << number;
}

TEST_F(EqSettingsTest, TheSelectedBandThePollAndSettingsByBandHaveSlots) {
  const Filter filter(kEq);
  filter.Set(filter.effect.loaded);
  int value = -77;
  EXPECT_EQ(filter.Slot(128, 3), S_OK);
  EXPECT_EQ(filter.Slot(127, &value), S_OK);
  EXPECT_EQ(value, 3);
  EXPECT_EQ(filter.Get()[24], 3);
  EXPECT_EQ(filter.Slot(127, kNull), E_POINTER);

  EXPECT_EQ(filter.SetAt(filter.effect.params[0], 250), S_OK);
  EXPECT_EQ(filter.values->SetParam(0, 250), S_FALSE);
  EXPECT_EQ(filter.values->SetParam(0, 20001), E_INVALIDARG);
  EXPECT_EQ(filter.Slot(129), S_FALSE) << "nothing that the page does not know";
  EXPECT_EQ(filter.values->SetParam(0, 300), S_OK);
  EXPECT_EQ(filter.Slot(129), S_OK);
  EXPECT_EQ(filter.Slot(129), S_FALSE);

  filter.Set(filter.effect.loaded);
  const int first_words[] = {8, 0, 4, 12, 16, 20};  // frequency, gain, bandwidth, mode, rolloff, enable
  for (int kind = 0; kind < 6; ++kind) {
    for (const int band : {INT_MIN, -1, 0, 1, 2, 3, 4, INT_MAX}) {
      const bool is_one = band >= 0 && band <= 3;
      EXPECT_EQ(filter.Slot(135 + kind, &(value = -77), band), S_OK);
      EXPECT_EQ(value, is_one ? filter.effect.loaded[first_words[kind] + band] : -77) << kind << ' ' << band;
    }
    EXPECT_EQ(filter.Slot(135 + kind, kNull, 0), E_POINTER);
  }
}

TEST_P(PresetsTest, AreListedAndApplied) {
  const Filter filter(effect);
  EXPECT_EQ(filter.Get(), effect.presets[0].settings) << "of a new filter";
  IPluginPresets& presets = *filter.presets;
  LONG count = 0;
  EXPECT_EQ(CallSlot(&presets, 3, &count), S_OK);
  ASSERT_EQ(count, static_cast<LONG>(effect.presets.size()));
  WCHAR name[64];
  for (LONG i = 0; i < count; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(CallSlot(&presets, 4, i, &name[0], LONG{64}), S_OK);
    EXPECT_EQ(std::wstring(name), effect.presets[i].name);
    EXPECT_EQ(CallSlot(&presets, 5, i), S_OK);
    EXPECT_EQ(filter.Get(), effect.presets[i].settings);
  }
  std::wstring cut(15, L'x');
  EXPECT_EQ(presets.GetPresetName(0, cut.data(), 5), S_OK);
  EXPECT_EQ(cut, std::wstring(L"(Def\0xxxxxxxxxx", 15));
  EXPECT_EQ(presets.GetPresetName(1, cut.data(), 0), S_OK) << "no room even for the end";
  EXPECT_EQ(cut[0], L'(');
  for (const LONG index : {LONG{-1}, count}) {
    EXPECT_EQ(presets.GetPresetName(index, name, 64), E_INVALIDARG) << index;
    EXPECT_EQ(presets.ApplyPreset(index), E_INVALIDARG) << index;
  }
  EXPECT_EQ(presets.GetPresetCount(nullptr), E_POINTER);
  EXPECT_EQ(presets.GetPresetName(0, nullptr, 64), E_POINTER);
}

TEST_P(NotificationTest, EachKindOfChangePostsItsCode) {
  constexpr int kId = 32700;
  Window window;
  Filter filter(effect);
  ASSERT_EQ(filter.Register(window, kId), S_OK);
  const bool has_meters = GetParam() == kCompressor;
  const ParamRow& first = effect.params[0];
  float frame = 0;
  const struct {
    const char* what;
    std::function<void()> act;
    Commands commands;
  } rows[] = {
      {"the page's own value", [&] { filter.SetAt(first, first.max); }, {}},
      {"the page's own record", [&] { filter.Set(effect.audible); }, {}},
      {"the host's value", [&] { return effect.has_automation && filter.values->SetParam(0, first.max); },
       effect.set_by_host_code ? Commands{{kId, *effect.set_by_host_code}} : Commands{}},
      {"the host's same value", [&] { return effect.has_automation && filter.values->SetParam(0, first.max); }, {}},
      {"a preset", [&] { filter.presets->ApplyPreset(2); }, {{kId, effect.replaced_code}}},
      {"start of streaming", [&] { filter.direct->BeginStream(2, 44100); },
       has_meters ? Commands{{kId, 32702}, {kId, 32703}} : Commands{}},
      {"processing", [&] { filter.direct->ProcessBuffer(&frame, 0, 0); }, {}},
      {"end of streaming", [&] { filter.direct->EndStream(); }, has_meters ? Commands{{kId, 32703}} : Commands{}},
      {"the filter's end", [&] { filter.Release(); }, has_meters ? Commands{{kId, 32703}} : Commands{}},
  };
  for (const auto& row : rows) {
    row.act();
    EXPECT_EQ(window.Take(), row.commands) << row.what;
  }
}

TEST_P(NotificationTest, TwoWindowsAtMostAndADestroyedOneMakesRoomAtTheNextPost) {
  Window first, second, third;
  const Filter filter(effect);
  EXPECT_EQ(filter.Register(first, 11), S_OK);
  EXPECT_EQ(filter.Register(second, 12), S_OK);
  first.Destroy();
  EXPECT_EQ(filter.Register(third, 13), E_OUTOFMEMORY) << "not noticed before a post";
  filter.presets->ApplyPreset(1);
  EXPECT_EQ(second.Take(), (Commands{{12, effect.replaced_code}}));
  EXPECT_EQ(filter.Register(third, 13), S_OK);
  EXPECT_EQ(filter.Register(second, 0), S_OK);
  filter.presets->ApplyPreset(1);
  EXPECT_EQ(second.Take(), Commands());
  EXPECT_EQ(third.Take(), (Commands{{13, effect.replaced_code}}));
}

}  // namespace
}  // namespace tervan::test
