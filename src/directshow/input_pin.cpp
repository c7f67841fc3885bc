#include "directshow/input_pin.h"

#include "directshow/allocators.h"

namespace tervan::directshow {

IUnknown* InputPin::FindInterface(REFIID iid) noexcept {
  if (IsEqualGUID(iid, IID_IMemInputPin)) return static_cast<IMemInputPin*>(this);
  return BasePin::FindInterface(iid);
}

STDMETHODIMP InputPin::GetAllocator(IMemAllocator** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  const LockGuard filter(Filter().FilterLock());
  if (!allocator_ && !proposal_) {
    const HRESULT result = CreateMemoryAllocator(&proposal_);
    if (FAILED(result)) return result;
  }
  (allocator_ ? allocator_ : proposal_).CopyTo(out);
  return S_OK;
}

STDMETHODIMP InputPin::NotifyAllocator(IMemAllocator* allocator, BOOL read_only) {
  if (!allocator) return E_POINTER;
  const LockGuard filter(Filter().FilterLock());
  if (!Filter().IsStopped()) return VFW_E_NOT_STOPPED;
  allocator_ = ComPtr<IMemAllocator>(allocator);
  is_read_only_ = read_only != FALSE;
  return S_OK;
}

STDMETHODIMP InputPin::GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) {
  return properties ? E_NOTIMPL : E_POINTER;
}

HRESULT InputPin::CheckStreaming() noexcept {
  if (!IsConnected()) return VFW_E_NOT_CONNECTED;
  if (Filter().IsStopped()) return VFW_E_WRONG_STATE;
  if (is_flushing_) return S_FALSE;
  return has_runtime_error_ ? VFW_E_RUNTIME_ERROR : S_OK;
}

STDMETHODIMP InputPin::Receive(IMediaSample* sample) {
  if (!sample) return E_POINTER;
  const LockGuard streaming(Filter().StreamingLock());
  HRESULT result = CheckStreaming();
  if (result != S_OK) return result;
  result = ApplyFormatChange(*sample);
  return FAILED(result) ? result : OnReceive(*sample);
}

HRESULT InputPin::ApplyFormatChange(IMediaSample& sample) {
  AM_MEDIA_TYPE* attached = nullptr;
  if (sample.GetMediaType(&attached) != S_OK || !attached) return S_OK;
  MediaType type;
  type.Adopt(attached);
  if (CheckMediaType(type) == S_OK) return OnFormatChange(type);
  SetRuntimeError();
  Filter().NotifyGraph(EC_ERRORABORT, VFW_E_TYPE_NOT_ACCEPTED, 0);
  return VFW_E_INVALIDMEDIATYPE;
}

STDMETHODIMP InputPin::ReceiveMultiple(IMediaSample** samples, long count, long* processed) {
  if (!samples || !processed) return E_POINTER;
  *processed = 0;
  while (*processed < count) {
    const HRESULT result = Receive(samples[*processed]);
    if (result != S_OK) return result;
    ++*processed;
  }
  return S_OK;
}

STDMETHODIMP InputPin::EndOfStream() {
  const LockGuard streaming(Filter().StreamingLock());
  const HRESULT result = CheckStreaming();
  return result == S_OK ? OnEndOfStream() : result;
}

STDMETHODIMP InputPin::BeginFlush() {
  if (!IsConnected()) return VFW_E_NOT_CONNECTED;
  is_flushing_ = true;
  return OnBeginFlush();
}

STDMETHODIMP InputPin::EndFlush() {
  if (!IsConnected()) return VFW_E_NOT_CONNECTED;
  const HRESULT result = OnEndFlush();  // downstream takes samples again before they are let in here
  has_runtime_error_ = false;
  is_flushing_ = false;
  return result;
}

STDMETHODIMP InputPin::NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
  const LockGuard streaming(Filter().StreamingLock());
  if (!IsConnected()) return VFW_E_NOT_CONNECTED;
  return OnNewSegment(start, stop, rate);
}

HRESULT InputPin::Inactive() {
  has_runtime_error_ = false;
  is_flushing_ = false;
  return allocator_ ? allocator_->Decommit() : S_OK;
}

void InputPin::BreakConnect() {
  allocator_.Reset();
  proposal_.Reset();
  is_read_only_ = false;
  has_runtime_error_ = false;
  is_flushing_ = false;
}

HRESULT InputPin::PassQuality(Quality quality) noexcept {
  if (IQualityControl* const sink = QualitySink()) return sink->Notify(&Filter(), quality);
  const ComPtr<IQualityControl> upstream = Query<IQualityControl>(Peer().Get());
  return upstream ? upstream->Notify(&Filter(), quality) : VFW_E_NOT_FOUND;
}

}  // namespace tervan::directshow
