// A source, an in-place filter and a sink for the tests of the base classes, made of those same classes.
#pragma once
#include <windows.h>

#include <dshow.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "directshow/allocators.h"
#include "directshow/in_place_filter.h"
#include "gtest/gtest.h"

namespace tervan::directshow::test {

class ComEnvironment : public testing::Environment {
 public:
  void SetUp() override { ASSERT_HRESULT_SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)); }
  void TearDown() override { CoUninitialize(); }
};
inline testing::Environment* const kComEnvironment = testing::AddGlobalTestEnvironment(new ComEnvironment);

// Every object that a test made must be gone when it ends.
class DirectShowTest : public testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(ComObject::LiveCount(), live_before_) << "objects leaked"; }

 private:
  const long live_before_ = ComObject::LiveCount();
};

class Event {
 public:
  void Set() { SetEvent(handle_); }
  void Reset() { ResetEvent(handle_); }
  bool Wait() { return WaitForSingleObject(handle_, 20000) == WAIT_OBJECT_0; }
  Event() = default;
  ~Event() { CloseHandle(handle_); }
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

 private:
  HANDLE handle_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
};

// Runs the call on a thread of its own. A deadlock ends the whole test program, since nothing could be cleaned up.
class Background {
 public:
  explicit Background(std::function<void()> call) : thread_([this, call] { call(), done_.Set(); }) {}
  ~Background() {
    if (!done_.Wait()) {
      ADD_FAILURE() << "deadlock";
      ExitProcess(3);
    }
    thread_.join();
  }

 private:
  Event done_;
  std::thread thread_;
};

// Owns an object through its inner unknown, as the creator of a COM object does.
template <class T>
class Object {
 public:
  template <class... Arguments>
  explicit Object(Arguments&&... arguments)
      : object_(new T(std::forward<Arguments>(arguments)...)), inner_(object_->Inner()) {}
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  T* Get() const { return object_; }
  IUnknown* Inner() const { return inner_.Get(); }

 private:
  T* object_;
  ComPtr<IUnknown> inner_;
};

inline WAVEFORMATEX Pcm16(DWORD rate_hz) {
  return {.wFormatTag = WAVE_FORMAT_PCM,
          .nChannels = 2,
          .nSamplesPerSec = rate_hz,
          .nAvgBytesPerSec = rate_hz * 4,
          .nBlockAlign = 4,
          .wBitsPerSample = 16,
          .cbSize = 0};
}

inline MediaType AudioType(DWORD rate_hz) {
  MediaType type;
  type.AssignAudio(Pcm16(rate_hz), sizeof(WAVEFORMATEX), MEDIASUBTYPE_PCM);
  return type;
}

inline DWORD RateOf(const AM_MEDIA_TYPE& type) {
  if (type.formattype != FORMAT_WaveFormatEx || type.cbFormat < sizeof(PCMWAVEFORMAT)) return 0;
  return reinterpret_cast<const WAVEFORMATEX*>(type.pbFormat)->nSamplesPerSec;
}

inline BYTE SourceByte(int sample, long i) { return static_cast<BYTE>(sample * 7 + i); }

// What test pins answer that take these rates only, and prefer them in this order.
inline HRESULT AcceptRate(const std::vector<DWORD>& rates_hz, const AM_MEDIA_TYPE& type) {
  return std::find(rates_hz.begin(), rates_hz.end(), RateOf(type)) == rates_hz.end() ? E_FAIL : S_OK;
}
inline HRESULT OfferRate(const std::vector<DWORD>& rates_hz, int index, MediaType* type) {
  if (index >= static_cast<int>(rates_hz.size())) return VFW_S_NO_MORE_ITEMS;
  *type = AudioType(rates_hz[index]);
  return S_OK;
}

struct SourceOptions {
  bool own_allocator = false;
  bool read_only = false;
  HRESULT decide_result = S_OK;  // of settling the buffers
  int samples = 5;
  long bytes = 64;
  int change_type_at = -1;  // sample that carries a new type
  DWORD new_rate_hz = 0;
  std::vector<DWORD> rates_hz = {44100};
};

class Source;

class SourcePin final : public OutputPin {
 public:
  SourcePin(BaseFilter& filter, const SourceOptions& options) : OutputPin(filter, L"Out"), options_(options) {}
  STDMETHODIMP Notify(IBaseFilter* sender, Quality quality) override {
    quality_sender = sender;
    quality_proportion = quality.Proportion;
    return S_OK;
  }

