// Host, page and streaming threads at work on one filter together.
#include <atomic>
#include <thread>
#include <vector>

#include "module/graph_fakes.h"

namespace tervan::test {
namespace {

using ThreadsTest = ModuleTest;

constexpr int kRounds = 400;

class SilentRecorder final : public IParamRecorder {
 public:
  STDMETHODIMP QueryInterface(REFIID, void** out) override { return *out = nullptr, E_NOINTERFACE; }
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references)); }
  STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(InterlockedDecrement(&references)); }
  STDMETHODIMP BeginEdit(DWORD*, DWORD) override { return S_OK; }
  STDMETHODIMP EditValue(DWORD*, DWORD, float*) override { return S_OK; }
  STDMETHODIMP EndEdit(DWORD*, DWORD) override { return S_OK; }
  LONG references = 0;
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
  while (InterlockedCompareExchange(&recorder.references, 0, 0) != 0) Sleep(1);
}

void Edit(IUnknown* filter) {
  const auto control = Query<ICompressorSettings>(filter);
  for (int i = 0; i < kRounds; ++i) {
    const HWND window = CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    const HRESULT registered = control->SetNotifyWindow(window, 32700);
    EXPECT_THAT(registered, testing::AnyOf(S_OK, E_OUTOFMEMORY)) << "dead windows stay until the next post";
    control->BeginThresholdEdit();
    EXPECT_EQ(control->SetThreshold(static_cast<float>(-(i % 60))), S_OK);
    EXPECT_EQ(control->EndThresholdEdit(), S_OK);
    EXPECT_EQ(control->SetSmoothSaturation(i & 1), S_OK);
    CompressorMeters meters{};
    EXPECT_EQ(control->GetMeters(&meters), S_OK);
    EXPECT_TRUE(meters.input_left >= 0 && meters.input_left < 100) << meters.input_left;
    MSG message;
    while (PeekMessageW(&message, window, 0, 0, PM_REMOVE)) EXPECT_EQ(LOWORD(message.wParam), 32700);
    if (i % 2) control->SetNotifyWindow(window, 0);
    DestroyWindow(window);  // every second one is still registered
  }
}

// Runs the three threads beside the work and then ends it.
template <class Work>
void Stress(IUnknown* filter, const Work& work) {
  std::atomic<int> running = 3;
  std::vector<std::thread> threads;
  for (void (*job)(IUnknown*) : {Automate, SaveAndLoad, Edit}) {
    threads.emplace_back([&running, job, filter] {
      const HRESULT com = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
      job(filter);
      if (SUCCEEDED(com)) CoUninitialize();
      --running;
    });
  }
  for (int n = 0; running > 0; ++n) work(n);
  for (std::thread& thread : threads) thread.join();
}

TEST_F(ThreadsTest, DirectProcessingAmongEditsAndAutomation) {
  const auto direct = NewCompressor<IDirectBufferProcess>();
  ASSERT_EQ(direct->BeginStream(2, 44100), S_OK);
  std::vector<float> buffer(2 * 256);
  Stress(direct.Get(), [&](int n) {
    std::fill(buffer.begin(), buffer.end(), 0.5f);
    ASSERT_EQ(direct->ProcessBuffer(buffer.data(), 256, 0), S_OK);
    for (const float sample : buffer) ASSERT_TRUE(sample >= 0 && sample < 1000) << sample;
    direct->Refresh(n % 16 == 0, 0, 0);
    if (n % 64 == 0) {
      direct->EndStream();
      ASSERT_EQ(direct->BeginStream(2, 44100), S_OK);
    }
  });
  EXPECT_EQ(direct->EndStream(), S_OK);
}

TEST_F(ThreadsTest, AGraphAmongEditsAndAutomation) {
  const Format format{WAVE_FORMAT_PCM, 2, 44100, 16};
  CompressorGraph graph(format);
  SourcePin& pin = graph.source->pin;
  pin.stream = [&] {
    for (int n = 0; pin.Send({.bytes = Bytes(4 * 441, 60), .start = n * 1000, .stop = n * 1000 + 1000}) == S_OK;) ++n;
  };
  ASSERT_NO_FATAL_FAILURE(graph.Connect());
  Stress(graph.compressor.Get(), [&](int n) {
    ASSERT_HRESULT_SUCCEEDED(n % 3 == 0 ? graph.media->Stop() : n % 3 == 1 ? graph.media->Pause() : graph.media->Run());
    graph.sink->pin.answer = S_OK;
    Sleep(1);
  });
  EXPECT_HRESULT_SUCCEEDED(graph.media->Stop());
}

}  // namespace
}  // namespace tervan::test
