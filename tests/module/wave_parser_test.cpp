// Behind the platform's own file source and WAVE parser.
#include <filesystem>
#include <fstream>

#include "module/graph_fakes.h"

namespace tervan::test {
namespace {

constexpr CLSID kWaveParserClsid = {0xd51bd5a1, 0x7548, 0x11cf, {0xa5, 0x20, 0x00, 0x80, 0xc7, 0x7e, 0xf5, 0x8a}};
constexpr DWORD kDataBytes = 44100 * 4;

// A WAV file of one second of 16-bit stereo at full scale.
class WaveFile {
 public:
  WaveFile() {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    GetTempFileNameW(folder, L"wav", 0, path);
    const WAVEFORMATEX format = WaveFormat({WAVE_FORMAT_PCM, 2, 44100, 16});
    std::ofstream file(std::filesystem::path(path), std::ios::binary);
    const auto number = [&](DWORD value) { file.write(reinterpret_cast<const char*>(&value), 4); };
    file << "RIFF", number(36 + kDataBytes);
    file << "WAVEfmt ", number(16), file.write(reinterpret_cast<const char*>(&format), 16);
    file << "data", number(kDataBytes);
    for (DWORD frame = 0; frame < kDataBytes / 4; ++frame) number(0x7FFF7FFF);
    EXPECT_TRUE(file.good());
  }
  ~WaveFile() { DeleteFileW(path); }

  wchar_t path[MAX_PATH];
};

ComPtr<IPin> FirstPin(IBaseFilter& filter, PIN_DIRECTION wanted) {
  ComPtr<IEnumPins> pins;
  ComPtr<IPin> pin;
  EXPECT_EQ(filter.EnumPins(pins.Put()), S_OK);
  while (pins->Next(1, pin.Put(), nullptr) == S_OK) {
    PIN_DIRECTION direction;
    if (SUCCEEDED(pin->QueryDirection(&direction)) && direction == wanted) return pin;
  }
  return {};
}

using WaveParserTest = ModuleTest;

// file source -> WAVE parser -> compressor as a limiter to -6 dB -> sink
TEST_F(WaveParserTest, AFileIsCompressedFromAnyPositionToItsEnd) {
  const WaveFile file;
  const EffectRow& effect = Effects()[kCompressor];
  EffectGraph graph(effect, {WAVE_FORMAT_PCM, 2, 44100, 16});
  graph.filter.Set(effect.audible);
  graph.builder->RemoveFilter(graph.source);
  ComPtr<IBaseFilter> reader, parser;
  if (FAILED(CoCreateInstance(kWaveParserClsid, nullptr, CLSCTX_INPROC_SERVER, IID_IBaseFilter, parser.PutVoid()))) {
    GTEST_SKIP() << "the platform's WAVE parser cannot be created";
  }
  ASSERT_EQ(graph.builder->AddSourceFilter(file.path, L"reader", reader.Put()), S_OK);
  ASSERT_EQ(graph.builder->AddFilter(parser.Get(), L"parser"), S_OK);
  const auto connect = [&](const ComPtr<IPin>& from, IPin* to) {
    return graph.builder->ConnectDirect(from.Get(), to, nullptr);
  };
  if (FAILED(connect(FirstPin(*reader, PINDIR_OUTPUT), FirstPin(*parser, PINDIR_INPUT).Get()))) {
    GTEST_SKIP() << "the platform's WAVE parser does not read files here";
  }
  ASSERT_EQ(connect(FirstPin(*parser, PINDIR_OUTPUT), graph.input.Get()), S_OK);
  ASSERT_EQ(connect(graph.output, &graph.sink->pin), S_OK);

  const auto seeking = Query<IMediaSeeking>(graph.output.Get());  // passed on to the parser
  ASSERT_TRUE(seeking);
  LONGLONG duration = 0;
  EXPECT_EQ(seeking->GetDuration(&duration), S_OK);
  EXPECT_EQ(duration, 10000000);
  SinkPin& sink = graph.sink->pin;
  for (LONGLONG start : {0, 5000000, 0}) {
    SCOPED_TRACE(start);
    sink.samples.clear();
    sink.ended = false;  // the graph's own completion event stays set from one run to the next
    ASSERT_HRESULT_SUCCEEDED(
        seeking->SetPositions(&start, AM_SEEKING_AbsolutePositioning, nullptr, AM_SEEKING_NoPositioning));
    ASSERT_HRESULT_SUCCEEDED(graph.media->Run());
    for (int waited_ms = 0; !sink.ended && waited_ms < 20000; waited_ms += 5) Sleep(5);
    ASSERT_TRUE(sink.ended);
    ASSERT_HRESULT_SUCCEEDED(graph.media->Stop());
    const Bytes output = sink.All();
    const double expected_bytes = kDataBytes * static_cast<double>(10000000 - start) / 1e7;
    ASSERT_NEAR(static_cast<double>(output.size()), expected_bytes, start == 0 ? 0 : 17640);
    EXPECT_NEAR(SampleAt<INT16>(output, output.size() / 4), effect.audible_level * 32767, 50) << "half-way";
    EXPECT_NEAR(SampleAt<INT16>(output, output.size() / 2 - 1), effect.audible_level * 32767, 50);
    EXPECT_TRUE(sink.samples.back().empty()) << "the drain";
  }
}

}  // namespace
}  // namespace tervan::test
