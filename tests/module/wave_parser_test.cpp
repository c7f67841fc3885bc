// Behind the platform's own file source and WAVE parser.
#include <optional>
#include <string>

#include "module/graph_fakes.h"

namespace tervan::test {
namespace {

constexpr CLSID kWaveParserClsid = {0xd51bd5a1, 0x7548, 0x11cf, {0xa5, 0x20, 0x00, 0x80, 0xc7, 0x7e, 0xf5, 0x8a}};
constexpr int kFrames = 44100;

// A WAV file of one second of 16-bit stereo, a full-scale square wave.
class WaveFile {
 public:
  WaveFile() {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    GetTempFileNameW(folder, L"wav", 0, path);
    samples.resize(kFrames * 4);
    for (int i = 0; i < kFrames * 2; ++i) {
      const INT16 sample = (i / 2 / 50) % 2 == 0 ? 32767 : -32767;
      std::memcpy(&samples[static_cast<std::size_t>(i) * 2], &sample, 2);
    }
    struct {
      char riff[4] = {'R', 'I', 'F', 'F'};
      DWORD riff_bytes = 36 + kFrames * 4;
      char wave[8] = {'W', 'A', 'V', 'E', 'f', 'm', 't', ' '};
      DWORD format_bytes = 16;
      WORD tag = WAVE_FORMAT_PCM, channels = 2;
      DWORD rate = 44100, byte_rate = 176400;
      WORD frame_bytes = 4, bits = 16;
      char data[4] = {'d', 'a', 't', 'a'};
      DWORD data_bytes = kFrames * 4;
    } const header;
    static_assert(sizeof header == 44);
    const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file, &header, sizeof header, &written, nullptr));
    EXPECT_TRUE(WriteFile(file, samples.data(), static_cast<DWORD>(samples.size()), &written, nullptr));
    CloseHandle(file);
  }
  ~WaveFile() { DeleteFileW(path); }
  WaveFile(const WaveFile&) = delete;
  WaveFile& operator=(const WaveFile&) = delete;

  wchar_t path[MAX_PATH];
  Bytes samples;
};

ComPtr<IPin> FirstPin(IBaseFilter& filter, PIN_DIRECTION wanted) {
  ComPtr<IEnumPins> pins;
  ComPtr<IPin> pin;
  if (FAILED(filter.EnumPins(pins.Put()))) return {};
  while (pins->Next(1, pin.Put(), nullptr) == S_OK) {
    PIN_DIRECTION direction;
    if (SUCCEEDED(pin->QueryDirection(&direction)) && direction == wanted) return pin;
  }
  return {};
}

// file source -> WAVE parser -> compressor as a limiter to -6 dB -> sink
class WaveParserTest : public ModuleTest {
 protected:
  void TearDown() override {
    seeking.Reset();
    graph.reset();
    ModuleTest::TearDown();
  }

  // The reason why it cannot be built here, empty when it was.
  std::string Build() {
    graph.emplace(Format{WAVE_FORMAT_PCM, 2, 44100, 16});
    graph->builder->RemoveFilter(graph->source);
    ComPtr<IBaseFilter> reader, parser;
    EXPECT_EQ(CoCreateInstance(CLSID_AsyncReader, nullptr, CLSCTX_INPROC_SERVER, IID_IBaseFilter, reader.PutVoid()),
              S_OK);
    if (FAILED(CoCreateInstance(kWaveParserClsid, nullptr, CLSCTX_INPROC_SERVER, IID_IBaseFilter, parser.PutVoid()))) {
      return "the platform's WAVE parser cannot be created";
    }
    EXPECT_EQ(graph->builder->AddFilter(reader.Get(), L"reader"), S_OK);
    EXPECT_EQ(graph->builder->AddFilter(parser.Get(), L"parser"), S_OK);
    EXPECT_EQ(Query<IFileSourceFilter>(reader.Get())->Load(file.path, nullptr), S_OK);
    if (FAILED(graph->builder->ConnectDirect(FirstPin(*reader, PINDIR_OUTPUT).Get(),
                                             FirstPin(*parser, PINDIR_INPUT).Get(), nullptr))) {
      return "the platform's WAVE parser does not read files here";
    }
    EXPECT_EQ(graph->builder->ConnectDirect(FirstPin(*parser, PINDIR_OUTPUT).Get(), graph->input.Get(), nullptr), S_OK);
    EXPECT_EQ(graph->builder->ConnectDirect(graph->output.Get(), &graph->sink->pin, nullptr), S_OK);
    EXPECT_EQ(Query<IPluginPresets>(graph->compressor.Get())->ApplyPreset(8), S_OK);
    seeking = Query<IMediaSeeking>(graph->output.Get());
    EXPECT_TRUE(seeking);
    return "";
  }
  // Plays until the sink is told that the stream ends. (The graph's own completion event stays set from one run to the
  // next.)
  void PlayToTheEnd() {
    SinkPin& sink = graph->sink->pin;
    sink.ended = false;
    ASSERT_HRESULT_SUCCEEDED(graph->media->Run());
    for (int waited_ms = 0; !sink.ended && waited_ms < 20000; waited_ms += 5) Sleep(5);
    EXPECT_TRUE(sink.ended);
    ASSERT_HRESULT_SUCCEEDED(graph->media->Stop());
  }
  void SeekTo(LONGLONG position) {
    EXPECT_HRESULT_SUCCEEDED(
        seeking->SetPositions(&position, AM_SEEKING_AbsolutePositioning, nullptr, AM_SEEKING_NoPositioning));
  }

  const WaveFile file;
  std::optional<CompressorGraph> graph;
  ComPtr<IMediaSeeking> seeking;  // of the compressor's output pin, passed on to the parser
};

TEST_F(WaveParserTest, AFileIsCompressedFromAnyPositionToItsEnd) {
  if (const std::string reason = Build(); !reason.empty()) GTEST_SKIP() << reason;
  LONGLONG duration = 0;
  EXPECT_HRESULT_SUCCEEDED(seeking->GetDuration(&duration));
  EXPECT_NEAR(static_cast<double>(duration), 1e7, 1e5);
  for (const LONGLONG start : {0, 5000000, 0}) {
    SCOPED_TRACE(start);
    graph->sink->pin.samples.clear();
    SeekTo(start);
    ASSERT_NO_FATAL_FAILURE(PlayToTheEnd());
    const Bytes output = graph->sink->pin.All();
    const double expected = static_cast<double>(file.samples.size()) * static_cast<double>(10000000 - start) / 1e7;
    EXPECT_NEAR(static_cast<double>(output.size()), expected, start == 0 ? 0 : 17640);
    for (std::size_t i = output.size() / 4 * 2; i + 1 < output.size(); i += 2) {
      INT16 sample;
      std::memcpy(&sample, &output[i], 2);
      ASSERT_NEAR(std::abs(sample), 0.50118723 * 32767, 50) << i;
    }
    ASSERT_FALSE(output.empty());
    EXPECT_TRUE(graph->sink->pin.samples.back().empty()) << "the drain";
  }
}

TEST_F(WaveParserTest, SeekingWhileRunningAndPausedEndsWell) {
  if (const std::string reason = Build(); !reason.empty()) GTEST_SKIP() << reason;
  for (int round = 0; round < 50; ++round) {
    ASSERT_HRESULT_SUCCEEDED(round % 5 == 4 ? graph->media->Stop()
                             : round % 2    ? graph->media->Pause()
                                            : graph->media->Run());
    SeekTo(round * 199999);
  }
  graph->media->Stop();
  SeekTo(5000000);
  PlayToTheEnd();
}

}  // namespace
}  // namespace tervan::test
