// A source and a sink around an effect in the platform's filter graph. The test's own thread delivers the samples,
// so every step has happened when its call returns.
#pragma once
#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "directshow/allocators.h"
#include "directshow/base_filter.h"
#include "directshow/input_pin.h"
#include "directshow/output_pin.h"
#include "module/effects.h"

namespace tervan::test {

using directshow::MediaType;

struct Format {
  WORD tag, channels;
  DWORD rate_hz;
  WORD bits;
  DWORD FrameBytes() const { return channels * bits / 8u; }
};

inline WAVEFORMATEX WaveFormat(const Format& format) {
  const auto frame_bytes = static_cast<WORD>(format.FrameBytes());
  return {format.tag, format.channels, format.rate_hz, format.rate_hz * frame_bytes, frame_bytes, format.bits, 0};
}

inline MediaType AudioType(const Format& format) {
  MediaType type;
  type.AssignAudio(WaveFormat(format), sizeof(WAVEFORMATEX),
                   format.tag == WAVE_FORMAT_PCM ? MEDIASUBTYPE_PCM : MEDIASUBTYPE_IEEE_FLOAT);
  return type;
}

template <class Sample>
Bytes BytesOf(const std::vector<Sample>& samples) {
  Bytes bytes(samples.size() * sizeof(Sample));
  std::memcpy(bytes.data(), samples.data(), bytes.size());
  return bytes;
}

template <class Sample>
Bytes Repeat(Sample sample, std::size_t count) {
  return BytesOf(std::vector<Sample>(count, sample));
}

template <class Sample>
double SampleAt(const Bytes& bytes, std::size_t index) {
  Sample sample;
  std::memcpy(&sample, bytes.data() + index * sizeof sample, sizeof sample);
  return static_cast<double>(sample);
}

struct SourceSample {
  Bytes bytes;
  std::optional<REFERENCE_TIME> start = {}, stop = {};
  bool is_discontinuity = false;
};

class SourcePin final : public directshow::OutputPin {
 public:
  SourcePin(directshow::BaseFilter& filter, const Format& format) : OutputPin(filter, L"Out"), format_(format) {}

  HRESULT CheckMediaType(const AM_MEDIA_TYPE&) override { return S_OK; }
  HRESULT GetMediaType(int index, MediaType* type) override {
    if (index > 0) return VFW_S_NO_MORE_ITEMS;
    *type = AudioType(format_);
    return S_OK;
  }
  HRESULT DecideBufferSize(IMemAllocator& allocator, ALLOCATOR_PROPERTIES* properties) override {
    properties->cBuffers = 3;
    properties->cbBuffer = 1 << 16;
    return directshow::SetAllocatorProperties(allocator, *properties);
  }
  HRESULT Active() override {
    const HRESULT result = OutputPin::Active();
    if (FAILED(result) || !streams_silence_) return result;
    worker_ = std::thread([this] {
      const Bytes silence(441 * format_.FrameBytes());
      for (REFERENCE_TIME start = 0; Send({.bytes = silence, .start = start, .stop = start + 1000}) == S_OK;
           start += 1000) {
      }
    });
    return result;
  }
  HRESULT Inactive() override {
    const HRESULT result = OutputPin::Inactive();
    if (worker_.joinable()) worker_.join();
    return result;
  }

  HRESULT Send(const SourceSample& sample) {
    ComPtr<IMediaSample> buffer;
    HRESULT result = GetDeliveryBuffer(buffer.Put(), nullptr, nullptr, 0);
    if (FAILED(result)) return result;
    BYTE* bytes = nullptr;
    buffer->GetPointer(&bytes);
    std::copy(sample.bytes.begin(), sample.bytes.end(), bytes);
    buffer->SetActualDataLength(static_cast<long>(sample.bytes.size()));
    REFERENCE_TIME start = sample.start.value_or(0);
    REFERENCE_TIME stop = sample.stop.value_or(0);
    buffer->SetTime(sample.start ? &start : nullptr, sample.stop ? &stop : nullptr);
    buffer->SetDiscontinuity(sample.is_discontinuity);
    return Deliver(buffer.Get());
  }

  // From each start to the stop, on a thread of its own, in tests that do not deliver themselves.
  void StreamSilence() { streams_silence_ = true; }

