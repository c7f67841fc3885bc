// The compressor's control interface: slots, clamping, the modified flag, factory presets, messages to windows.
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "module/module.h"

namespace tervan::test {
namespace {

constexpr CompressorSettings kDefault{0, 0, 0, 1, 15, 250, 1, 0, 0, 0};

using SettingsTest = ModuleTest;
using PresetsTest = ModuleTest;
using NotificationTest = ModuleTest;

TEST_F(SettingsTest, BeginAsTheFirstPreset) {
  const auto control = NewCompressor<ICompressorSettings>();
  CompressorSettings settings;
  std::memset(&settings, 0x5A, sizeof settings);
  ASSERT_EQ(control->GetSettings(&settings), S_OK);
  EXPECT_EQ(settings.reserved, 0x5A5A5A5A) << "the reserved word is not written";
  settings.reserved = 0;
  EXPECT_EQ(settings, kDefault);
  CompressorMeters meters{7, 7, 7, 7, 7};
  EXPECT_EQ(control->GetMeters(&meters), S_OK);
  EXPECT_EQ(std::memcmp(&meters, &kIdleMeters, sizeof meters), 0);
}

TEST_F(SettingsTest, NullPointersAreRefused) {
  const auto control = NewCompressor<ICompressorSettings>();
  for (const int slot : {3, 4, 5, 6, 7, 9, 14, 19, 24, 29, 34, 39, 44, 49, 54}) {
    EXPECT_EQ(CallSlot(control.Get(), slot, static_cast<void*>(nullptr)), E_POINTER) << slot;
  }
  EXPECT_EQ(SettingsOf(*control), kDefault);
}

// Every slot by its place. One group of five per parameter: get, set, begin, end, automated.
TEST_F(SettingsTest, AnswerAtTheirSlots) {
  const auto control = NewCompressor<ICompressorSettings>();
  const CompressorSettings wanted{1, 2, -3, 4, 5, 6, 0, 1, 0, 1};
  CompressorSettings read{};
  EXPECT_EQ(CallSlot(control.Get(), 4, &wanted), S_OK);
  EXPECT_EQ(CallSlot(control.Get(), 3, &read), S_OK);
  EXPECT_EQ(read, wanted);

  const CompressorSettings words{-1, -2, -30, 40, 50, 60, 0, 1, 0, 0};
  EXPECT_EQ(CallSlot(control.Get(), 5, &words), S_OK);
  EXPECT_EQ(SettingsOf(*control), (CompressorSettings{-1, -2, -30, 40, 50, 60, 1, 0, 0, 0}));
  EXPECT_EQ(CallSlot(control.Get(), 6, &words), S_OK);
  EXPECT_EQ(SettingsOf(*control), (CompressorSettings{-1, -2, -30, 40, 50, 60, 0, 1, 0, 0}));

  WAVEFORMATEX format{};
  EXPECT_EQ(CallSlot(control.Get(), 7, &format), VFW_E_NOT_CONNECTED);
  EXPECT_EQ(CallSlot(control.Get(), 8, HWND{}, 0), S_OK);

  const auto* const fields = reinterpret_cast<const float*>(&read);
  const auto* const switches = reinterpret_cast<const INT32*>(&read);
  for (int parameter = 0; parameter < 9; ++parameter) {
    SCOPED_TRACE(parameter);
    const int slot = 9 + 5 * parameter;
    const int field = parameter == 8 ? 9 : parameter;  // a reserved word lies before the last switch
    if (parameter < 6) {
      const float in_range[] = {3, 4, -5, 6, 7, 8};
      float value = 0;
      EXPECT_EQ(CallSlot(control.Get(), slot + 1, in_range[parameter]), S_OK);
      EXPECT_EQ(CallSlot(control.Get(), slot, &value), S_OK);
      EXPECT_EQ(value, in_range[parameter]);
      read = SettingsOf(*control);
      EXPECT_EQ(fields[field], in_range[parameter]);
    } else {
      for (const INT32 wanted_switch : {1, 0, 1}) {
        INT32 value = 0x5A5A5A5A;
        EXPECT_EQ(CallSlot(control.Get(), slot + 1, wanted_switch), S_OK);
        EXPECT_EQ(CallSlot(control.Get(), slot, &value), S_OK);
        EXPECT_EQ(value, wanted_switch);
        read = SettingsOf(*control);
        EXPECT_EQ(switches[field], wanted_switch);
      }
    }
    EXPECT_EQ(CallSlot(control.Get(), slot + 2), S_OK);
    EXPECT_EQ(CallSlot(control.Get(), slot + 2), S_FALSE) << "the edit is already in progress";
    EXPECT_EQ(CallSlot(control.Get(), slot + 3), S_OK);
    EXPECT_EQ(CallSlot(control.Get(), slot + 3), S_OK);
    EXPECT_EQ(CallSlot(control.Get(), slot + 4), S_FALSE);
  }
  EXPECT_EQ(SettingsOf(*control), (CompressorSettings{3, 4, -5, 6, 7, 8, 1, 1, 0, 1}));

  const CompressorMeters published{0.1, 0.2, 0.3, 0.4, 0.5};
  CompressorMeters meters{};
  EXPECT_EQ(CallSlot(control.Get(), 55, published), S_OK);
  EXPECT_EQ(CallSlot(control.Get(), 54, &meters), S_OK);
  EXPECT_EQ(std::memcmp(&meters, &published, sizeof meters), 0);
}

TEST_F(SettingsTest, SettersClampButRecordsAreStoredAsGiven) {
  const auto control = NewCompressor<ICompressorSettings>();
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const struct {
    int parameter;
    float set, stored;
  } rows[] = {{0, 26, 25}, {0, -61, -60}, {1, kInfinity, 25}, {1, -kInfinity, -60}, {2, 3, 0},       {2, -99, -60},
              {3, 80, 50}, {3, 0.5f, 1},  {4, 501, 500},      {4, -1, 0},           {5, 5001, 5000}, {5, -0.1f, 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    float value = 77;
    EXPECT_EQ(CallSlot(control.Get(), 10 + 5 * row.parameter, row.set), S_OK);
    EXPECT_EQ(CallSlot(control.Get(), 9 + 5 * row.parameter, &value), S_OK);
    EXPECT_EQ(value, row.stored);
    EXPECT_EQ(CallSlot(control.Get(), 10 + 5 * row.parameter, std::numeric_limits<float>::quiet_NaN()), S_OK);
    EXPECT_EQ(CallSlot(control.Get(), 9 + 5 * row.parameter, &value), S_OK);
    EXPECT_EQ(value, row.stored) << "a NaN changes nothing";
  }
  for (int parameter = 6; parameter < 9; ++parameter) {
    for (const auto& [set, stored] : {std::pair{7, 1}, {-7, 0}}) {
      INT32 value = 77;
      EXPECT_EQ(CallSlot(control.Get(), 10 + 5 * parameter, set), S_OK);
      EXPECT_EQ(CallSlot(control.Get(), 9 + 5 * parameter, &value), S_OK);
      EXPECT_EQ(value, stored) << parameter;
    }
  }
  const CompressorSettings outside{99, -99, 12, 1000, -4, 1e6f, 5, -3, 0, 2};
  EXPECT_EQ(control->SetSettings(&outside), S_OK);
  EXPECT_EQ(SettingsOf(*control), outside);
}

HRESULT Clean(IPersistStream& persist) {
  ComPtr<IStream> stream;
  EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()), S_OK);
  EXPECT_EQ(persist.Save(stream.Get(), TRUE), S_OK);
  return persist.IsDirty();
}

TEST_F(SettingsTest, WhatChangesThemModifiesTheFilter) {
  const auto control = NewCompressor<ICompressorSettings>();
  const auto values = Query<tervan::IMediaParams>(control.Get());
  const auto presets = Query<IPluginPresets>(control.Get());
  const auto persist = Query<IPersistStream>(control.Get());
  EXPECT_EQ(persist->IsDirty(), S_OK) << "a new filter has never been saved";
  const CompressorSettings same = SettingsOf(*control);
  const struct {
    const char* what;
    std::function<void()> act;
    HRESULT dirty;
  } rows[] = {
      {"a new value", [&] { control->SetThreshold(-20); }, S_OK},
      {"the same value", [&] { control->SetThreshold(-20); }, S_FALSE},
      {"the same switch", [&] { control->SetAutoGainCompensation(5); }, S_FALSE},
      {"an edit without a change", [&] { control->BeginAmountEdit(), control->EndAmountEdit(); }, S_FALSE},
      {"the host's value", [&] { values->SetParam(2, -30); }, S_OK},
      {"the host's same value", [&] { values->SetParam(2, -30); }, S_FALSE},
      {"a refused value", [&] { values->SetParam(2, 30); }, S_FALSE},
      {"a whole record, even unchanged", [&] { control->SetSettings(&same); }, S_OK},
      {"a preset", [&] { presets->ApplyPreset(0); }, S_OK},
      {"no preset", [&] { presets->ApplyPreset(9); }, S_FALSE},
      {"reading", [&] { SettingsOf(*control); }, S_FALSE},
  };
  for (const auto& row : rows) {
    ASSERT_EQ(Clean(*persist), S_FALSE) << row.what;
    row.act();
    EXPECT_EQ(persist->IsDirty(), row.dirty) << row.what;
  }
}

const struct {
  const wchar_t* name;
  CompressorSettings settings;
} kPresets[] = {
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

TEST_F(PresetsTest, AreListedAndApplied) {
  const auto presets = NewCompressor<IPluginPresets>();
  const auto control = Query<ICompressorSettings>(presets.Get());
  LONG count = 0;
  EXPECT_EQ(CallSlot(presets.Get(), 3, &count), S_OK);
  ASSERT_EQ(count, 9);
  for (LONG i = 0; i < count; ++i) {
    SCOPED_TRACE(i);
    WCHAR name[64];
    EXPECT_EQ(CallSlot(presets.Get(), 4, i, &name[0], LONG{64}), S_OK);
    EXPECT_EQ(std::wstring(name), kPresets[i].name);
    EXPECT_EQ(CallSlot(presets.Get(), 5, i), S_OK);
    EXPECT_EQ(SettingsOf(*control), kPresets[i].settings);
  }
  for (const LONG index : {LONG{-1}, LONG{9}, std::numeric_limits<LONG>::max(), std::numeric_limits<LONG>::min()}) {
    WCHAR name[] = L"poison";
    EXPECT_EQ(presets->GetPresetName(index, name, 7), E_INVALIDARG) << index;
    EXPECT_EQ(presets->ApplyPreset(index), E_INVALIDARG) << index;
  }
  EXPECT_EQ(SettingsOf(*control), kPresets[8].settings);
  EXPECT_EQ(presets->GetPresetCount(nullptr), E_POINTER);
  EXPECT_EQ(presets->GetPresetName(0, nullptr, 64), E_POINTER);
}

TEST_F(PresetsTest, NamesAreCutToTheBufferAndAlwaysEnd) {
  const auto presets = NewCompressor<IPluginPresets>();
  for (const auto& [length, expected] : std::vector<std::pair<LONG, std::wstring>>{{-1, L"xxxxxxxxxxxxxxx"},
                                                                                   {0, L"xxxxxxxxxxxxxxx"},
                                                                                   {1, L""},
                                                                                   {2, L"S"},
                                                                                   {12, L"Soft Limite"},
                                                                                   {13, L"Soft Limiter"}}) {
    WCHAR name[] = L"xxxxxxxxxxxxxxx";
    EXPECT_EQ(presets->GetPresetName(2, name, length), S_OK) << length;
    EXPECT_EQ(std::wstring(name), expected) << length;
    for (LONG i = std::max<LONG>(length, 0); i < 15; ++i) EXPECT_EQ(name[i], L'x') << length;
  }
}

constexpr int kId = 32700;

// A hidden window, with what is posted to it.
class Window {
 public:
  Window() : handle_(CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
    EXPECT_NE(handle_, nullptr);
  }
  ~Window() { Destroy(); }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  void Destroy() {
    if (handle_) DestroyWindow(std::exchange(handle_, nullptr));
  }
  operator HWND() const { return handle_; }
  // (command id, code) of each command, oldest first.
  std::vector<std::pair<int, int>> Take() {
    std::vector<std::pair<int, int>> commands;
    MSG message;
    while (PeekMessageW(&message, handle_, WM_COMMAND, WM_COMMAND, PM_REMOVE)) {
      EXPECT_EQ(message.lParam, 0);
      commands.emplace_back(LOWORD(message.wParam), HIWORD(message.wParam));
    }
    return commands;
  }

 private:
  HWND handle_;
};

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST_F(NotificationTest, EachKindOfChangePostsItsCode) {
  Window window;
  auto control = NewCompressor<ICompressorSettings>();
  ASSERT_EQ(control->SetNotifyWindow(window, kId), S_OK);
  auto values = Query<tervan::IMediaParams>(control.Get());
  auto direct = Query<IDirectBufferProcess>(control.Get());
  auto presets = Query<IPluginPresets>(control.Get());
  const CompressorSettings settings = SettingsOf(*control);
  float frame = 0;
  MP_ENVELOPE_SEGMENT segment{0, 100, -10, -20, MP_CURVE_LINEAR, 0};
  const struct {
    const char* what;
    std::function<void()> act;
    std::vector<std::pair<int, int>> commands;
  } rows[] = {
      {"registering", [] {}, {}},
      {"the page's own value", [&] { control->SetAmount(3); }, {}},
      {"the page's own record", [&] { control->SetSettings(&settings); }, {}},
      {"the host's value", [&] { values->SetParam(3, 5); }, {{kId, 0}}},
      {"the host's same value", [&] { values->SetParam(3, 5); }, {}},
      {"a value out of range", [&] { values->SetParam(3, 60); }, {}},
      {"an envelope", [&] { values->AddEnvelope(2, 1, &segment); }, {}},
      {"a preset", [&] { presets->ApplyPreset(8); }, {{kId, 32701}}},
      {"no preset", [&] { presets->ApplyPreset(9); }, {}},
      {"start of streaming", [&] { direct->BeginStream(2, 44100); }, {{kId, 32702}, {kId, 32703}}},
      {"processing", [&] { direct->ProcessBuffer(&frame, 0, 0); }, {}},
      {"end of streaming", [&] { direct->EndStream(); }, {{kId, 32703}}},
      {"the filter's end", [&] { control = {}, values = {}, direct = {}, presets = {}; }, {{kId, 32703}}},
  };
  for (const auto& row : rows) {
    row.act();
    EXPECT_EQ(window.Take(), row.commands) << row.what;
  }
}

TEST_F(NotificationTest, TwoWindowsAtMost) {
  Window first, second, third;
  const auto control = NewCompressor<ICompressorSettings>();
  const auto presets = Query<IPluginPresets>(control.Get());
  EXPECT_EQ(control->SetNotifyWindow(first, 11), S_OK);
  EXPECT_EQ(control->SetNotifyWindow(second, 12), S_OK);
  EXPECT_EQ(control->SetNotifyWindow(third, 13), E_OUTOFMEMORY);
  EXPECT_EQ(control->SetNotifyWindow(third, 0), S_OK) << "nothing to remove";
  EXPECT_EQ(control->SetNotifyWindow(first, 21), S_OK) << "a new id for the same window";
  presets->ApplyPreset(1);
  EXPECT_THAT(first.Take(), ElementsAre(Pair(21, 32701)));
  EXPECT_THAT(second.Take(), ElementsAre(Pair(12, 32701)));
  EXPECT_THAT(third.Take(), IsEmpty());
  EXPECT_EQ(control->SetNotifyWindow(first, 0), S_OK);
  EXPECT_EQ(control->SetNotifyWindow(third, 13), S_OK);
  presets->ApplyPreset(1);
  EXPECT_THAT(first.Take(), IsEmpty());
  EXPECT_THAT(second.Take(), ElementsAre(Pair(12, 32701)));
  EXPECT_THAT(third.Take(), ElementsAre(Pair(13, 32701)));
}

TEST_F(NotificationTest, ADestroyedWindowMakesRoomAtTheNextPost) {
  Window first, second, third;
  const auto control = NewCompressor<ICompressorSettings>();
  const auto presets = Query<IPluginPresets>(control.Get());
  ASSERT_EQ(control->SetNotifyWindow(first, kId), S_OK);
  ASSERT_EQ(control->SetNotifyWindow(second, kId), S_OK);
  first.Destroy();
  EXPECT_EQ(control->SetNotifyWindow(third, kId), E_OUTOFMEMORY) << "not noticed before a post";
  EXPECT_EQ(presets->ApplyPreset(0), S_OK);
  EXPECT_THAT(second.Take(), ElementsAre(Pair(kId, 32701)));
  EXPECT_EQ(control->SetNotifyWindow(third, kId), S_OK);
  presets->ApplyPreset(0);
  EXPECT_THAT(third.Take(), ElementsAre(Pair(kId, 32701)));
}

}  // namespace
}  // namespace tervan::test
