// The compressor in the platform's filter graph.
#include <cmath>
#include <random>

#include "module/graph_fakes.h"

namespace tervan::test {
namespace {

constexpr WORD kPcm = WAVE_FORMAT_PCM, kFloat = WAVE_FORMAT_IEEE_FLOAT;
constexpr Format kFormats[] = {{kPcm, 2, 44100, 8},  {kPcm, 1, 44100, 16},   {kPcm, 2, 44100, 16},
                               {kPcm, 2, 44100, 32}, {kFloat, 2, 44100, 32}, {kFloat, 1, 44100, 64}};
constexpr LONG kHardLimiter = 8;  // threshold -6 dB, no make-up
constexpr double kLimit = 0.5011872336;

using GraphTest = ModuleTest;

template <class Sample>
void Append(Bytes& bytes, Sample sample) {
  const auto* const raw = reinterpret_cast<const BYTE*>(&sample);
  bytes.insert(bytes.end(), raw, raw + sizeof sample);
}

void Encode(Bytes& bytes, const Format& format, double value) {
  if (format.tag == kFloat && format.bits == 32) return Append(bytes, static_cast<float>(value));
  if (format.tag == kFloat) return Append(bytes, value);
  const double largest = std::ldexp(1.0, format.bits - 1) - 1;
  if (format.bits == 8) return Append(bytes, static_cast<BYTE>(128 + std::lround(value * largest)));
  if (format.bits == 16) return Append(bytes, static_cast<INT16>(std::lround(value * largest)));
  Append(bytes, static_cast<INT32>(std::llround(value * largest)));
}

double Decode(const Bytes& bytes, const Format& format, std::size_t index) {
  const auto as = [&]<class Sample>(Sample sample) {
    std::memcpy(&sample, bytes.data() + index * sizeof sample, sizeof sample);
    return static_cast<double>(sample);
  };
  if (format.tag == kFloat) return format.bits == 32 ? as(0.0f) : as(0.0);
  if (format.bits == 8) return (bytes[index] - 128) / 128.0;
  return format.bits == 16 ? as(INT16{}) / 32768.0 : as(INT32{}) / 2147483648.0;
}

// A square wave of 50 frames each way.
Bytes Square(const Format& format, int frames, double level = 1.0) {
  Bytes bytes;
  for (int i = 0; i < frames * format.channels; ++i)
    Encode(bytes, format, (i / format.channels / 50) % 2 == 0 ? level : -level);
  return bytes;
}

TEST_F(GraphTest, LimitsASquareWaveInEveryFormat) {
  for (const Format& format : kFormats) {
    SCOPED_TRACE(&format - kFormats);
    CompressorGraph graph(format);
    ASSERT_EQ(Query<IPluginPresets>(graph.compressor.Get())->ApplyPreset(kHardLimiter), S_OK);
    ASSERT_NO_FATAL_FAILURE(graph.Start());
    for (int i = 0; i < 3; ++i) ASSERT_EQ(graph.source->pin.Send({.bytes = Square(format, 4000)}), S_OK);
    const Bytes& last = graph.sink->pin.samples.back();
    ASSERT_EQ(last.size(), 4000 * format.FrameBytes());
    const double tolerance = format.bits == 8 ? 0.01 : 1e-3;
    for (std::size_t i = 0; i < 4000u * format.channels; ++i) {
      ASSERT_NEAR(std::fabs(Decode(last, format, i)), kLimit, tolerance) << i;
    }
  }
}

TEST_F(GraphTest, DefaultSettingsChangeNoFloat) {
  for (const WORD channels : {WORD{1}, WORD{2}}) {
    const Format format{kFloat, channels, 48000, 32};
    CompressorGraph graph(format);
    ASSERT_NO_FATAL_FAILURE(graph.Start());
    const Bytes sent = Square(format, 1000, 0.3);
    ASSERT_EQ(graph.source->pin.Send({.bytes = sent}), S_OK);
    EXPECT_EQ(graph.sink->pin.All(), sent);
  }
}

TEST_F(GraphTest, CutsSamplesToWholeFrames) {
  const Format format{kPcm, 2, 44100, 16};
  CompressorGraph graph(format);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  for (const std::size_t bytes : {4001, 4003, 4004, 3, 1, 0}) {
    SCOPED_TRACE(bytes);
    graph.sink->pin.samples.clear();
    ASSERT_EQ(graph.source->pin.Send({.bytes = Bytes(bytes, 1)}), S_OK);
    ASSERT_EQ(graph.sink->pin.samples.size(), 1u);
    EXPECT_EQ(graph.sink->pin.samples[0].size(), bytes / 4 * 4);
  }
}

TEST_F(GraphTest, ADiscontinuityWithoutAPushKeepsTheGain) {
  const Format format{kFloat, 1, 44100, 64};
  CompressorGraph graph(format);
  ASSERT_EQ(Query<IPluginPresets>(graph.compressor.Get())->ApplyPreset(kHardLimiter), S_OK);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  graph.source->pin.Send({.bytes = Square(format, 4000)});
  graph.source->pin.Send({.bytes = Square(format, 100), .is_discontinuity = true});
  EXPECT_NEAR(Decode(graph.sink->pin.samples[1], format, 0), kLimit, 1e-2)
      << "nothing was pushed, so nothing was reset";
  graph.control->BeginAmountEdit();
  graph.control->EndAmountEdit();  // marks the settings as changed
  graph.source->pin.Send({.bytes = Square(format, 100), .is_discontinuity = true});
  EXPECT_GT(Decode(graph.sink->pin.samples[2], format, 0), 0.9) << "a push at a discontinuity starts anew";
}

// Frame-exact times at 50 kHz: a frame lasts 200 units of 100 ns.
TEST_F(GraphTest, AutomationInAGraphEqualsDirectProcessing) {
  const Format format{kFloat, 2, 50000, 32};
  MP_ENVELOPE_SEGMENT segments[] = {{0, 500000, 0, -40, MP_CURVE_LINEAR, 0},
                                    {500000, 900000, -40, -10, MP_CURVE_SQUARE, 0},
                                    {1000000, 1400000, -10, -50, MP_CURVE_INVSQUARE, 0},
                                    {1400000, 1700040, -5, -5, MP_CURVE_JUMP, 0}};
  const auto prepare = [&](IUnknown* compressor) {
    ASSERT_EQ(Query<IPluginPresets>(compressor)->ApplyPreset(6), S_OK);
    ASSERT_EQ(Query<tervan::IMediaParams>(compressor)->AddEnvelope(2, std::size(segments), segments), S_OK);
  };
  Bytes input;
  std::mt19937 random(1);
  for (int i = 0; i < 10000 * 2; ++i) Encode(input, format, std::ldexp(static_cast<double>(random()), -32) - 0.5);

  std::vector<float> expected(input.size() / sizeof(float));
  std::memcpy(expected.data(), input.data(), input.size());
  const auto direct = NewCompressor<IDirectBufferProcess>();
  ASSERT_NO_FATAL_FAILURE(prepare(direct.Get()));
  ASSERT_EQ(direct->BeginStream(2, 50000), S_OK);
  for (DWORD done = 0; done < 10000; done += 625) {
    ASSERT_EQ(direct->ProcessBuffer(expected.data() + 2 * done, 625, 0), S_OK);
  }

  CompressorGraph graph(format);
  ASSERT_NO_FATAL_FAILURE(prepare(graph.compressor.Get()));
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  for (int n = 0; n < 16; ++n) {
    const auto begin = input.begin() + n * 5000;
    ASSERT_EQ(graph.source->pin.Send({.bytes = {begin, begin + 5000}, .start = n * 125000, .stop = (n + 1) * 125000}),
              S_OK);
  }
  const Bytes output = graph.sink->pin.All();
  ASSERT_EQ(output.size(), input.size());
  for (std::size_t i = 0; i < expected.size(); ++i)
    ASSERT_EQ(Decode(output, format, i), static_cast<double>(expected[i])) << i;
  EXPECT_NE(output, input);
}

TEST_F(GraphTest, SamplesWithoutTimesKeepTheBlockOfTheOneBefore) {
  const Format format{kFloat, 1, 50000, 32};
  CompressorGraph graph(format);
  const auto values = Query<tervan::IMediaParams>(graph.compressor.Get());
  MP_ENVELOPE_SEGMENT segment{0, 10000000, 0, -50, MP_CURVE_LINEAR, 0};
  ASSERT_EQ(values->AddEnvelope(2, 1, &segment), S_OK);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  const Bytes sound(100 * 4);
  const auto threshold_after = [&](const SourceSample& sample) {
    EXPECT_EQ(graph.source->pin.Send(sample), S_OK);
    MP_DATA value = 77;
    values->GetParam(2, &value);
    return value;
  };
  EXPECT_FLOAT_EQ(threshold_after({.bytes = sound, .start = 2000000, .stop = 2020000}), -10);
  EXPECT_FLOAT_EQ(threshold_after({.bytes = sound}), -10);
  EXPECT_FLOAT_EQ(threshold_after({.bytes = sound, .start = 4000000}), -20) << "a start alone counts";
  EXPECT_FLOAT_EQ(threshold_after({.bytes = sound, .start = 1000000, .stop = 1020000}), -5) << "time runs back";
}

TEST_F(GraphTest, OneEmptySampleBeforeTheEndButNoneWithoutData) {
  const Format format{kPcm, 2, 44100, 16};
  CompressorGraph graph(format);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  EXPECT_EQ(graph.input->EndOfStream(), S_OK);
  EXPECT_EQ(graph.sink->pin.log, "end ");
  ASSERT_HRESULT_SUCCEEDED(graph.media->Stop());
  ASSERT_HRESULT_SUCCEEDED(graph.media->Run());
  graph.sink->pin.log.clear();
  graph.source->pin.Send({.bytes = Square(format, 10)});
  EXPECT_EQ(graph.input->EndOfStream(), S_OK);
  EXPECT_EQ(graph.input->EndOfStream(), S_OK) << "drained already";
  EXPECT_EQ(graph.sink->pin.log, "sample empty end end ");
}

TEST_F(GraphTest, FlushAndSegmentsPassWithoutResettingTheGain) {
  const Format format{kFloat, 1, 44100, 64};
  CompressorGraph graph(format);
  ASSERT_EQ(Query<IPluginPresets>(graph.compressor.Get())->ApplyPreset(kHardLimiter), S_OK);
  ASSERT_NO_FATAL_FAILURE(graph.Start());
  graph.source->pin.Send({.bytes = Square(format, 4000)});
  EXPECT_EQ(graph.input->BeginFlush(), S_OK);
  EXPECT_EQ(graph.source->pin.Send({.bytes = Square(format, 100)}), S_FALSE);
  EXPECT_EQ(graph.input->EndFlush(), S_OK);
  EXPECT_EQ(graph.input->NewSegment(0, 100, 1.0), S_OK);
  EXPECT_EQ(graph.source->pin.Send({.bytes = Square(format, 100)}), S_OK);
  EXPECT_EQ(graph.sink->pin.log, "sample flush( )flush segment sample ");
  EXPECT_NEAR(Decode(graph.sink->pin.samples.back(), format, 0), kLimit, 1e-2);
}

TEST_F(GraphTest, ReturnsWhatDownstreamAnswers) {
  const Format format{kPcm, 2, 44100, 16};
  for (const HRESULT answer : {S_FALSE, E_OUTOFMEMORY, VFW_E_RUNTIME_ERROR}) {
    CompressorGraph graph(format);
    ASSERT_NO_FATAL_FAILURE(graph.Start());
    graph.source->pin.Send({.bytes = Square(format, 10)});
    graph.sink->pin.answer = answer;
    EXPECT_EQ(graph.source->pin.Send({.bytes = Square(format, 10)}), answer);
    EXPECT_EQ(graph.input->EndOfStream(), FAILED(answer) ? answer : S_OK);
    EXPECT_EQ(graph.sink->pin.log, "sample end ") << "the end is delivered whatever became of the drain";
  }
}

// Connected, streaming, flushed, stopped and torn down in any order: nothing stays behind.
TEST_F(GraphTest, LeavesNothingBehindInWhateverOrderItIsUsed) {
  std::mt19937 random(7);
  const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    const Format& format = kFormats[round % std::size(kFormats)];
    {
      CompressorGraph graph(format);
      SourcePin& pin = graph.source->pin;
      pin.stream = [&] {
        const Bytes sound = Square(format, 441);
        for (int n = 0;
             n < 1 << 20 && pin.Send({.bytes = sound, .start = n * 100000, .stop = n * 100000 + 100000}) == S_OK;)
          ++n;
      };
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
