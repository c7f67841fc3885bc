// Parameter descriptions, values and envelopes, as a host reaches them.
#include <cmath>
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
constexpr REFERENCE_TIME kMillisecond = 10000;

using ParamInfoTest = ModuleTest;
using ParamValueTest = ModuleTest;
using EnvelopeTest = ModuleTest;

TEST_F(ParamInfoTest, DescribesNineRows) {
  using namespace std::string_literals;
  const struct {
    std::wstring label, unit;
    MP_TYPE type;
    MP_CAPS caps;
    float min, max, neutral;
  } rows[] = {
      {L"Input Gain", L"dB", MPT_FLOAT, 15, -60, 25, 0},
      {L"Output Gain", L"dB", MPT_FLOAT, 15, -60, 25, 0},
      {L"Threshold", L"dB", MPT_FLOAT, 15, -60, 0, -40},
      {L"Amount", L"", MPT_FLOAT, 15, 1, 50, 2},
      {L"Attack Time", L"ms", MPT_FLOAT, 15, 0, 500, 15},
      {L"Release Time", L"ms", MPT_FLOAT, 15, 0, 5000, 250},
      {L"Auto Gain Compensation", L"", MPT_BOOL, 1, 0, 1, 1},
      {L"Smooth Saturation", L"", MPT_BOOL, 1, 0, 1, 0},
      {L"Bypass", L"", MPT_BOOL, 1, 0, 1, 0},
  };
  const auto params = NewCompressor<IMediaParamInfo>();
  DWORD count = 0;
  ASSERT_EQ(params->GetParamCount(&count), S_OK);
  ASSERT_EQ(count, std::size(rows));
  for (DWORD i = 0; i < count; ++i) {
    SCOPED_TRACE(i);
    MP_PARAMINFO info;
    std::memset(&info, 0x5A, sizeof info);
    ASSERT_EQ(params->GetParamInfo(i, &info), S_OK);
    EXPECT_EQ(info.mpType, rows[i].type);
    EXPECT_EQ(info.mopCaps, rows[i].caps);
    EXPECT_EQ(info.mpdMinValue, rows[i].min);
    EXPECT_EQ(info.mpdMaxValue, rows[i].max);
    EXPECT_EQ(info.mpdNeutralValue, rows[i].neutral);
    EXPECT_EQ(std::wstring(info.szLabel), rows[i].label);
    EXPECT_EQ(std::wstring(info.szUnitText), rows[i].unit);
    WCHAR* text = nullptr;
    ASSERT_EQ(params->GetParamText(i, &text), S_OK);
    const std::wstring expected = rows[i].label + L'\0' + rows[i].unit + L"\0\0\0"s;
    EXPECT_EQ(std::wstring(text, expected.size()), expected);
    CoTaskMemFree(text);
  }
}

TEST_F(ParamInfoTest, ChecksPointersBeforeIndices) {
  const auto params = NewCompressor<IMediaParamInfo>();
  MP_PARAMINFO info;
  WCHAR* text = nullptr;
  GUID format;
  MP_TIMEDATA data;
  EXPECT_EQ(params->GetParamCount(nullptr), E_POINTER);
  EXPECT_EQ(params->GetParamInfo(9, nullptr), E_POINTER);
  EXPECT_EQ(params->GetParamInfo(9, &info), E_INVALIDARG);
  EXPECT_EQ(params->GetParamInfo(kAll, &info), E_INVALIDARG);
  EXPECT_EQ(params->GetParamText(9, nullptr), E_POINTER);
  EXPECT_EQ(params->GetParamText(9, &text), E_INVALIDARG);
  EXPECT_EQ(params->GetNumTimeFormats(nullptr), E_POINTER);
  EXPECT_EQ(params->GetSupportedTimeFormat(1, nullptr), E_POINTER);
  EXPECT_EQ(params->GetSupportedTimeFormat(1, &format), E_INVALIDARG);
  EXPECT_EQ(params->GetCurrentTimeFormat(nullptr, &data), E_POINTER);
  EXPECT_EQ(params->GetCurrentTimeFormat(&format, nullptr), E_POINTER);
}

