#include "directshow/in_place_filter.h"

#include <cstddef>
#include <cstring>

namespace tervan::directshow {
namespace {

// The fields that describe a sample; its buffer and the buffer's size stay those of the target.
constexpr DWORD kSampleHeaderBytes = offsetof(AM_SAMPLE2_PROPERTIES, pbBuffer);

// Times, flags, length and media type in one go, where both samples can.
bool CopyHeader2(IMediaSample& source, IMediaSample& target) {
  const ComPtr<IMediaSample2> source2 = Query<IMediaSample2>(&source);
  const ComPtr<IMediaSample2> target2 = Query<IMediaSample2>(&target);
  AM_SAMPLE2_PROPERTIES header{};
  if (!source2 || !target2) return false;
  if (FAILED(source2->GetProperties(kSampleHeaderBytes, reinterpret_cast<BYTE*>(&header)))) return false;
  header.cbData = kSampleHeaderBytes;
  return SUCCEEDED(target2->SetProperties(kSampleHeaderBytes, reinterpret_cast<const BYTE*>(&header)));
}

HRESULT CopyHeader(IMediaSample& source, IMediaSample& target) {
  REFERENCE_TIME start = 0;
  REFERENCE_TIME stop = 0;
  const HRESULT has_times = source.GetTime(&start, &stop);
  target.SetTime(SUCCEEDED(has_times) ? &start : nullptr, has_times == S_OK ? &stop : nullptr);
  target.SetSyncPoint(source.IsSyncPoint() == S_OK);
  target.SetPreroll(source.IsPreroll() == S_OK);
  target.SetDiscontinuity(source.IsDiscontinuity() == S_OK);
  AM_MEDIA_TYPE* attached = nullptr;
  MediaType type;
  if (source.GetMediaType(&attached) == S_OK) type.Adopt(attached);
  const HRESULT result = target.SetMediaType(attached ? const_cast<AM_MEDIA_TYPE*>(&type.Get()) : nullptr);
  return FAILED(result) ? result : target.SetActualDataLength(source.GetActualDataLength());
}

HRESULT CopySample(IMediaSample& source, IMediaSample& target) {
  const long bytes = source.GetActualDataLength();
  if (bytes > target.GetSize()) return VFW_E_BUFFER_OVERFLOW;
  BYTE* from = nullptr;
  BYTE* to = nullptr;
  if (FAILED(source.GetPointer(&from)) || FAILED(target.GetPointer(&to)) || !from || !to) return E_POINTER;
  std::memcpy(to, from, bytes);

  if (!CopyHeader2(source, target)) {
    const HRESULT result = CopyHeader(source, target);
    if (FAILED(result)) return result;
  }
  LONGLONG start = 0;
  LONGLONG stop = 0;
  const bool has_media_times = SUCCEEDED(source.GetMediaTime(&start, &stop));
  return target.SetMediaTime(has_media_times ? &start : nullptr, has_media_times ? &stop : nullptr);
}

}  // namespace

BasePin* InPlaceTransformFilter::PinAt(int index) noexcept {
  if (index == 0) return &input_;
  return &output_;
}

STDMETHODIMP InPlaceTransformFilter::Pause() {
  const bool was_stopped = IsStopped();
  const HRESULT result = BaseFilter::Pause();
  if (FAILED(result)) return result;
  if (was_stopped && !input_.IsConnected() && output_.IsConnected()) {
    const LockGuard streaming(StreamingLock());
    output_.DeliverEndOfStream();
  }
  return result;
}

HRESULT InPlaceTransformFilter::OnStart() {
  if (!input_.IsConnected() || !output_.IsConnected()) return S_OK;
  const HRESULT result = StartStreaming();
  is_streaming_ = SUCCEEDED(result);
  return result;
}

HRESULT InPlaceTransformFilter::OnStop() {
  if (!is_streaming_) return S_OK;
  is_streaming_ = false;
  return StopStreaming();
}

bool InPlaceTransformFilter::MustCopy() const noexcept {
  // Read-only buffers are never shared with downstream, so they count here as well. Without an announced allocator
  // upstream's samples are taken as they come.
  return input_.Allocator() && input_.Allocator() != output_.Allocator();
}

HRESULT InPlaceTransformFilter::WritableSample(IMediaSample& source, ComPtr<IMediaSample>* writable) {
  if (!MustCopy()) {
    *writable = ComPtr<IMediaSample>(&source);
    return S_OK;
  }
  REFERENCE_TIME start = 0;
  REFERENCE_TIME stop = 0;
  const bool has_times = source.GetTime(&start, &stop) == S_OK;
  const HRESULT result =
      output_.GetDeliveryBuffer(writable->Put(), has_times ? &start : nullptr, has_times ? &stop : nullptr, 0);
  return FAILED(result) ? result : CopySample(source, **writable);
}

HRESULT InPlaceTransformFilter::Receive(IMediaSample* sample) {
  if (!sample) return E_POINTER;
  ComPtr<IMediaSample> writable;
  HRESULT result = WritableSample(*sample, &writable);
  if (FAILED(result)) return result;
  result = Transform(*writable);
  if (result == S_FALSE) return S_OK;
  return FAILED(result) ? result : output_.Deliver(writable.Get());
}

}  // namespace tervan::directshow