 private:
  const Format format_;
  bool streams_silence_ = false;
  std::thread worker_;
};

class Source final : public directshow::BaseFilter {
 public:
  explicit Source(const Format& format) : BaseFilter(nullptr, CLSID_NULL), pin(*this, format) {}
  int PinCount() noexcept override { return 1; }
  directshow::BasePin* PinAt(int) noexcept override { return &pin; }
  SourcePin pin;
};

class SinkPin final : public directshow::InputPin {
 public:
  explicit SinkPin(directshow::BaseFilter& filter) : InputPin(filter, L"In") {}
  HRESULT CheckMediaType(const AM_MEDIA_TYPE&) override { return S_OK; }
  HRESULT OnReceive(IMediaSample& sample) override {
    if (answer != S_OK) return answer;
    BYTE* bytes = nullptr;
    sample.GetPointer(&bytes);
    samples.emplace_back(bytes, bytes + sample.GetActualDataLength());
    log += samples.back().empty() ? "empty " : "sample ";
    return S_OK;
  }
  HRESULT OnEndOfStream() override {
    log += "end ";
    ended = true;
    Filter().NotifyGraph(EC_COMPLETE, S_OK, 0);
    return S_OK;
  }
  HRESULT OnBeginFlush() override { return log += "flush( ", S_OK; }
  HRESULT OnEndFlush() override { return log += ")flush ", S_OK; }
  HRESULT OnNewSegment(REFERENCE_TIME, REFERENCE_TIME, double) override { return log += "segment ", S_OK; }

  Bytes All() const {
    Bytes all;
    for (const Bytes& sample : samples) all.insert(all.end(), sample.begin(), sample.end());
    return all;
  }

  std::atomic<HRESULT> answer = S_OK;
  std::atomic<bool> ended = false;
  std::vector<Bytes> samples;
  std::string log;  // what arrived, in order
};

// A graph waits only for the end of those filters that call themselves renderers.
class Sink final : public directshow::Implements<directshow::BaseFilter, IAMFilterMiscFlags> {
 public:
  Sink() : Implements(nullptr, CLSID_NULL), pin(*this) {}
  IUnknown* FindInterface(REFIID iid) noexcept override {
    if (iid == IID_IAMFilterMiscFlags) return static_cast<IAMFilterMiscFlags*>(this);
    return BaseFilter::FindInterface(iid);
  }
  STDMETHODIMP_(ULONG) GetMiscFlags() override { return AM_FILTER_MISC_FLAGS_IS_RENDERER; }
  int PinCount() noexcept override { return 1; }
  directshow::BasePin* PinAt(int) noexcept override { return &pin; }
  SinkPin pin;
};

inline ComPtr<IPin> PinOf(IBaseFilter& filter, const wchar_t* name) {
  ComPtr<IPin> pin;
  EXPECT_EQ(filter.FindPin(name, pin.Put()), S_OK);
  return pin;
}

// source -> effect -> sink, in a filter graph of the platform's, not yet connected.
struct EffectGraph {
  EffectGraph(const EffectRow& effect, const Format& format)
      : source(new Source(format)), sink(new Sink), keep_source(source), keep_sink(sink), filter(effect) {
    base = Query<IBaseFilter>(filter.control.Get());
    EXPECT_EQ(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, IID_IGraphBuilder, builder.PutVoid()),
              S_OK);
    media = Query<IMediaControl>(builder.Get());
    EXPECT_EQ(builder->AddFilter(source, L"source"), S_OK);
    EXPECT_EQ(builder->AddFilter(base.Get(), effect.display_name), S_OK);
    EXPECT_EQ(builder->AddFilter(sink, L"sink"), S_OK);
    input = PinOf(*base, L"Input");
    output = PinOf(*base, L"Output");
  }
  ~EffectGraph() {
    if (media) media->Stop();
  }
  void Connect() {
    ASSERT_EQ(builder->ConnectDirect(&source->pin, input.Get(), nullptr), S_OK);
    ASSERT_EQ(builder->ConnectDirect(output.Get(), &sink->pin, nullptr), S_OK);
  }
  void Start() {
    Connect();
    ASSERT_HRESULT_SUCCEEDED(media->Run());
  }
  WAVEFORMATEX StoredFormat(HRESULT expected_result = S_OK) const {
    WAVEFORMATEX stored{};
    EXPECT_EQ(filter.Slot(filter.effect.format_slot, &stored), expected_result);
    return stored;
  }

  Source* source;
  Sink* sink;
  ComPtr<IBaseFilter> keep_source, keep_sink;
  Filter filter;
  ComPtr<IBaseFilter> base;
  ComPtr<IGraphBuilder> builder;
  ComPtr<IMediaControl> media;
  ComPtr<IPin> input, output;
};

}  // namespace tervan::test
