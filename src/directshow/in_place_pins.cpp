#include <algorithm>

#include "directshow/allocators.h"
#include "directshow/in_place_filter.h"

namespace tervan::directshow {
namespace {

// The types that both pins have are those that the filter across offers.
HRESULT EnumTypesOf(const ComPtr<IPin>& pin, IEnumMediaTypes** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  return pin ? pin->EnumMediaTypes(out) : VFW_E_NOT_CONNECTED;
}

HRESULT AskPeerAcross(const ComPtr<IPin>& peer, const AM_MEDIA_TYPE& type) {
  return !peer || peer->QueryAccept(&type) == S_OK ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

// The pin connected last decides: the other one is connected again when it has another type.
HRESULT MatchType(BaseFilter& filter, BasePin& leader, BasePin& follower) {
  MediaType wanted;
  MediaType present;
  HRESULT result = leader.GetConnectionType(&wanted);
  if (SUCCEEDED(result)) result = follower.GetConnectionType(&present);
  if (FAILED(result) || IsSameMediaType(wanted, present)) return result;
  return filter.Reconnect(&follower, wanted);
}

}  // namespace

InPlaceInputPin::InPlaceInputPin(InPlaceTransformFilter& filter, const wchar_t* name) noexcept
    : InputPin(filter, name), filter_(filter) {}

STDMETHODIMP InPlaceInputPin::EnumMediaTypes(IEnumMediaTypes** out) { return EnumTypesOf(filter_.output_.Peer(), out); }

HRESULT InPlaceInputPin::CheckMediaType(const AM_MEDIA_TYPE& type) {
  const HRESULT result = filter_.CheckInputType(type);
  return result == S_OK ? AskPeerAcross(filter_.output_.Peer(), type) : result;
}

HRESULT InPlaceInputPin::SetMediaType(const AM_MEDIA_TYPE& type) {
  const HRESULT result = InputPin::SetMediaType(type);
  return FAILED(result) ? result : filter_.SetMediaType(PINDIR_INPUT, type);
}

HRESULT InPlaceInputPin::CompleteConnect(IPin* peer) {
  const HRESULT result = filter_.CompleteConnect(PINDIR_INPUT, peer);
  if (FAILED(result) || !filter_.output_.IsConnected()) return result;
  return MatchType(filter_, *this, filter_.output_);
}

void InPlaceInputPin::BreakConnect() {
  filter_.BreakConnect(PINDIR_INPUT);
  InputPin::BreakConnect();
}

STDMETHODIMP InPlaceInputPin::GetAllocator(IMemAllocator** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  // Downstream's allocator first: then upstream fills its buffers directly and nothing is ever copied.
  const ComPtr<IMemInputPin> downstream = Query<IMemInputPin>(filter_.output_.Peer().Get());
  if (downstream && SUCCEEDED(downstream->GetAllocator(out)) && *out) return S_OK;
  return InputPin::GetAllocator(out);
}

STDMETHODIMP InPlaceInputPin::NotifyAllocator(IMemAllocator* allocator, BOOL read_only) {
  const LockGuard filter(filter_.FilterLock());
  const HRESULT result = InputPin::NotifyAllocator(allocator, read_only);
  if (FAILED(result) || !filter_.output_.IsConnected()) return result;
  return filter_.output_.FollowInputAllocator(allocator, read_only != FALSE);
}

STDMETHODIMP InPlaceInputPin::GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) {
  if (!properties) return E_POINTER;
  const ComPtr<IMemInputPin> downstream = Query<IMemInputPin>(filter_.output_.Peer().Get());
  return downstream ? downstream->GetAllocatorRequirements(properties) : E_NOTIMPL;
}

STDMETHODIMP InPlaceInputPin::ReceiveCanBlock() {
  const ComPtr<IPin> peer = filter_.output_.Peer();
  if (!peer) return S_FALSE;
  const ComPtr<IMemInputPin> downstream = Query<IMemInputPin>(peer.Get());
  return downstream ? downstream->ReceiveCanBlock() : S_OK;
}

HRESULT InPlaceInputPin::CheckStreaming() noexcept {
  return filter_.output_.IsConnected() ? InputPin::CheckStreaming() : VFW_E_NOT_CONNECTED;
}

HRESULT InPlaceInputPin::OnFormatChange(const AM_MEDIA_TYPE& type) {
  const HRESULT result = SetMediaType(type);
  return FAILED(result) ? result : filter_.output_.SetMediaType(type);
}

HRESULT InPlaceInputPin::OnReceive(IMediaSample& sample) { return filter_.Receive(&sample); }

HRESULT InPlaceInputPin::OnEndOfStream() { return filter_.EndOfStream(); }

HRESULT InPlaceInputPin::OnBeginFlush() { return filter_.BeginFlush(); }

HRESULT InPlaceInputPin::OnEndFlush() { return filter_.EndFlush(); }

HRESULT InPlaceInputPin::OnNewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
  return filter_.NewSegment(start, stop, rate);
}

