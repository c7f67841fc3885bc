// The effects in the platform's filter graph.
#include <cmath>
#include <iterator>
#include <random>

#include "module/graph_fakes.h"

namespace tervan::test {
namespace {

constexpr WORD kPcm = WAVE_FORMAT_PCM, kFloat = WAVE_FORMAT_IEEE_FLOAT;
constexpr Format kMono = {kFloat, 1, 50000, 64};

using GraphTest = EffectTest;
using AutomatedGraphTest = EffectTest;
TERVAN_FOR_ALL_EFFECTS(GraphTest);
TERVAN_FOR_AUTOMATED_EFFECTS(AutomatedGraphTest);

TEST_P(GraphTest, TakesFormatsByTagChannelsAndBits) {
  const struct {
    const char* what;
    Format format;
    bool accepted;
  } rows[] = {
      {"8 bits", {kPcm, 1, 8000, 8}, true},        {"double", {kFloat, 2, 192000, 64}, true},
      {"rate 0", {kPcm, 2, 0, 16}, true},          {"24 bits", {kPcm, 2, 44100, 24}, false},
      {"3 channels", {kPcm, 3, 44100, 16}, false}, {"extensible", {WAVE_FORMAT_EXTENSIBLE, 2, 44100, 16}, false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    EffectGraph graph(effect, row.format);
    const MediaType type = AudioType(row.format);
    EXPECT_EQ(graph.input->QueryAccept(&type.Get()), row.accepted ? S_OK : S_FALSE);
    EXPECT_EQ(graph.input->ReceiveConnection(&graph.source->pin, &type.Get()),
              row.accepted ? S_OK : VFW_E_TYPE_NOT_ACCEPTED);
    const WAVEFORMATEX stored = graph.StoredFormat(row.accepted ? S_OK : VFW_E_NOT_CONNECTED);
    const WAVEFORMATEX expected = row.accepted ? WaveFormat(row.format) : WAVEFORMATEX{};
    EXPECT_EQ(std::memcmp(&stored, &expected, sizeof stored), 0);
  }
}

TEST_P(GraphTest, TheMediaTypeAroundAFormatCounts) {
  EffectGraph graph(effect, {kPcm, 2, 44100, 16});
  const MediaType good = AudioType({kPcm, 2, 44100, 16});
  AM_MEDIA_TYPE video = good.Get(), compressed = good.Get(), blockless = good.Get();
  video.majortype = MEDIATYPE_Video;
  compressed.bTemporalCompression = TRUE;
  blockless.pbFormat = nullptr;  // with a length
  for (const AM_MEDIA_TYPE* type : {&video, &compressed, &blockless}) {
    EXPECT_EQ(graph.input->QueryAccept(type), S_FALSE);
  }
  EXPECT_EQ(graph.input->QueryAccept(nullptr), E_POINTER);
}

TEST_P(GraphTest, TheOutputHasTheInputsTypeAndEachPinTellsTheWindows) {
  Window window;
  EffectGraph graph(effect, {kPcm, 2, 44100, 16});
  ASSERT_EQ(graph.filter.Register(window, 5), S_OK);
  ASSERT_NO_FATAL_FAILURE(graph.Connect());
  EXPECT_EQ(window.Take(), (Commands{{5, 0}, {5, 1}}));
  AM_MEDIA_TYPE type{};
  ASSERT_EQ(graph.output->ConnectionMediaType(&type), S_OK);
  EXPECT_TRUE(directshow::IsSameMediaType(type, AudioType({kPcm, 2, 44100, 16})));
  directshow::FreeMediaType(type);
}

template <class Sample>
void ExpectChangedOrLeft(const EffectRow& effect, WORD channels) {
  constexpr bool kIsFloat = std::is_floating_point_v<Sample>;
  constexpr double kFullScale = kIsFloat ? 1.0 : 1ull << (8 * sizeof(Sample) - 1);
  constexpr double kSilence = sizeof(Sample) == 1 ? 128 : 0;
  constexpr double kTolerance = sizeof(Sample) == 1 ? 2 : kFullScale / 1000;
  SCOPED_TRACE(testing::Message() << sizeof(Sample) << " bytes, " << kIsFloat << ", " << channels << " channels");
  EffectGraph graph(effect, {kIsFloat ? kFloat : kPcm, channels, 44100, 8 * sizeof(Sample)});
  graph.filter.Set(effect.audible);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  const Bytes frames = Repeat(static_cast<Sample>(effect.level * kFullScale + kSilence), 4000u * channels);
  for (int i = 0; i < 3; ++i) ASSERT_EQ(graph.source->pin.Send({.bytes = frames}), S_OK);
  const Bytes& last = graph.sink->pin.samples.back();
  ASSERT_EQ(last.size(), frames.size());
  for (const unsigned index : {0u, 4000u * channels - 1}) {
    EXPECT_NEAR(SampleAt<Sample>(last, index), effect.audible_level * kFullScale + kSilence, kTolerance);
  }
  graph.filter.Set(effect.transparent);
  ASSERT_EQ(graph.source->pin.Send({.bytes = frames}), S_OK);
  EXPECT_TRUE(graph.sink->pin.samples.back() == frames);
}

TEST_P(GraphTest, ChangesOrLeavesEveryFormat) {
  ExpectChangedOrLeft<BYTE>(effect, 2);
  ExpectChangedOrLeft<INT16>(effect, 1);
  ExpectChangedOrLeft<INT16>(effect, 2);
  ExpectChangedOrLeft<INT32>(effect, 2);
  ExpectChangedOrLeft<float>(effect, 2);
  ExpectChangedOrLeft<double>(effect, 1);
}

TEST_P(GraphTest, TakesItsOwnFormatAgainAfterDirectProcessing) {
  EffectGraph graph(effect, kMono);
  graph.filter.Set(effect.audible);
  ASSERT_NO_FATAL_FAILURE(graph.Connect());
  ASSERT_EQ(graph.filter.direct->BeginStream(2, 8000), S_OK);
  ASSERT_EQ(graph.filter.direct->EndStream(), S_OK);
  ASSERT_HRESULT_SUCCEEDED(graph.media->Run());
  ASSERT_EQ(graph.source->pin.Send({.bytes = Repeat(effect.level, 8000)}), S_OK);
  EXPECT_NEAR(SampleAt<double>(graph.sink->pin.samples.back(), 7999), effect.audible_level, 1e-3);
  EXPECT_EQ(graph.StoredFormat().nSamplesPerSec, kMono.rate_hz);
}

// A flush, a segment or a discontinuity alone resets nothing. Settings pushed at a discontinuity start the dynamics
// anew.
TEST_P(AutomatedGraphTest, FlushSegmentsAndDiscontinuitiesPassWithoutAReset) {
  EffectGraph graph(effect, kMono);
  SinkPin& sink = graph.sink->pin;
  graph.filter.Set(effect.audible);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  graph.source->pin.Send({.bytes = Repeat(effect.level, 8000)});
  const SourceSample discontinuous{.bytes = Repeat(effect.level, 100), .is_discontinuity = true};
  EXPECT_EQ(graph.input->BeginFlush(), S_OK);
  EXPECT_EQ(graph.source->pin.Send(discontinuous), S_FALSE);
  EXPECT_EQ(graph.input->EndFlush(), S_OK);
  EXPECT_EQ(graph.input->NewSegment(0, 100, 1.0), S_OK);
  EXPECT_EQ(graph.source->pin.Send(discontinuous), S_OK);
  EXPECT_EQ(sink.log, "sample flush( )flush segment sample ");
  EXPECT_NEAR(SampleAt<double>(sink.samples.back(), 0), effect.audible_level, 1e-2);
  graph.filter.Slot(effect.params[0].slot + 2);
  graph.filter.Slot(effect.params[0].slot + 3);  // marks the settings as changed
  graph.source->pin.Send(discontinuous);
  const double expected = GetParam() == kEq ? effect.audible_level : effect.level;
  EXPECT_NEAR(SampleAt<double>(sink.samples.back(), 0), expected, 0.05);
}

// Frame-exact times at 50 kHz: a frame lasts 200 units of 100 ns.
TEST_P(AutomatedGraphTest, AutomationInAGraphEqualsDirectProcessing) {
  // The compressor's threshold, the EQ's gain, the gate's threshold.
  const DWORD row = GetParam() == kCompressor ? 2 : GetParam() == kEq ? 1 : 0;
  const float low = effect.params[row].min, high = effect.params[row].max, mid = 0.5f * (low + high);
  MP_ENVELOPE_SEGMENT segments[] = {{0, 500000, high, mid, MP_CURVE_LINEAR, 0},
                                    {500000, 900000, mid, high, MP_CURVE_SQUARE, 0},
                                    {1000000, 1400000, high, low, MP_CURVE_INVSQUARE, 0},
                                    {1400000, 1700040, mid, mid, MP_CURVE_JUMP, 0}};
  std::vector<float> frames(10000 * 2);
  std::mt19937 random(1);
  for (float& sample : frames) sample = std::ldexp(static_cast<float>(random() % 65536), -16) - 0.5f;
  const Bytes input = BytesOf(frames);

  const Filter filter(effect);
  filter.Set(effect.audible);
  ASSERT_EQ(filter.values->AddEnvelope(row, std::size(segments), segments), S_OK);
  ASSERT_EQ(filter.direct->BeginStream(2, 50000), S_OK);
  for (DWORD done = 0; done < 10000; done += 625) {
    ASSERT_EQ(filter.direct->ProcessBuffer(frames.data() + 2 * done, 625, 0), S_OK);
  }

  EffectGraph graph(effect, {kFloat, 2, 50000, 32});
  graph.filter.Set(effect.audible);
  ASSERT_EQ(graph.filter.values->AddEnvelope(row, std::size(segments), segments), S_OK);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  for (int n = 0; n < 16; ++n) {
    const auto begin = input.begin() + n * 5000;
    ASSERT_EQ(graph.source->pin.Send({.bytes = {begin, begin + 5000}, .start = n * 125000, .stop = (n + 1) * 125000}),
              S_OK);
  }
  EXPECT_TRUE(graph.sink->pin.All() == BytesOf(frames));
  EXPECT_FALSE(graph.sink->pin.All() == input);
}

// The first parameter's envelope rises evenly over a second.
TEST_P(AutomatedGraphTest, SamplesWithoutTimesKeepTheBlockOfTheOneBefore) {
  EffectGraph graph(effect, kMono);
  const ParamRow& param = effect.params[0];
  MP_ENVELOPE_SEGMENT segment{0, 10000000, param.min, param.max, MP_CURVE_LINEAR, 0};
  ASSERT_EQ(graph.filter.values->AddEnvelope(0, 1, &segment), S_OK);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  const auto risen_after = [&](std::optional<REFERENCE_TIME> start, std::optional<REFERENCE_TIME> stop) {
    EXPECT_EQ(graph.source->pin.Send({.bytes = Repeat(0.0, 100), .start = start, .stop = stop}), S_OK);
    MP_DATA value = 0;
    EXPECT_EQ(graph.filter.values->GetParam(0, &value), S_OK);
    return (value - param.min) / (param.max - param.min);
  };
  EXPECT_FLOAT_EQ(risen_after(2000000, 2020000), 0.2f);
  EXPECT_FLOAT_EQ(risen_after({}, {}), 0.2f);
  EXPECT_FLOAT_EQ(risen_after(4000000, {}), 0.4f) << "a start alone counts";
  EXPECT_FLOAT_EQ(risen_after(1000000, 1020000), 0.1f) << "time runs back";
}

TEST_P(GraphTest, InTheCompressorAnEmptySampleComesBeforeTheEndButNotWithoutData) {
  EffectGraph graph(effect, kMono);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  EXPECT_EQ(graph.input->EndOfStream(), S_OK);
  EXPECT_EQ(graph.sink->pin.log, "end ");
  ASSERT_HRESULT_SUCCEEDED(graph.media->Stop());
  ASSERT_HRESULT_SUCCEEDED(graph.media->Run());
  graph.sink->pin.log.clear();
  graph.source->pin.Send({.bytes = Repeat(1.0, 10)});
  EXPECT_EQ(graph.input->EndOfStream(), S_OK);
  EXPECT_EQ(graph.input->EndOfStream(), S_OK) << "drained already";
  EXPECT_EQ(graph.sink->pin.log, GetParam() == kCompressor ? "sample empty end end " : "sample end end ");
}

TEST_P(GraphTest, TheEndIsDeliveredWhateverBecomesOfTheDrain) {
  EffectGraph graph(effect, kMono);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  graph.source->pin.Send({.bytes = Repeat(1.0, 10)});
  graph.sink->pin.answer = VFW_E_RUNTIME_ERROR;
  EXPECT_EQ(graph.source->pin.Send({.bytes = Repeat(1.0, 10)}), VFW_E_RUNTIME_ERROR);
  EXPECT_EQ(graph.input->EndOfStream(), GetParam() == kCompressor ? VFW_E_RUNTIME_ERROR : S_OK);
  EXPECT_EQ(graph.sink->pin.log, "sample end ");
}

// Connected, streaming, flushed, stopped and torn down in any order: nothing stays behind. A graph that goes first has
// to stop its filters itself.
TEST_P(GraphTest, LeavesNothingBehindInWhateverOrderItIsUsed) {
  std::mt19937 random(7);
  const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  for (int round = 0; round < 50; ++round) {
    SCOPED_TRACE(round);
    {
      EffectGraph graph(effect, kMono);
      graph.source->pin.StreamSilence();
      graph.Connect();
      for (int step = pick(6); step > 0; --step) {
        switch (pick(5)) {
          case 0: EXPECT_HRESULT_SUCCEEDED(graph.media->Run()); break;
          case 1: EXPECT_HRESULT_SUCCEEDED(graph.media->Pause()); break;
          case 2: EXPECT_HRESULT_SUCCEEDED(graph.media->Stop()); break;
          case 3: graph.input->BeginFlush(), graph.input->EndFlush(); break;
          case 4: graph.input->NewSegment(0, 100, 1.0); break;
        }
      }
      if (pick(2)) graph.media.Reset(), graph.builder.Reset();
      if (graph.media) {
        EXPECT_HRESULT_SUCCEEDED(graph.media->Stop());
      }
      if (graph.builder && pick(2)) graph.builder->RemoveFilter(graph.base.Get());
      if (pick(2)) graph.base.Reset(), graph.filter.Release();
      if (pick(2)) graph.input.Reset();
      if (pick(2)) graph.media.Reset(), graph.builder.Reset();
    }
    ASSERT_EQ(CanUnloadNow(), S_OK);
    ASSERT_EQ(directshow::ComObject::LiveCount(), 0) << "source and sink";
  }
}

}  // namespace
}  // namespace tervan::test
