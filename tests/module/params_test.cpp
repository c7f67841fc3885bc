// Parameter descriptions, values and envelopes, as a host reaches them.
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "module/module.h"

namespace tervan::test {
namespace {

constexpr GUID kReferenceTime = {0x93ad712b, 0xdaa0, 0x4ffe, {0xbc, 0x81, 0xb0, 0xce, 0x50, 0x0f, 0xcd, 0xd9}};
constexpr DWORD kAll = 0xFFFFFFFF;
constexpr DWORD kThreshold = 2;

using ParamsTest = ModuleTest;

TEST_F(ParamsTest, RowsAreDescribedInBytesAndText) {
  const auto params = NewCompressor<IMediaParamInfo>();
  DWORD count = 0;
  ASSERT_EQ(params->GetParamCount(&count), S_OK);
  EXPECT_EQ(count, 9u);
  MP_PARAMINFO info;
  std::memset(&info, 0x5A, sizeof info);
  ASSERT_EQ(params->GetParamInfo(5, &info), S_OK);
  EXPECT_EQ(info.mpType, MPT_FLOAT);
  EXPECT_EQ(info.mopCaps, 15u);
  EXPECT_EQ(info.mpdMinValue, 0);
  EXPECT_EQ(info.mpdMaxValue, 5000);
  EXPECT_EQ(info.mpdNeutralValue, 250);
  EXPECT_EQ(std::wstring(info.szLabel), L"Release Time");
  EXPECT_EQ(std::wstring(info.szUnitText), L"ms");
  WCHAR* text = nullptr;
  ASSERT_EQ(params->GetParamText(5, &text), S_OK);
  const std::wstring expected(L"Release Time\0ms\0\0\0", 18);
  EXPECT_EQ(std::wstring(text, expected.size()), expected);
  CoTaskMemFree(text);

  EXPECT_EQ(params->GetParamCount(nullptr), E_POINTER);
  EXPECT_EQ(params->GetParamInfo(9, nullptr), E_POINTER);
  EXPECT_EQ(params->GetParamInfo(9, &info), E_INVALIDARG);
  EXPECT_EQ(params->GetParamText(9, nullptr), E_POINTER);
  EXPECT_EQ(params->GetParamText(9, &text), E_INVALIDARG);
}

TEST_F(ParamsTest, OneTimeFormatIsKnown) {
  const auto params = NewCompressor<IMediaParamInfo>();
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
  const auto values = NewCompressor<tervan::IMediaParams>();
  const auto slot = [&](int number, auto... arguments) { return CallSlot(values.Get(), number, arguments...); };
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

// 20 ms are played at a time; the envelope lasts from 20 to 100 ms.
TEST_F(ParamsTest, AnEnvelopeGovernsItsRowUntilItIsOverOrFlushed) {
  const Compressor compressor;
  ASSERT_EQ(compressor.direct->BeginStream(1, 50000), S_OK);
  const auto play_20ms = [&] {
    std::vector<float> silence(1000);
    EXPECT_EQ(compressor.direct->ProcessBuffer(silence.data(), 1000, 0), S_OK);
    return SettingsOf(*compressor.control);
  };
  MP_ENVELOPE_SEGMENT segment{200000, 1000000, -8, -40, MP_CURVE_LINEAR, 0};
  ASSERT_EQ(compressor.values->AddEnvelope(kAll, 1, &segment), S_OK);
  ASSERT_EQ(compressor.values->FlushEnvelope(0, 0, 1000000), S_OK);
  for (const float expected_db : {0, -8, -16}) {
    const CompressorSettings settings = play_20ms();
    EXPECT_FLOAT_EQ(settings.threshold_db, expected_db);
    EXPECT_EQ(settings.input_gain_db, 0) << "flushed before it began";
  }
  EXPECT_EQ(compressor.control->IsThresholdAutomated(), S_OK);
  EXPECT_EQ(compressor.control->IsInputGainAutomated(), S_FALSE);
  EXPECT_EQ(compressor.values->SetParam(kThreshold, -5), S_FALSE);
  play_20ms(), play_20ms(), play_20ms();
  EXPECT_EQ(compressor.control->IsThresholdAutomated(), S_FALSE) << "the segment is over";
  EXPECT_EQ(compressor.values->SetParam(kThreshold, -5), S_OK);
}

// Notes its calls: "B3" begin of row 3, "V3=1.5" a value, "E3" end. What it answers does not matter.
class HostRecorder final : public CountedFake<IParamRecorder> {
 public:
  HostRecorder() : CountedFake(IID_IUnknown) {}
  STDMETHODIMP BeginEdit(DWORD* indices, DWORD count) override { return Note('B', indices[count - 1]); }
  STDMETHODIMP EditValue(DWORD* indices, DWORD count, float* values) override {
    Note('V', indices[count - 1]);
    calls_ << "=" << values[count - 1];
    return E_FAIL;
  }
  STDMETHODIMP EndEdit(DWORD* indices, DWORD count) override { return Note('E', indices[count - 1]); }
  std::string Take() { return std::exchange(calls_, {}).str(); }

 private:
  HRESULT Note(char what, DWORD index) {
    calls_ << ' ' << what << index;
    return E_FAIL;
  }
  std::ostringstream calls_;
};

TEST_F(ParamsTest, TheHostsRecorderHearsOfEditsUntilItIsReplaced) {
  HostRecorder recorder, next;
  {
    const Compressor compressor;
    const auto site = Query<IParamRecorderSite>(compressor.control.Get());
    ASSERT_EQ(site->SetRecorder(&recorder), S_OK);
    EXPECT_EQ(recorder.references, 1);
    EXPECT_EQ(compressor.values->SetParam(3, 7), S_OK);  // the host's own change
    compressor.control->SetAmount(4);
    EXPECT_EQ(recorder.Take(), " B3 V3=4 E3");
    ASSERT_EQ(site->SetRecorder(nullptr), S_OK);
    EXPECT_EQ(recorder.references, 0);
    compressor.control->SetAmount(9);
    EXPECT_EQ(recorder.Take(), "");
    ASSERT_EQ(site->SetRecorder(&next), S_OK);
  }
  EXPECT_EQ(next.references, 0) << "the filter lets go of it at its end";
}

}  // namespace
}  // namespace tervan::test