  HRESULT CheckMediaType(const AM_MEDIA_TYPE& type) override { return AcceptRate(options_.rates_hz, type); }
  HRESULT GetMediaType(int index, MediaType* type) override { return OfferRate(options_.rates_hz, index, type); }
  HRESULT DecideBufferSize(IMemAllocator& allocator, ALLOCATOR_PROPERTIES* properties) override {
    if (FAILED(options_.decide_result)) return options_.decide_result;
    properties->cBuffers = 3;
    properties->cbBuffer = options_.bytes;
    return SetAllocatorProperties(allocator, *properties);
  }
  HRESULT DecideAllocator() override {
    if (!options_.own_allocator && !options_.read_only) return OutputPin::DecideAllocator();
    ComPtr<IMemAllocator> allocator;
    ALLOCATOR_PROPERTIES properties{};
    HRESULT result = options_.own_allocator ? CreateMemoryAllocator(&allocator)
                                            : Query<IMemInputPin>(Peer().Get())->GetAllocator(allocator.Put());
    if (SUCCEEDED(result)) result = DecideBufferSize(*allocator, &properties);
    return FAILED(result) ? result : ShareAllocator(allocator.Get(), options_.read_only);
  }

  HRESULT Active() override {
    const HRESULT result = OutputPin::Active();
    if (SUCCEEDED(result)) worker_ = std::thread([this] { Stream(); });
    return result;
  }
  HRESULT Inactive() override {
    const HRESULT result = OutputPin::Inactive();
    if (worker_.joinable()) worker_.join();
    return result;
  }

  // As a seeking source does: flushes and starts the stream again.
  void Seek(REFERENCE_TIME segment_start_100ns) {
    DeliverBeginFlush();
    if (worker_.joinable()) worker_.join();
    DeliverEndFlush();
    segment_start_100ns_ = segment_start_100ns;
    if (!Filter().IsStopped()) worker_ = std::thread([this] { Stream(); });
  }

  std::atomic<HRESULT> last_delivery = E_PENDING;
  std::atomic<bool> was_overwritten = false;  // somebody wrote into read-only samples
  IBaseFilter* quality_sender = nullptr;
  long quality_proportion = 0;
  Event done;

 private:
  void Stream() {
    DeliverNewSegment(segment_start_100ns_, segment_start_100ns_ + 1000, 1.0);
    for (int n = 0; n < options_.samples; ++n) {
      last_delivery = DeliverOne(n);
      if (last_delivery != S_OK) break;
    }
    if (last_delivery == S_OK) DeliverEndOfStream();
    done.Set();
  }

  HRESULT DeliverOne(int n) {
    ComPtr<IMediaSample> sample;
    BYTE* bytes = nullptr;
    HRESULT result = GetDeliveryBuffer(sample.Put(), nullptr, nullptr, 0);
    if (FAILED(result)) return result;
    sample->GetPointer(&bytes);
    for (long i = 0; i < options_.bytes; ++i) bytes[i] = SourceByte(n, i);
    REFERENCE_TIME start = n * 100;
    REFERENCE_TIME stop = start + 100;
    LONGLONG media_start = n * 16;
    LONGLONG media_stop = media_start + 16;
    sample->SetActualDataLength(options_.bytes);
    sample->SetTime(&start, &stop);
    sample->SetMediaTime(&media_start, &media_stop);
    sample->SetDiscontinuity(n == 0);
    sample->SetSyncPoint(n % 2 == 0);
    sample->SetPreroll(n == 1);
    MediaType type;
    if (n == options_.change_type_at) type = AudioType(options_.new_rate_hz);
    sample->SetMediaType(type.IsEmpty() ? nullptr : const_cast<AM_MEDIA_TYPE*>(&type.Get()));
    result = Deliver(sample.Get());
    for (long i = 0; options_.read_only && i < options_.bytes; ++i) {
      if (bytes[i] != SourceByte(n, i)) was_overwritten = true;
    }
    return result;
  }

  const SourceOptions options_;
  REFERENCE_TIME segment_start_100ns_ = 0;
  std::thread worker_;
};

class Source final : public BaseFilter {
 public:
  explicit Source(const SourceOptions& options = {}) : BaseFilter(nullptr, CLSID_NULL), pin(*this, options) {}
  int PinCount() noexcept override { return 1; }
  BasePin* PinAt(int) noexcept override { return &pin; }
  SourcePin pin;
};

struct SinkOptions {
  bool only_own_allocator = false;
  bool blocks = false;       // in Receive, until flushed, stopped or released
  size_t keeps_samples = 0;  // holds on to so many and then says so, until stopped
  HRESULT answer = S_OK;
  std::vector<DWORD> rates_hz = {44100, 48000};
};

struct Received {
  const IMediaSample* sample;
  std::vector<BYTE> bytes;
  REFERENCE_TIME start, stop;
  LONGLONG media_start, media_stop;
  bool is_discontinuity, is_sync_point, is_preroll;
  DWORD attached_rate_hz;  // 0: no type attached
};

class SinkPin final : public InputPin {
 public:
  SinkPin(BaseFilter& filter, const SinkOptions& options) : InputPin(filter, L"In"), options_(options) {}