TEST_F(ParamInfoTest, KnowsOneTimeFormat) {
  const auto params = NewCompressor<IMediaParamInfo>();
  const auto values = Query<tervan::IMediaParams>(params.Get());
  DWORD count = 0;
  EXPECT_EQ(params->GetNumTimeFormats(&count), S_OK);
  EXPECT_EQ(count, 1u);
  GUID format{};
  EXPECT_EQ(params->GetSupportedTimeFormat(0, &format), S_OK);
  EXPECT_EQ(format, kReferenceTime);
  EXPECT_EQ(values->SetTimeFormat(kReferenceTime, 1234), S_OK);
  EXPECT_EQ(values->SetTimeFormat(GUID_NULL, 5), E_FAIL);
  MP_TIMEDATA data = 99;
  format = {};
  EXPECT_EQ(params->GetCurrentTimeFormat(&format, &data), S_OK);
  EXPECT_EQ(format, kReferenceTime);
  EXPECT_EQ(data, 0u);
}

TEST_F(ParamValueTest, AreRefusedOutsideTheRangeAndTellWhetherTheyChanged) {
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const struct {
    DWORD index;
    float value;
    HRESULT result;
    float stored;  // afterwards
  } rows[] = {
      {kThreshold, 5, E_INVALIDARG, 0},
      {kThreshold, -40, S_OK, -40},
      {kThreshold, -40, S_FALSE, -40},
      {kThreshold, -60, S_OK, -60},
      {kThreshold, -60.5f, E_INVALIDARG, -60},
      {kThreshold, kNan, E_INVALIDARG, -60},
      {kThreshold, -kInfinity, E_INVALIDARG, -60},
      {3, 60, E_INVALIDARG, 1},
      {3, 50, S_OK, 50},
      {3, kInfinity, E_INVALIDARG, 50},
      {5, 5000, S_OK, 5000},
      {8, 1, S_OK, 1},
      {8, 2, E_INVALIDARG, 1},
      {9, 0, E_INVALIDARG, 0},
      {kAll, 0, E_INVALIDARG, 0},
  };
  const auto values = NewCompressor<tervan::IMediaParams>();
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    EXPECT_EQ(values->SetParam(row.index, row.value), row.result);
    if (row.index > 8) continue;
    MP_DATA stored = 77;
    EXPECT_EQ(values->GetParam(row.index, &stored), S_OK);
    EXPECT_EQ(stored, row.stored);
  }
  MP_DATA poisoned = 77;
  EXPECT_EQ(values->GetParam(9, nullptr), E_POINTER);
  EXPECT_EQ(values->GetParam(9, &poisoned), E_INVALIDARG);
}

// By place: a declaration with the slots in another order would still find itself consistent.
TEST_F(ParamValueTest, AnswerAtTheirSlots) {
  const auto values = NewCompressor<tervan::IMediaParams>();
  MP_DATA value = 77;
  MP_ENVELOPE_SEGMENT segment{0, 100, -10, -20, MP_CURVE_LINEAR, 0};
  EXPECT_EQ(CallSlot(values.Get(), 4, kThreshold, -12.0f), S_OK);
  EXPECT_EQ(CallSlot(values.Get(), 3, kThreshold, &value), S_OK);
  EXPECT_EQ(value, -12.0f);
  EXPECT_EQ(CallSlot(values.Get(), 5, kThreshold, DWORD{1}, &segment), S_OK);
  EXPECT_EQ(CallSlot(values.Get(), 5, kThreshold, DWORD{0}, &segment), E_INVALIDARG);
  EXPECT_EQ(CallSlot(values.Get(), 6, kThreshold, REFERENCE_TIME{0}, REFERENCE_TIME{100}), S_OK);
  EXPECT_EQ(CallSlot(values.Get(), 6, DWORD{9}, REFERENCE_TIME{0}, REFERENCE_TIME{100}), E_INVALIDARG);
  EXPECT_EQ(CallSlot(values.Get(), 7, kReferenceTime, DWORD{7}), S_OK);
  EXPECT_EQ(CallSlot(values.Get(), 7, GUID{}, DWORD{7}), E_FAIL);
}

