// The compressor's control interface: slots, the modified flag, factory presets, messages to windows.
#include <functional>
#include <iterator>
#include <string>

#include "module/module.h"

namespace tervan::test {
namespace {

using SettingsTest = ModuleTest;
using PresetsTest = ModuleTest;
using NotificationTest = ModuleTest;

// Every slot by its place. One group of five per parameter: get, set, begin, end, automated.
TEST_F(SettingsTest, AnswerAtTheirSlots) {
  const auto control = NewCompressor<ICompressorSettings>();
  const auto slot = [&](int number, auto... arguments) { return CallSlot(control.Get(), number, arguments...); };
  CompressorSettings read{7, 7, 7, 7, 7, 7, 7, 7, 0x5A5A5A5A, 7};
  EXPECT_EQ(slot(3, &read), S_OK);
  EXPECT_EQ(read, (CompressorSettings{0, 0, 0, 1, 15, 250, 1, 0, 0x5A5A5A5A, 0})) << "the reserved word stays";
  const CompressorSettings record{99, 2, -3, 4, 5, 6, 0, 1, 0x5A5A5A5A, 1};  // stored as given, even outside a range
  EXPECT_EQ(slot(4, &record), S_OK);
  EXPECT_EQ(slot(3, &read), S_OK);
  EXPECT_EQ(read, record);
  const CompressorSettings older{-1, -2, -30, 40, 50, 60, 0, 1, 0, 0};
  EXPECT_EQ(slot(5, &older), S_OK);
  EXPECT_EQ(SettingsOf(*control), (CompressorSettings{-1, -2, -30, 40, 50, 60, 1, 0, 0, 0}));
  EXPECT_EQ(slot(6, &older), S_OK);
  EXPECT_EQ(SettingsOf(*control), older);

  WAVEFORMATEX format{};
  EXPECT_EQ(slot(7, &format), VFW_E_NOT_CONNECTED);
  EXPECT_EQ(slot(8, HWND{}, 0), S_OK);

  const struct { float set, stored; } floats[] = {{3, 3}, {-61, -60}, {-5, -5}, {6, 6}, {501, 500}, {8, 8}};
  for (int parameter = 0; parameter < 9; ++parameter) {
    SCOPED_TRACE(parameter);
    const int group = 9 + 5 * parameter;
    if (parameter < 6) {
      float value = 77;
      EXPECT_EQ(slot(group + 1, floats[parameter].set), S_OK);
      EXPECT_EQ(slot(group, &value), S_OK);
      EXPECT_EQ(value, floats[parameter].stored);
    } else {
      for (const INT32 wanted : {1, 0, parameter == 7 ? 0 : 1}) {
        INT32 value = 77;
        EXPECT_EQ(slot(group + 1, wanted * 7), S_OK);
        EXPECT_EQ(slot(group, &value), S_OK);
        EXPECT_EQ(value, wanted);
      }
    }
    EXPECT_EQ(slot(group + 2), S_OK);
    EXPECT_EQ(slot(group + 2), S_FALSE) << "the edit is already in progress";
    EXPECT_EQ(slot(group + 3), S_OK);
    EXPECT_EQ(slot(group + 4), S_FALSE);
  }
  EXPECT_EQ(SettingsOf(*control), (CompressorSettings{3, -60, -5, 6, 500, 8, 1, 0, 0, 1}));

  const CompressorMeters published{0.1, 0.2, 0.3, 0.4, 0.5};
  CompressorMeters meters{7, 7, 7, 7, 7};
  EXPECT_EQ(slot(54, &meters), S_OK);
  EXPECT_EQ(std::memcmp(&meters, &kIdleMeters, sizeof meters), 0);
  EXPECT_EQ(slot(55, published), S_OK);
  EXPECT_EQ(slot(54, &meters), S_OK);
  EXPECT_EQ(std::memcmp(&meters, &published, sizeof meters), 0);

  for (const int number : {3, 4, 5, 6, 7, 9, 14, 19, 24, 29, 34, 39, 44, 49, 54}) {
    EXPECT_EQ(slot(number, static_cast<void*>(nullptr)), E_POINTER) << number;
  }
}

TEST_F(PresetsTest, AreListedAndApplied) {
  const struct {
    const wchar_t* name;
    CompressorSettings settings;
  } rows[] = {
      {L"(Default)", {0, 0, 0, 1, 15, 250, 1, 0, 0, 0}},
      {L"Default all parameters", {0, 0, 0, 1, 15, 250, 1, 0, 0, 0}},
      {L"Soft Limiter", {0, 0, -6, 25, 0, 250, 0, 1, 0, 0}},
      {L"1.5:1 compression starting at -24 dB", {0, 0, -24, 1.5f, 15, 250, 0, 1, 0, 0}},
      {L"2:1 compression starting at -18 dB", {0, 0, -18, 2, 15, 250, 1, 0, 0, 0}},
      {L"3:1 compression starting at -15 dB", {0, 0, -15, 3, 15, 250, 1, 1, 0, 0}},
      {L"6:1 compression starting at -12 dB", {0, 0, -12, 6, 15, 250, 1, 1, 0, 0}},
      {L"10:1 compression starting at -9 dB", {0, 0, -9, 10, 15, 250, 1, 1, 0, 0}},
      {L"Limit levels to -6 dB (hard limiter)", {0, 0, -6, 50, 0, 250, 0, 0, 0, 0}},
  };
  const Compressor compressor;
  IPluginPresets& presets = *compressor.presets;
  LONG count = 0;
  EXPECT_EQ(CallSlot(&presets, 3, &count), S_OK);
  ASSERT_EQ(count, static_cast<LONG>(std::size(rows)));
  WCHAR name[64];
  for (LONG i = 0; i < count; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(CallSlot(&presets, 4, i, &name[0], LONG{64}), S_OK);
    EXPECT_EQ(std::wstring(name), rows[i].name);
    EXPECT_EQ(CallSlot(&presets, 5, i), S_OK);
    EXPECT_EQ(SettingsOf(*compressor.control), rows[i].settings);
  }
  std::wstring cut(15, L'x');
  EXPECT_EQ(presets.GetPresetName(2, cut.data(), 5), S_OK);
  EXPECT_EQ(cut, std::wstring(L"Soft\0xxxxxxxxxx", 15));
  EXPECT_EQ(presets.GetPresetName(2, cut.data(), 0), S_OK) << "no room even for the end";
  EXPECT_EQ(cut[0], L'S');
  for (const LONG index : {LONG{-1}, count}) {
    EXPECT_EQ(presets.GetPresetName(index, name, 64), E_INVALIDARG) << index;
    EXPECT_EQ(presets.ApplyPreset(index), E_INVALIDARG) << index;
  }
  EXPECT_EQ(presets.GetPresetCount(nullptr), E_POINTER);
  EXPECT_EQ(presets.GetPresetName(0, nullptr, 64), E_POINTER);
}

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST_F(NotificationTest, EachKindOfChangePostsItsCode) {
  constexpr int kId = 32700;
  Window window;
  Compressor compressor;
  ASSERT_EQ(compressor.control->SetNotifyWindow(window, kId), S_OK);
  const CompressorSettings settings = SettingsOf(*compressor.control);
  float frame = 0;
  const struct {
    const char* what;
    std::function<void()> act;
    std::vector<std::pair<int, int>> commands;
  } rows[] = {
      {"the page's own value", [&] { compressor.control->SetAmount(3); }, {}},
      {"the page's own record", [&] { compressor.control->SetSettings(&settings); }, {}},
      {"the host's value", [&] { compressor.values->SetParam(3, 5); }, {{kId, 0}}},
      {"the host's same value", [&] { compressor.values->SetParam(3, 5); }, {}},
      {"a preset", [&] { compressor.presets->ApplyPreset(8); }, {{kId, 32701}}},
      {"start of streaming", [&] { compressor.direct->BeginStream(2, 44100); }, {{kId, 32702}, {kId, 32703}}},
      {"processing", [&] { compressor.direct->ProcessBuffer(&frame, 0, 0); }, {}},
      {"end of streaming", [&] { compressor.direct->EndStream(); }, {{kId, 32703}}},
      {"the filter's end",
       [&] {
         compressor = {nullptr, nullptr, nullptr, nullptr, nullptr};
       },
       {{kId, 32703}}},
  };
  for (const auto& row : rows) {
    row.act();
    EXPECT_EQ(window.Take(), row.commands) << row.what;
  }
}

TEST_F(NotificationTest, TwoWindowsAtMostAndADestroyedOneMakesRoomAtTheNextPost) {
  Window first, second, third;
  const Compressor compressor;
  EXPECT_EQ(compressor.control->SetNotifyWindow(first, 11), S_OK);
  EXPECT_EQ(compressor.control->SetNotifyWindow(second, 12), S_OK);
  first.Destroy();
  EXPECT_EQ(compressor.control->SetNotifyWindow(third, 13), E_OUTOFMEMORY) << "not noticed before a post";
  compressor.presets->ApplyPreset(1);
  EXPECT_THAT(second.Take(), ElementsAre(Pair(12, 32701)));
  EXPECT_EQ(compressor.control->SetNotifyWindow(third, 13), S_OK);
  EXPECT_EQ(compressor.control->SetNotifyWindow(second, 0), S_OK);
  compressor.presets->ApplyPreset(1);
  EXPECT_THAT(second.Take(), IsEmpty());
  EXPECT_THAT(third.Take(), ElementsAre(Pair(13, 32701)));
}

}  // namespace
}  // namespace tervan::test
