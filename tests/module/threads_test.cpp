// Host, page and streaming threads at work on one filter together.
#include <atomic>
#include <thread>
#include <vector>

#include "module/graph_fakes.h"

namespace tervan::test {
namespace {

using ThreadsTest = ModuleTest;

constexpr int kRounds = 400;

class SilentRecorder final : public CountedFake<IParamRecorder> {
 public:
  SilentRecorder() : CountedFake(IID_IUnknown) {}
  STDMETHODIMP BeginEdit(DWORD*, DWORD) override { return S_OK; }
  STDMETHODIMP EditValue(DWORD*, DWORD, float*) override { return S_OK; }
  STDMETHODIMP EndEdit(DWORD*, DWORD) override { return S_OK; }
};

void Automate(IUnknown* filter) {
  const auto values = Query<tervan::IMediaParams>(filter);
  for (int i = 0; i < kRounds; ++i) {
    MP_ENVELOPE_SEGMENT segments[] = {{i * 1000, i * 1000 + 700, 0, -50, MP_CURVE_LINEAR, 0},
                                      {i * 1000 + 700, i * 1000 + 3000, -50, -10, MP_CURVE_SQUARE, 0}};
    EXPECT_EQ(values->AddEnvelope(2, 2, segments), S_OK);
    EXPECT_EQ(values->FlushEnvelope(i % 7 == 0 ? 0xFFFFFFFF : 4, 0, i * 900), S_OK);
    const HRESULT set = values->SetParam(3, static_cast<float>(1 + i % 40));
    EXPECT_TRUE(set == S_OK || set == S_FALSE);
    EXPECT_EQ(values->SetParam(3, 51), E_INVALIDARG);
  }
}

void SaveAndLoad(IUnknown* filter) {
  SilentRecorder recorder;
  const auto persist = Query<IPersistStream>(filter);
  const auto presets = Query<IPluginPresets>(filter);
  const auto site = Query<IParamRecorderSite>(filter);
  for (int i = 0; i < kRounds; ++i) {
    EXPECT_EQ(site->SetRecorder(i % 3 ? &recorder : nullptr), S_OK);
    ComPtr<IStream> stream;
    ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()), S_OK);
    EXPECT_EQ(presets->ApplyPreset(i % 9), S_OK);
    EXPECT_EQ(persist->Save(stream.Get(), i % 2), S_OK);
    ASSERT_EQ(stream->Seek({}, STREAM_SEEK_SET, nullptr), S_OK);
    EXPECT_EQ(persist->Load(stream.Get()), S_OK);
  }
  site->SetRecorder(nullptr);
  Sleep(50);  // another thread may still be in a call to it
  for (int waited_ms = 0; waited_ms < 10000 && InterlockedCompareExchange(&recorder.references, 0, 0) != 0; ++waited_ms)
    Sleep(1);
}

void Edit(IUnknown* filter) {
  const auto control = Query<ICompressorSettings>(filter);
  for (int i = 0; i < kRounds; ++i) {
    Window window;
    EXPECT_THAT(control->SetNotifyWindow(window, 32700), testing::AnyOf(S_OK, E_OUTOFMEMORY))
        << "dead windows stay until the next post";
    control->BeginThresholdEdit();
    EXPECT_EQ(control->SetThreshold(static_cast<float>(-(i % 60))), S_OK);
    EXPECT_EQ(control->EndThresholdEdit(), S_OK);
    CompressorMeters meters{};
    EXPECT_EQ(control->GetMeters(&meters), S_OK);
    EXPECT_TRUE(meters.input_left >= 0 && meters.input_left < 100) << meters.input_left;
    for (const auto& command : window.Take()) EXPECT_EQ(command.first, 32700);
    if (i % 2) control->SetNotifyWindow(window, 0);  // every second one is still registered when it is destroyed
  }
}

TEST_F(ThreadsTest, AGraphStartsAndStopsAmongEditsAndAutomation) {
  CompressorGraph graph({WAVE_FORMAT_PCM, 2, 44100, 16});
  graph.source->pin.StreamSilence();
  ASSERT_NO_FATAL_FAILURE(graph.Connect());
  std::atomic<int> running = 3;
  std::vector<std::thread> threads;
  for (void (*job)(IUnknown*) : {Automate, SaveAndLoad, Edit}) {
    threads.emplace_back([&running, job, &graph] {
      job(graph.compressor.Get());
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
