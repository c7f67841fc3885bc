#include "directshow/output_pin.h"

#include "directshow/allocators.h"

namespace tervan::directshow {

HRESULT OutputPin::GetDeliveryBuffer(IMediaSample** sample, REFERENCE_TIME* start, REFERENCE_TIME* stop, DWORD flags) {
  if (!sample) return E_POINTER;
  *sample = nullptr;
  return allocator_ ? allocator_->GetBuffer(sample, start, stop, flags) : VFW_E_NOT_CONNECTED;
}

HRESULT OutputPin::Deliver(IMediaSample* sample) {
  return peer_memory_ ? peer_memory_->Receive(sample) : VFW_E_NOT_CONNECTED;
}

HRESULT OutputPin::DeliverEndOfStream() {
  const ComPtr<IPin> peer = Peer();
  return peer ? peer->EndOfStream() : VFW_E_NOT_CONNECTED;
}

HRESULT OutputPin::DeliverNewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
  const ComPtr<IPin> peer = Peer();
  return peer ? peer->NewSegment(start, stop, rate) : VFW_E_NOT_CONNECTED;
}

HRESULT OutputPin::DeliverBeginFlush() {
  const ComPtr<IPin> peer = Peer();
  return peer ? peer->BeginFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT OutputPin::DeliverEndFlush() {
  const ComPtr<IPin> peer = Peer();
  return peer ? peer->EndFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT OutputPin::Active() { return allocator_ ? allocator_->Commit() : VFW_E_NO_ALLOCATOR; }

HRESULT OutputPin::Inactive() { return allocator_ ? allocator_->Decommit() : S_OK; }

HRESULT OutputPin::CheckConnect(IPin* peer) {
  const HRESULT result = BasePin::CheckConnect(peer);
  if (FAILED(result)) return result;
  peer_memory_ = Query<IMemInputPin>(peer);
  return peer_memory_ ? S_OK : VFW_E_NO_TRANSPORT;
}

HRESULT OutputPin::CompleteConnect(IPin*) { return DecideAllocator(); }

void OutputPin::BreakConnect() {
  if (allocator_) allocator_->Decommit();
  allocator_.Reset();
  peer_memory_.Reset();
}

HRESULT OutputPin::DecideAllocatorExcept(const IMemAllocator* excluded) {
  ComPtr<IMemAllocator> allocator;
  if (SUCCEEDED(peer_memory_->GetAllocator(allocator.Put())) && allocator && allocator.Get() != excluded &&
      SUCCEEDED(OfferAllocator(allocator.Get()))) {
    return S_OK;
  }
  const HRESULT result = CreateMemoryAllocator(&allocator);
  return FAILED(result) ? result : OfferAllocator(allocator.Get());
}

HRESULT OutputPin::OfferAllocator(IMemAllocator* allocator) {
  ALLOCATOR_PROPERTIES properties{};
  if (FAILED(peer_memory_->GetAllocatorRequirements(&properties))) properties = {};
  const HRESULT result = DecideBufferSize(*allocator, &properties);
  return FAILED(result) ? result : ShareAllocator(allocator, false);
}

HRESULT OutputPin::ShareAllocator(IMemAllocator* allocator, bool read_only) {
  const HRESULT result = peer_memory_->NotifyAllocator(allocator, read_only);
  if (SUCCEEDED(result)) allocator_ = ComPtr<IMemAllocator>(allocator);
  return result;
}

}  // namespace tervan::directshow
