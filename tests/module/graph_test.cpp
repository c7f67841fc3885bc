// The compressor in the platform's filter graph.
#include <iterator>
#include <random>

#include "module/graph_fakes.h"

namespace tervan::test {
namespace {

constexpr WORD kPcm = WAVE_FORMAT_PCM, kFloat = WAVE_FORMAT_IEEE_FLOAT;
constexpr Format kFormats[] = {{kPcm, 2, 44100, 8},  {kPcm, 1, 44100, 16},   {kPcm, 2, 44100, 16},
                               {kPcm, 2, 44100, 32}, {kFloat, 2, 44100, 32}, {kFloat, 1, 44100, 64}};
constexpr Format kMono = {kFloat, 1, 50000, 64};

using GraphTest = ModuleTest;

TEST_F(GraphTest, TakesFormatsByTagChannelsAndBits) {
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
    CompressorGraph graph(row.format);
    const MediaType type = AudioType(row.format);
    EXPECT_EQ(graph.input->QueryAccept(&type.Get()), row.accepted ? S_OK : S_FALSE);
    EXPECT_EQ(graph.input->ReceiveConnection(&graph.source->pin, &type.Get()),
              row.accepted ? S_OK : VFW_E_TYPE_NOT_ACCEPTED);
    WAVEFORMATEX stored{};
    EXPECT_EQ(graph.control->GetFormat(&stored), row.accepted ? S_OK : VFW_E_NOT_CONNECTED);
    const WAVEFORMATEX expected = row.accepted ? WaveFormat(row.format) : WAVEFORMATEX{};
    EXPECT_EQ(std::memcmp(&stored, &expected, sizeof stored), 0);
  }
}

TEST_F(GraphTest, TheMediaTypeAroundAFormatCounts) {
  CompressorGraph graph({kPcm, 2, 44100, 16});
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

TEST_F(GraphTest, TheOutputHasTheInputsTypeAndEachPinTellsTheWindows) {
  Window window;
  CompressorGraph graph({kPcm, 2, 44100, 16});
  ASSERT_EQ(graph.control->SetNotifyWindow(window, 5), S_OK);
  ASSERT_NO_FATAL_FAILURE(graph.Connect());
  EXPECT_THAT(window.Take(), testing::ElementsAre(testing::Pair(5, 0), testing::Pair(5, 1)));
  AM_MEDIA_TYPE type{};
  ASSERT_EQ(graph.output->ConnectionMediaType(&type), S_OK);
  EXPECT_TRUE(directshow::IsSameMediaType(type, AudioType({kPcm, 2, 44100, 16})));
  directshow::FreeMediaType(type);
}

// Full scale goes in; a limiter at -6 dB lets half of it out.
template <class Sample>
void ExpectLimited(const Format& format, Sample full_scale, double expected, double tolerance) {
  SCOPED_TRACE(testing::Message() << format.bits << " bits, " << format.channels << " channels");
  CompressorGraph graph(format);
  graph.ApplyPreset(kHardLimiter);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(graph.source->pin.Send({.bytes = Repeat(full_scale, 4000u * format.channels)}), S_OK);
  }
  const Bytes& last = graph.sink->pin.samples.back();
  ASSERT_EQ(last.size(), 4000 * format.FrameBytes());
  EXPECT_NEAR(SampleAt<Sample>(last, 0), expected, tolerance);
  EXPECT_NEAR(SampleAt<Sample>(last, 4000u * format.channels - 1), expected, tolerance);
}

TEST_F(GraphTest, LimitsEveryFormat) {
  ExpectLimited<BYTE>(kFormats[0], 255, 128 + 128 * kLimit, 2);
  ExpectLimited<INT16>(kFormats[1], 32767, 32768 * kLimit, 33);
  ExpectLimited<INT16>(kFormats[2], 32767, 32768 * kLimit, 33);
  ExpectLimited<INT32>(kFormats[3], 0x7FFFFFFF, 0x80000000 * kLimit, 2e6);
  ExpectLimited<float>(kFormats[4], 1, kLimit, 1e-3);
  ExpectLimited<double>(kFormats[5], 1, kLimit, 1e-3);
}

TEST_F(GraphTest, TakesItsOwnFormatAgainAfterDirectProcessing) {
  const Format& format = kFormats[2];
  CompressorGraph graph(format);
  graph.ApplyPreset(kHardLimiter);
  ASSERT_NO_FATAL_FAILURE(graph.Connect());
  const auto direct = Query<IDirectBufferProcess>(graph.control.Get());
  ASSERT_EQ(direct->BeginStream(1, 8000), S_OK);
  ASSERT_EQ(direct->EndStream(), S_OK);
  ASSERT_HRESULT_SUCCEEDED(graph.media->Run());
  ASSERT_EQ(graph.source->pin.Send({.bytes = Repeat(INT16{32767}, 8000)}), S_OK);
  EXPECT_NEAR(SampleAt<INT16>(graph.sink->pin.samples.back(), 7999), 32768 * kLimit, 33);
  WAVEFORMATEX stored{};
  EXPECT_EQ(graph.control->GetFormat(&stored), S_OK);
  EXPECT_EQ(stored.nSamplesPerSec, format.rate_hz);
}

// A flush, a segment or a discontinuity alone resets nothing; settings pushed at a discontinuity start anew.
TEST_F(GraphTest, FlushSegmentsAndDiscontinuitiesPassWithoutResettingTheGain) {
  CompressorGraph graph(kMono);
  SinkPin& sink = graph.sink->pin;
  graph.ApplyPreset(kHardLimiter);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  graph.source->pin.Send({.bytes = Repeat(1.0, 4000)});
  const SourceSample discontinuous{.bytes = Repeat(1.0, 100), .is_discontinuity = true};
  EXPECT_EQ(graph.input->BeginFlush(), S_OK);
  EXPECT_EQ(graph.source->pin.Send(discontinuous), S_FALSE);
  EXPECT_EQ(graph.input->EndFlush(), S_OK);
  EXPECT_EQ(graph.input->NewSegment(0, 100, 1.0), S_OK);
  EXPECT_EQ(graph.source->pin.Send(discontinuous), S_OK);
  EXPECT_EQ(sink.log, "sample flush( )flush segment sample ");
  EXPECT_NEAR(SampleAt<double>(sink.samples.back(), 0), kLimit, 1e-2);
  graph.control->BeginAmountEdit();
  graph.control->EndAmountEdit();  // marks the settings as changed
  graph.source->pin.Send(discontinuous);
  EXPECT_GT(SampleAt<double>(sink.samples.back(), 0), 0.9);
}

// Frame-exact times at 50 kHz: a frame lasts 200 units of 100 ns.
TEST_F(GraphTest, AutomationInAGraphEqualsDirectProcessing) {
  MP_ENVELOPE_SEGMENT segments[] = {{0, 500000, 0, -40, MP_CURVE_LINEAR, 0},
                                    {500000, 900000, -40, -10, MP_CURVE_SQUARE, 0},
                                    {1000000, 1400000, -10, -50, MP_CURVE_INVSQUARE, 0},
                                    {1400000, 1700040, -5, -5, MP_CURVE_JUMP, 0}};
  std::vector<float> frames(10000 * 2);
  std::mt19937 random(1);
  for (float& sample : frames) sample = std::ldexp(static_cast<float>(random() % 65536), -16) - 0.5f;
  const Bytes input = BytesOf(frames);

  const Compressor direct;
  ASSERT_EQ(direct.presets->ApplyPreset(6), S_OK);
  ASSERT_EQ(direct.values->AddEnvelope(2, std::size(segments), segments), S_OK);
  ASSERT_EQ(direct.direct->BeginStream(2, 50000), S_OK);
  for (DWORD done = 0; done < 10000; done += 625) {
    ASSERT_EQ(direct.direct->ProcessBuffer(frames.data() + 2 * done, 625, 0), S_OK);
  }

  CompressorGraph graph({kFloat, 2, 50000, 32});
  graph.ApplyPreset(6);
  ASSERT_EQ(Query<tervan::IMediaParams>(graph.control.Get())->AddEnvelope(2, std::size(segments), segments), S_OK);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  for (int n = 0; n < 16; ++n) {
    const auto begin = input.begin() + n * 5000;
    ASSERT_EQ(graph.source->pin.Send({.bytes = {begin, begin + 5000}, .start = n * 125000, .stop = (n + 1) * 125000}),
              S_OK);
  }
  EXPECT_TRUE(graph.sink->pin.All() == BytesOf(frames));
  EXPECT_FALSE(graph.sink->pin.All() == input);
}

TEST_F(GraphTest, SamplesWithoutTimesKeepTheBlockOfTheOneBefore) {
  CompressorGraph graph(kMono);
  MP_ENVELOPE_SEGMENT segment{0, 10000000, 0, -50, MP_CURVE_LINEAR, 0};
  ASSERT_EQ(Query<tervan::IMediaParams>(graph.control.Get())->AddEnvelope(2, 1, &segment), S_OK);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  const auto threshold_after = [&](std::optional<REFERENCE_TIME> start, std::optional<REFERENCE_TIME> stop) {
    EXPECT_EQ(graph.source->pin.Send({.bytes = Repeat(0.0, 100), .start = start, .stop = stop}), S_OK);
    return SettingsOf(*graph.control).threshold_db;
  };
  EXPECT_FLOAT_EQ(threshold_after(2000000, 2020000), -10);
  EXPECT_FLOAT_EQ(threshold_after({}, {}), -10);
  EXPECT_FLOAT_EQ(threshold_after(4000000, {}), -20) << "a start alone counts";
  EXPECT_FLOAT_EQ(threshold_after(1000000, 1020000), -5) << "time runs back";
}

TEST_F(GraphTest, OneEmptySampleBeforeTheEndButNoneWithoutData) {
  CompressorGraph graph(kMono);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  EXPECT_EQ(graph.input->EndOfStream(), S_OK);
  EXPECT_EQ(graph.sink->pin.log, "end ");
  ASSERT_HRESULT_SUCCEEDED(graph.media->Stop());
  ASSERT_HRESULT_SUCCEEDED(graph.media->Run());
  graph.sink->pin.log.clear();
  graph.source->pin.Send({.bytes = Repeat(1.0, 10)});
  EXPECT_EQ(graph.input->EndOfStream(), S_OK);
  EXPECT_EQ(graph.input->EndOfStream(), S_OK) << "drained already";
  EXPECT_EQ(graph.sink->pin.log, "sample empty end end ");
}

TEST_F(GraphTest, TheEndIsDeliveredWhateverBecomesOfTheDrain) {
  CompressorGraph graph(kMono);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  graph.source->pin.Send({.bytes = Repeat(1.0, 10)});
  graph.sink->pin.answer = VFW_E_RUNTIME_ERROR;
  EXPECT_EQ(graph.source->pin.Send({.bytes = Repeat(1.0, 10)}), VFW_E_RUNTIME_ERROR);
  EXPECT_EQ(graph.input->EndOfStream(), VFW_E_RUNTIME_ERROR);
  EXPECT_EQ(graph.sink->pin.log, "sample end ");
}

// Connected, streaming, flushed, stopped and torn down in any order: nothing stays behind.
TEST_F(GraphTest, LeavesNothingBehindInWhateverOrderItIsUsed) {
  std::mt19937 random(7);
  const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    {
      CompressorGraph graph(kFormats[round % std::size(kFormats)]);
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
      EXPECT_HRESULT_SUCCEEDED(graph.media->Stop());
      if (pick(2)) graph.builder->RemoveFilter(graph.compressor.Get());
      if (pick(2)) graph.compressor.Reset();
      if (pick(2)) graph.input.Reset();
      if (pick(2)) graph.media.Reset(), graph.builder.Reset();
    }
    ASSERT_EQ(CanUnloadNow(), S_OK);
  }
}

}  // namespace
}  // namespace tervan::test