// A compressor that plays silence without a graph, 20 ms at a time.
class Player {
 public:
  Player() : Player(NewCompressor<tervan::IMediaParams>()) {}
  explicit Player(ComPtr<tervan::IMediaParams> compressor)
      : values(std::move(compressor)),
        control(Query<ICompressorSettings>(values.Get())),
        direct(Query<IDirectBufferProcess>(values.Get())) {
    EXPECT_EQ(direct->BeginStream(1, 50000), S_OK);
  }
  float Play20ms(DWORD index) {
    std::vector<float> silence(1000);
    EXPECT_EQ(direct->ProcessBuffer(silence.data(), 1000, 0), S_OK);
    return Value(index);
  }
  float Value(DWORD index) const {
    MP_DATA value = 77;
    EXPECT_EQ(values->GetParam(index, &value), S_OK);
    return value;
  }

  ComPtr<tervan::IMediaParams> values;
  ComPtr<ICompressorSettings> control;
  ComPtr<IDirectBufferProcess> direct;
};

TEST_F(EnvelopeTest, ChecksItsArguments) {
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const auto values = NewCompressor<tervan::IMediaParams>();
  MP_ENVELOPE_SEGMENT good{0, 100, -10, -20, MP_CURVE_LINEAR, 0};
  EXPECT_EQ(values->AddEnvelope(9, 0, nullptr), E_POINTER);
  EXPECT_EQ(values->AddEnvelope(9, 0, &good), E_INVALIDARG);
  EXPECT_EQ(values->AddEnvelope(9, 1, &good), E_INVALIDARG);
  EXPECT_EQ(values->AddEnvelope(kAll, 1, &good), S_OK);
  EXPECT_EQ(values->FlushEnvelope(9, 0, 100), E_INVALIDARG);
  EXPECT_EQ(values->FlushEnvelope(kAll, 0, 100), S_OK);
  for (const float bad : {kNan, kInfinity, -kInfinity}) {
    MP_ENVELOPE_SEGMENT segments[] = {
        good, {100, 200, bad, 0, MP_CURVE_LINEAR, 0}, {100, 200, 0, bad, MP_CURVE_JUMP, 0}};
    EXPECT_EQ(values->AddEnvelope(kThreshold, 2, segments), E_INVALIDARG);
    EXPECT_EQ(values->AddEnvelope(kThreshold, 1, segments + 2), E_INVALIDARG);
  }
}

// Value after each of the blocks that begin at 0, 20, 40, 60, 80 and 100 ms. The curve lasts from 20 to 100 ms.
TEST_F(EnvelopeTest, MovesTheValueAlongItsCurve) {
  const struct {
    MP_CURVE_TYPE curve;
    float expected[6];
  } rows[] = {
      {MP_CURVE_JUMP, {0, -8, -8, -8, -8, -8}},       {MP_CURVE_LINEAR, {0, -8, -16, -24, -32, -32}},
      {MP_CURVE_SQUARE, {0, -8, -10, -16, -26, -26}}, {MP_CURVE_INVSQUARE, {0, -8, -22, -32, -38, -38}},
      {MP_CURVE_SINE, {0, -8, -8, -8, -8, -8}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.curve);
    Player player;
    MP_ENVELOPE_SEGMENT segment{20 * kMillisecond, 100 * kMillisecond, -8, -40, row.curve, 0};
    ASSERT_EQ(player.values->AddEnvelope(kThreshold, 1, &segment), S_OK);
    for (const float expected : row.expected) EXPECT_NEAR(player.Play20ms(kThreshold), expected, 1e-5);
  }
}

