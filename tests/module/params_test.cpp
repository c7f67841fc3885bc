// Parameter descriptions, values and envelopes, as a host reaches them.
#include <cmath>
#include <limits>

#include "module/effects.h"

namespace tervan::test {
namespace {

constexpr GUID kReferenceTime = {0x93ad712b, 0xdaa0, 0x4ffe, {0xbc, 0x81, 0xb0, 0xce, 0x50, 0x0f, 0xcd, 0xd9}};
constexpr DWORD kThreshold = 2;

using ParamsTest = ModuleTest;
using ParamTableTest = EffectTest;
TERVAN_FOR_AUTOMATED_EFFECTS(ParamTableTest);

TEST_P(ParamTableTest, RowsAreDescribedInBytesAndText) {
  const auto params = Query<IMediaParamInfo>(Filter(effect).control.Get());
  DWORD count = 0;
  ASSERT_EQ(params->GetParamCount(&count), S_OK);
  ASSERT_EQ(count, effect.params.size());
  MP_PARAMINFO info;
  WCHAR* text = nullptr;
  for (DWORD row = 0; row < count; ++row) {
    SCOPED_TRACE(row);
    const ParamRow& param = effect.params[row];
    std::memset(&info, 0x5A, sizeof info);
    ASSERT_EQ(params->GetParamInfo(row, &info), S_OK);
    EXPECT_EQ(info.mpType, param.type);
    EXPECT_EQ(info.mopCaps, param.type == MPT_FLOAT ? 15u : 1u);
    EXPECT_EQ(info.mpdMinValue, param.min);
    EXPECT_EQ(info.mpdMaxValue, param.max);
    EXPECT_EQ(info.mpdNeutralValue, param.neutral);
    EXPECT_EQ(std::wstring(info.szLabel), param.label);
    EXPECT_EQ(std::wstring(info.szUnitText), param.unit);
    std::wstring expected = param.label + L"," + param.unit + L"," + param.items + L",,";
    std::replace(expected.begin(), expected.end(), L',', L'\0');
    ASSERT_EQ(params->GetParamText(row, &text), S_OK);
    EXPECT_EQ(std::wstring(text, expected.size()), expected);
    CoTaskMemFree(text);
  }
  EXPECT_EQ(params->GetParamCount(nullptr), E_POINTER);
  EXPECT_EQ(params->GetParamInfo(count, nullptr), E_POINTER);
  EXPECT_EQ(params->GetParamInfo(count, &info), E_INVALIDARG);
  EXPECT_EQ(params->GetParamText(count, nullptr), E_POINTER);
  EXPECT_EQ(params->GetParamText(count, &text), E_INVALIDARG);
}

// Each row by itself: its own slot says so and no other, and its own value is in the record.
TEST_P(ParamTableTest, AnEnvelopeGovernsItsOwnRowAlone) {
  for (DWORD row = 0; row < effect.params.size(); ++row) {
    SCOPED_TRACE(row);
    const ParamRow& param = effect.params[row];
    const Filter filter(effect);
    const float value = effect.presets[0].settings[param.word] == param.max * param.scale ? param.min : param.max;
    MP_ENVELOPE_SEGMENT segment{0, 1000000, value, value, MP_CURVE_JUMP, 0};
    float silence[480] = {};
    ASSERT_EQ(filter.values->AddEnvelope(row, 1, &segment), S_OK);
    ASSERT_EQ(filter.direct->BeginStream(1, 48000), S_OK);
    ASSERT_EQ(filter.direct->ProcessBuffer(silence, 480, 0), S_OK);
    Settings expected = effect.presets[0].settings;
    expected[param.word] = std::round(value * param.scale);
    EXPECT_EQ(filter.Get(), expected);
    for (const ParamRow& other : effect.params) {
      EXPECT_EQ(filter.Slot(other.slot + 4), &other == &param ? S_OK : S_FALSE) << other.slot;
    }
    EXPECT_EQ(filter.values->SetParam(row, param.neutral), S_FALSE);
    EXPECT_EQ(filter.values->FlushEnvelope(row, 0, 1000000), S_OK);
    ASSERT_EQ(filter.direct->ProcessBuffer(silence, 480, 0), S_OK);
    EXPECT_EQ(filter.Slot(param.slot + 4), S_FALSE);
    EXPECT_HRESULT_SUCCEEDED(filter.values->SetParam(row, param.neutral));
  }
}

TEST_F(ParamsTest, OneTimeFormatIsKnown) {
  const auto params = Query<IMediaParamInfo>(Filter(kCompressor).control.Get());
  DWORD count = 0;
  GUID supported{}, current{};
  MP_TIMEDATA data = 99;
  EXPECT_EQ(params->GetNumTimeFormats(&count), S_OK);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(params->GetSupportedTimeFormat(0, &supported), S_OK);
  EXPECT_EQ(supported, kReferenceTime);
  EXPECT_EQ(params->GetSupportedTimeFormat(1, nullptr), E_POINTER);
  EXPECT_EQ(params->GetSupportedTimeFormat(1, &supported), E_INVALIDARG);
  EXPECT_EQ(params->GetCurrentTimeFormat(&current, &data), S_OK);
  EXPECT_EQ(current, kReferenceTime);
  EXPECT_EQ(data, 0u);
  EXPECT_EQ(params->GetCurrentTimeFormat(&current, nullptr), E_POINTER);
}

// By place: a declaration with the slots in another order would still find itself consistent.
TEST_F(ParamsTest, ValuesAnswerAtTheirSlots) {
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
  const Filter filter(kCompressor);
  const auto slot = [&](int number, auto... arguments) { return CallSlot(filter.values.Get(), number, arguments...); };
  MP_DATA value = 77;
  EXPECT_EQ(slot(4, kThreshold, -12.0f), S_OK);
  EXPECT_EQ(slot(4, kThreshold, -12.0f), S_FALSE);
  EXPECT_EQ(slot(4, kThreshold, 5.0f), E_INVALIDARG);
  EXPECT_EQ(slot(4, DWORD{9}, 0.0f), E_INVALIDARG);
  EXPECT_EQ(slot(3, kThreshold, &value), S_OK);
  EXPECT_EQ(value, -12.0f);
  EXPECT_EQ(slot(3, DWORD{9}, &value), E_INVALIDARG);
  EXPECT_EQ(slot(3, DWORD{9}, static_cast<MP_DATA*>(nullptr)), E_POINTER);

  MP_ENVELOPE_SEGMENT segments[] = {{0, 100, -10, -20, MP_CURVE_LINEAR, 0}, {100, 200, -10, kNan, MP_CURVE_LINEAR, 0}};
  EXPECT_EQ(slot(5, kThreshold, DWORD{1}, &segments[0]), S_OK);
  EXPECT_EQ(slot(5, kThreshold, DWORD{2}, &segments[0]), E_INVALIDARG);
  EXPECT_EQ(slot(5, DWORD{9}, DWORD{1}, static_cast<MP_ENVELOPE_SEGMENT*>(nullptr)), E_POINTER);
  EXPECT_EQ(slot(6, kThreshold, REFERENCE_TIME{0}, REFERENCE_TIME{100}), S_OK);
  EXPECT_EQ(slot(6, DWORD{9}, REFERENCE_TIME{0}, REFERENCE_TIME{100}), E_INVALIDARG);
  EXPECT_EQ(slot(7, kReferenceTime, DWORD{7}), S_OK);
  EXPECT_EQ(slot(7, GUID{}, DWORD{7}), E_FAIL);
}

TEST_F(ParamsTest, TheHostsRecorderIsKeptUntilItIsReplaced) {
  HostRecorder recorder, next;
  {
    const Filter filter(kCompressor);
    const auto site = Query<IParamRecorderSite>(filter.control.Get());
    ASSERT_EQ(site->SetRecorder(&recorder), S_OK);
    EXPECT_EQ(recorder.references, 1);
    EXPECT_EQ(filter.values->SetParam(3, 7), S_OK);
    ASSERT_EQ(site->SetRecorder(nullptr), S_OK);
    EXPECT_EQ(recorder.references, 0);
    filter.SetAt(filter.effect.params[3], 9);
    EXPECT_EQ(recorder.Take(), "") << "of the host's own change, and of the page's afterwards";
    ASSERT_EQ(site->SetRecorder(&next), S_OK);
  }
  EXPECT_EQ(next.references, 0) << "the filter lets go of it at its end";
}

}  // namespace
}  // namespace tervan::test