  HRESULT CheckMediaType(const AM_MEDIA_TYPE& type) override { return AcceptRate(options_.rates_hz, type); }
  HRESULT GetMediaType(int index, MediaType* type) override { return OfferRate(options_.rates_hz, index, type); }
  STDMETHODIMP GetAllocator(IMemAllocator** out) override {
    if (!options_.only_own_allocator) return InputPin::GetAllocator(out);
    if (!own_) CreateMemoryAllocator(&own_);
    return own_.CopyTo(out), S_OK;
  }
  STDMETHODIMP NotifyAllocator(IMemAllocator* allocator, BOOL read_only) override {
    if (options_.only_own_allocator && allocator != own_.Get()) return E_FAIL;
    return InputPin::NotifyAllocator(allocator, read_only);
  }
  HRESULT Inactive() override {
    release.Set();
    kept_.clear();
    return InputPin::Inactive();
  }

  HRESULT OnReceive(IMediaSample& sample) override {
    if (options_.blocks) {
      entered.Set();
      release.Wait();
    }
    if (IsFlushing()) return S_FALSE;
    if (options_.answer != S_OK) return options_.answer;
    Received copy{};
    BYTE* bytes = nullptr;
    sample.GetPointer(&bytes);
    copy.sample = &sample;
    copy.bytes.assign(bytes, bytes + sample.GetActualDataLength());
    sample.GetTime(&copy.start, &copy.stop);
    sample.GetMediaTime(&copy.media_start, &copy.media_stop);
    copy.is_discontinuity = sample.IsDiscontinuity() == S_OK;
    copy.is_sync_point = sample.IsSyncPoint() == S_OK;
    copy.is_preroll = sample.IsPreroll() == S_OK;
    AM_MEDIA_TYPE* attached = nullptr;
    MediaType type;
    if (sample.GetMediaType(&attached) == S_OK) type.Adopt(attached);
    copy.attached_rate_hz = RateOf(type);
    received.push_back(copy);
    if (options_.keeps_samples != 0) kept_.emplace_back(&sample);
    if (kept_.size() == options_.keeps_samples) entered.Set();
    return S_OK;
  }
  HRESULT OnEndOfStream() override {
    ++ends_of_stream;
    ended.Set();
    return S_OK;
  }
  HRESULT OnBeginFlush() override {
    ++begin_flushes;
    release.Set();
    return S_OK;
  }
  HRESULT OnEndFlush() override { return ++end_flushes, S_OK; }
  HRESULT OnNewSegment(REFERENCE_TIME start, REFERENCE_TIME, double) override {
    segments.push_back(start);
    return S_OK;
  }

  // Written by the stream, read by tests once the stream has ended.
  std::vector<Received> received;
  std::vector<REFERENCE_TIME> segments;
  std::atomic<int> ends_of_stream = 0, begin_flushes = 0, end_flushes = 0;
  Event entered, release, ended;

 private:
  const SinkOptions options_;
  ComPtr<IMemAllocator> own_;
  std::vector<ComPtr<IMediaSample>> kept_;
};

class Sink final : public BaseFilter {
 public:
  explicit Sink(const SinkOptions& options = {}) : BaseFilter(nullptr, CLSID_NULL), pin(*this, options) {}
  int PinCount() noexcept override { return 1; }
  BasePin* PinAt(int) noexcept override { return &pin; }
  SinkPin pin;
};

// Inverts every byte; accepts audio of any rate but 8000 Hz.
class Inverter final : public InPlaceTransformFilter {
 public:
  Inverter() : InPlaceTransformFilter(nullptr, CLSID_NULL) {}
  ~Inverter() override {
    AddRef();  // a destructor may hand itself out: this must not destroy it twice
    Release();
  }

  HRESULT CheckInputType(const AM_MEDIA_TYPE& type) override {
    return type.majortype == MEDIATYPE_Audio && RateOf(type) != 8000 ? S_OK : E_INVALIDARG;
  }
  HRESULT SetMediaType(PIN_DIRECTION direction, const AM_MEDIA_TYPE& type) override {
    types_set.emplace_back(direction, RateOf(type));
    return S_OK;
  }
  HRESULT StartStreaming() override { return ++starts, start_result; }
  HRESULT StopStreaming() override { return ++stops, S_OK; }
  HRESULT Transform(IMediaSample& sample) override {
    if (transform_result != S_OK) return transform_result;
    BYTE* bytes = nullptr;
    sample.GetPointer(&bytes);
    for (long i = 0; i < sample.GetActualDataLength(); ++i) bytes[i] ^= 0xFF;
    return S_OK;
  }

  HRESULT start_result = S_OK;
  HRESULT transform_result = S_OK;
  int starts = 0;
  int stops = 0;
  std::vector<std::pair<PIN_DIRECTION, DWORD>> types_set;
};

}  // namespace tervan::directshow::test