TEST_F(EnvelopeTest, GovernsOnlyInsideItsSegmentsAndWhileStreaming) {
  Player player;
  MP_ENVELOPE_SEGMENT segment{0, 40 * kMillisecond, -30, -30, MP_CURVE_JUMP, 0};
  ASSERT_EQ(player.values->AddEnvelope(kThreshold, 1, &segment), S_OK);
  EXPECT_EQ(player.control->IsThresholdAutomated(), S_FALSE);
  EXPECT_EQ(player.Play20ms(kThreshold), -30);
  EXPECT_EQ(player.control->IsThresholdAutomated(), S_OK);
  EXPECT_EQ(player.control->IsAmountAutomated(), S_FALSE);
  EXPECT_EQ(player.values->SetParam(kThreshold, -5), S_FALSE);
  EXPECT_EQ(player.values->SetParam(kThreshold, 5), S_FALSE) << "automation answers before the range";
  EXPECT_EQ(player.Value(kThreshold), -30);

  EXPECT_EQ(player.control->BeginThresholdEdit(), S_OK);
  EXPECT_EQ(player.control->SetThreshold(-3), S_OK);
  EXPECT_EQ(player.Play20ms(kThreshold), -3) << "an edit by hand suspends automation";
  EXPECT_EQ(player.control->EndThresholdEdit(), S_OK);
  EXPECT_EQ(player.Play20ms(kThreshold), -3) << "the segment is over";
  EXPECT_EQ(player.control->IsThresholdAutomated(), S_FALSE);
  EXPECT_EQ(player.values->SetParam(kThreshold, -5), S_OK);
  EXPECT_EQ(player.direct->EndStream(), S_OK);
}

TEST_F(EnvelopeTest, AutomationDoesNotMakeTheSettingsModified) {
  Player player;
  const auto persist = Query<IPersistStream>(player.values.Get());
  ComPtr<IStream> stream;
  ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()), S_OK);
  ASSERT_EQ(persist->Save(stream.Get(), TRUE), S_OK);
  MP_ENVELOPE_SEGMENT segment{0, 40 * kMillisecond, 0, -30, MP_CURVE_LINEAR, 0};
  ASSERT_EQ(player.values->AddEnvelope(kThreshold, 1, &segment), S_OK);
  player.Play20ms(kThreshold);
  EXPECT_EQ(player.Play20ms(kThreshold), -15);
  EXPECT_EQ(persist->IsDirty(), S_FALSE);
}

TEST_F(EnvelopeTest, NewSegmentsReplaceWhatTheyOverlapAndFlushingEmptiesTheRow) {
  Player player;
  MP_ENVELOPE_SEGMENT pair[] = {{0, 20 * kMillisecond, -10, -10, MP_CURVE_JUMP, 0},
                                {20 * kMillisecond, 40 * kMillisecond, -20, -20, MP_CURVE_JUMP, 0}};
  MP_ENVELOPE_SEGMENT over{10 * kMillisecond, 30 * kMillisecond, -30, -30, MP_CURVE_JUMP, 0};
  ASSERT_EQ(player.values->AddEnvelope(kAll, 2, pair), S_OK);
  ASSERT_EQ(player.values->AddEnvelope(kThreshold, 1, &over), S_OK);
  EXPECT_EQ(player.Play20ms(kThreshold), 0) << "both were overlapped";
  EXPECT_EQ(player.Value(0), -10) << "the other rows keep theirs";
  EXPECT_EQ(player.Play20ms(kThreshold), -30);
  EXPECT_EQ(player.Value(1), -20);
  ASSERT_EQ(player.values->FlushEnvelope(kAll, 0, 100 * kMillisecond), S_OK);
  EXPECT_EQ(player.direct->Refresh(1, 0, 0), S_OK);
  EXPECT_EQ(player.values->SetParam(0, 5), S_FALSE) << "still inside the segment until the next block looks";
  EXPECT_EQ(player.Play20ms(0), -20);
  EXPECT_EQ(player.values->SetParam(0, 5), S_OK);
}