InPlaceOutputPin::InPlaceOutputPin(InPlaceTransformFilter& filter, const wchar_t* name) noexcept
    : OutputPin(filter, name), filter_(filter) {}

STDMETHODIMP InPlaceOutputPin::QueryInterface(REFIID iid, void** out) {
  if (IsEqualGUID(iid, IID_IMediaSeeking) || IsEqualGUID(iid, IID_IMediaPosition)) {
    return seeking_.Query(this, &filter_.input_, iid, out);
  }
  return OutputPin::QueryInterface(iid, out);
}

STDMETHODIMP InPlaceOutputPin::EnumMediaTypes(IEnumMediaTypes** out) { return EnumTypesOf(filter_.input_.Peer(), out); }

STDMETHODIMP InPlaceOutputPin::Notify(IBaseFilter* sender, Quality quality) {
  if (!sender) return E_POINTER;
  if (IQualityControl* const sink = QualitySink()) return sink->Notify(&filter_, quality);
  return filter_.input_.PassQuality(quality);
}

HRESULT InPlaceOutputPin::CheckMediaType(const AM_MEDIA_TYPE& type) {
  const HRESULT result = filter_.CheckInputType(type);
  return result == S_OK ? AskPeerAcross(filter_.input_.Peer(), type) : result;
}

HRESULT InPlaceOutputPin::SetMediaType(const AM_MEDIA_TYPE& type) {
  const HRESULT result = OutputPin::SetMediaType(type);
  return FAILED(result) ? result : filter_.SetMediaType(PINDIR_OUTPUT, type);
}

HRESULT InPlaceOutputPin::CompleteConnect(IPin* peer) {
  HRESULT result = OutputPin::CompleteConnect(peer);
  if (SUCCEEDED(result)) result = filter_.CompleteConnect(PINDIR_OUTPUT, peer);
  if (FAILED(result) || !filter_.input_.IsConnected()) return result;
  return MatchType(filter_, *this, filter_.input_);
}

void InPlaceOutputPin::BreakConnect() {
  filter_.BreakConnect(PINDIR_OUTPUT);
  OutputPin::BreakConnect();
}

HRESULT InPlaceOutputPin::DecideAllocator() {
  if (!filter_.input_.IsConnected()) return OutputPin::DecideAllocator();
  return FollowInputAllocator(filter_.input_.Allocator(), filter_.input_.IsReadOnly());
}

HRESULT InPlaceOutputPin::FollowInputAllocator(IMemAllocator* input_allocator, bool read_only) {
  if (input_allocator && !read_only) {
    if (input_allocator == Allocator()) return S_OK;
    if (SUCCEEDED(ShareAllocator(input_allocator, false))) return S_OK;
  }
  // Downstream may offer the input's allocator, which it knows already: samples are copied from that one.
  return DecideAllocatorExcept(input_allocator);
}

HRESULT InPlaceOutputPin::DecideBufferSize(IMemAllocator& allocator, ALLOCATOR_PROPERTIES* properties) {
  ALLOCATOR_PROPERTIES upstream{};
  IMemAllocator* const input_allocator = filter_.input_.Allocator();
  if (input_allocator && SUCCEEDED(input_allocator->GetProperties(&upstream))) {
    properties->cBuffers = std::max(properties->cBuffers, upstream.cBuffers);
    properties->cbBuffer = std::max(properties->cbBuffer, upstream.cbBuffer);
  }
  return SetAllocatorProperties(allocator, *properties);
}

}  // namespace tervan::directshow
