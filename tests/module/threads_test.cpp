// Host, page and streaming threads at work on one filter together.
#include <atomic>
#include <thread>
#include <vector>

#include "effects/compressor/compressor_meters.h"
#include "module/graph_fakes.h"

namespace tervan::test {
namespace {

using ThreadsTest = EffectTest;
TERVAN_FOR_ALL_EFFECTS(ThreadsTest);

constexpr int kRounds = 400;

class SilentRecorder final : public CountedFake<IParamRecorder> {
 public:
  SilentRecorder() : CountedFake(IID_IUnknown) {}
  STDMETHODIMP BeginEdit(DWORD*, DWORD) override { return S_OK; }
  STDMETHODIMP EditValue(DWORD*, DWORD, float*) override { return S_OK; }
  STDMETHODIMP EndEdit(DWORD*, DWORD) override { return S_OK; }
};

void Automate(const Filter& filter) {
  if (!filter.effect.has_automation) return;
  const ParamRow& param = filter.effect.params[2];
  const DWORD count = static_cast<DWORD>(filter.effect.params.size());
  for (int i = 0; i < kRounds; ++i) {
    MP_ENVELOPE_SEGMENT segments[] = {{i * 1000, i * 1000 + 700, param.min, param.max, MP_CURVE_LINEAR, 0},
                                      {i * 1000 + 700, i * 1000 + 3000, param.max, param.min, MP_CURVE_SQUARE, 0}};
    EXPECT_EQ(filter.values->AddEnvelope(2, 2, segments), S_OK);
    EXPECT_EQ(filter.values->FlushEnvelope(i % 7 == 0 ? 0xFFFFFFFF : count - 1, 0, i * 900), S_OK);
    const HRESULT set = filter.values->SetParam(1, filter.effect.params[1].min + static_cast<float>(i % 10));
    EXPECT_TRUE(set == S_OK || set == S_FALSE);
    EXPECT_EQ(filter.values->SetParam(1, filter.effect.params[1].max + 1), E_INVALIDARG);
  }
}

void SaveAndLoad(const Filter& filter) {
  SilentRecorder recorder;
  const auto site = Query<IParamRecorderSite>(filter.control.Get());
  for (int i = 0; i < kRounds; ++i) {
    if (filter.effect.has_automation) site->SetRecorder(i % 3 ? &recorder : nullptr);
    ComPtr<IStream> stream;
    ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()), S_OK);
    EXPECT_EQ(filter.presets->ApplyPreset(i % static_cast<int>(filter.effect.presets.size())), S_OK);
    EXPECT_EQ(filter.persist->Save(stream.Get(), i % 2), S_OK);
    ASSERT_EQ(stream->Seek({}, STREAM_SEEK_SET, nullptr), S_OK);
    EXPECT_EQ(filter.persist->Load(stream.Get()), S_OK);
  }
  if (filter.effect.has_automation) site->SetRecorder(nullptr);
  Sleep(50);  // another thread may still be in a call to it
  for (int waited_ms = 0; waited_ms < 10000 && InterlockedCompareExchange(&recorder.references, 0, 0) != 0; ++waited_ms)
    Sleep(1);
}

void Edit(const Filter& filter) {
  const ParamRow& param = filter.effect.params[2];
  const bool has_meters = &filter.effect == &Effects()[kCompressor];
  for (int i = 0; i < kRounds; ++i) {
    Window window;
    EXPECT_THAT(filter.Register(window, 32700), testing::AnyOf(S_OK, E_OUTOFMEMORY))
        << "dead windows stay until the next post";
    if (filter.effect.has_automation) filter.Slot(param.slot + 2);
    EXPECT_EQ(filter.SetAt(param, param.min * param.scale + i % 60), S_OK);
    if (filter.effect.has_automation) filter.Slot(param.slot + 3);
    CompressorMeters meters{};
    if (has_meters) filter.Slot(54, &meters);
    EXPECT_TRUE(meters.input_left >= 0 && meters.input_left < 100) << meters.input_left;
    for (const auto& command : window.Take()) EXPECT_EQ(command.first, 32700);
    if (i % 2) filter.Register(window, 0);  // every second one is still registered when it is destroyed
  }
}

TEST_P(ThreadsTest, AGraphStartsAndStopsAmongEditsAndAutomation) {
  EffectGraph graph(effect, {WAVE_FORMAT_PCM, 2, 44100, 16});
  graph.source->pin.StreamSilence();
  ASSERT_NO_FATAL_FAILURE(graph.Connect());
  std::atomic<int> running = 3;
  std::vector<std::thread> threads;
  for (void (*job)(const Filter&) : {Automate, SaveAndLoad, Edit}) {
    threads.emplace_back([&running, job, &graph] {
      job(graph.filter);
      --running;
    });
  }
  for (int n = 0; running > 0; ++n) {
    EXPECT_HRESULT_SUCCEEDED(n % 3 == 0 ? graph.media->Stop() : n % 3 == 1 ? graph.media->Pause() : graph.media->Run());
    Sleep(1);
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_HRESULT_SUCCEEDED(graph.media->Stop());
}

}  // namespace
}  // namespace tervan::test