TEST_F(EnvelopeTest, HarmlessWhateverTheTimes) {
  constexpr REFERENCE_TIME kMax = std::numeric_limits<REFERENCE_TIME>::max();
  constexpr REFERENCE_TIME kMin = std::numeric_limits<REFERENCE_TIME>::min();
  for (const auto& [start, end] : std::vector<std::pair<REFERENCE_TIME, REFERENCE_TIME>>{
           {kMin, kMax}, {kMax, kMin}, {0, 0}, {100, -100}, {kMin, 0}, {0, kMax}, {kMax, kMax}}) {
    SCOPED_TRACE(testing::Message() << start << ' ' << end);
    Player player;
    MP_ENVELOPE_SEGMENT segment{start, end, -10, -20, MP_CURVE_LINEAR, 0};
    ASSERT_EQ(player.values->AddEnvelope(kAll, 1, &segment), S_OK);
    for (int i = 0; i < 5; ++i) EXPECT_TRUE(std::isfinite(player.Play20ms(kThreshold)));
    EXPECT_EQ(player.values->FlushEnvelope(kAll, kMin, kMax), S_OK);
    player.Play20ms(kThreshold);
  }
}

// Notes its calls: "B3" begin of row 3, "V3=1.5" a value, "E3" end.
class HostRecorder final : public IParamRecorder {
 public:
  ~HostRecorder() { EXPECT_EQ(references, 0); }
  STDMETHODIMP QueryInterface(REFIID, void** out) override { return *out = nullptr, E_NOINTERFACE; }
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(++references); }
  STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(--references); }
  STDMETHODIMP BeginEdit(DWORD* indices, DWORD count) override { return Note("B", indices, count, nullptr); }
  STDMETHODIMP EditValue(DWORD* indices, DWORD count, float* values) override {
    return Note("V", indices, count, values);
  }
  STDMETHODIMP EndEdit(DWORD* indices, DWORD count) override { return Note("E", indices, count, nullptr); }
  std::string Take() { return std::exchange(calls_, {}); }

  int references = 0;

 private:
  HRESULT Note(const char* what, const DWORD* indices, DWORD count, const float* values) {
    EXPECT_EQ(count, 1u);
    std::ostringstream call;
    call << what << indices[0];
    if (values) call << '=' << values[0];
    calls_ += call.str() + " ";
    return E_FAIL;  // what a recorder answers does not matter
  }
  std::string calls_;
};

using RecorderTest = ModuleTest;

TEST_F(RecorderTest, HearsOfEditsInOrder) {
  HostRecorder recorder, next;
  {
    const auto control = NewCompressor<ICompressorSettings>();
    const auto site = Query<IParamRecorderSite>(control.Get());
    ASSERT_EQ(site->SetRecorder(&recorder), S_OK);
    EXPECT_EQ(recorder.references, 1);
    control->SetAmount(4);
    EXPECT_EQ(recorder.Take(), "B3 V3=4 E3 ");
    control->SetAmount(4);
    EXPECT_EQ(recorder.Take(), "") << "nothing changed";
    EXPECT_EQ(control->BeginAmountEdit(), S_OK);
    EXPECT_EQ(control->BeginAmountEdit(), S_FALSE);
    control->SetAmount(80);
    EXPECT_EQ(control->EndAmountEdit(), S_OK);
    EXPECT_EQ(control->EndAmountEdit(), S_OK);
    EXPECT_EQ(recorder.Take(), "B3 V3=50 E3 ");
    Query<tervan::IMediaParams>(control.Get())->SetParam(3, 7);
    EXPECT_EQ(recorder.Take(), "") << "the host's own change";
    EXPECT_EQ(Query<IPluginPresets>(control.Get())->ApplyPreset(4), S_OK);
    EXPECT_EQ(recorder.Take(), "B0 B1 B2 B3 B4 B5 B6 B7 B8 V2=-18 V3=2 E0 E1 E2 E3 E4 E5 E6 E7 E8 ");

    ASSERT_EQ(site->SetRecorder(&next), S_OK);
    EXPECT_EQ(recorder.references, 0);
    EXPECT_EQ(next.references, 1);
    ASSERT_EQ(site->SetRecorder(nullptr), S_OK);
    EXPECT_EQ(next.references, 0);
    control->SetAmount(9);
    ASSERT_EQ(site->SetRecorder(&next), S_OK);
  }
  EXPECT_EQ(recorder.Take(), "");
  EXPECT_EQ(next.Take(), "");
  EXPECT_EQ(next.references, 0) << "the filter lets go of it at its end";
}

}  // namespace
}  // namespace tervan::test
