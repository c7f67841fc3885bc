// A pin that delivers samples. A source derives from it and delivers from a thread of its own between Active and
// Inactive; the connection cannot change in that time.
#pragma once
#include <windows.h>

#include <dshow.h>

#include "directshow/base_pin.h"

namespace tervan::directshow {

class OutputPin : public BasePin {
 public:
  OutputPin(BaseFilter& filter, const wchar_t* name) noexcept : BasePin(filter, PINDIR_OUTPUT, name) {}

  // An empty buffer of the connection's allocator; waits until one is free. VFW_E_NOT_CONNECTED, and what the allocator
  // answers: VFW_E_NOT_COMMITTED once the pin is inactive. [stream]
  HRESULT GetDeliveryBuffer(IMediaSample** sample, REFERENCE_TIME* start, REFERENCE_TIME* stop, DWORD flags);
  // These pass on what the peer answers; VFW_E_NOT_CONNECTED. [stream]
  HRESULT Deliver(IMediaSample* sample);
  HRESULT DeliverEndOfStream();
  HRESULT DeliverNewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate);
  // [any thread]
  HRESULT DeliverBeginFlush();
  HRESULT DeliverEndFlush();

  // Commits and decommits the allocator. Overriding, call Active of this class before starting the delivering thread;
  // in Inactive call this class first, which frees a thread that waits for a buffer, and then end the thread.
  HRESULT Active() override;
  HRESULT Inactive() override;

  IMemAllocator* Allocator() const noexcept { return allocator_.Get(); }  // changes only while stopped

 protected:
  HRESULT CheckConnect(IPin* peer) override;
  HRESULT CompleteConnect(IPin* peer) override;
  void BreakConnect() override;

  // Fills in and sets the buffers that the stream needs; *properties holds what the peer requires, or zeros.
  // A failure refuses this allocator. [host; filter lock held]
  virtual HRESULT DecideBufferSize(IMemAllocator& allocator, ALLOCATOR_PROPERTIES* properties) = 0;
  // Agrees on an allocator with the peer. [host; filter lock held]
  virtual HRESULT DecideAllocator() { return DecideAllocatorExcept(nullptr); }

  // The peer's allocator, if it is another one than this, else one of the platform's; sized by DecideBufferSize.
  HRESULT DecideAllocatorExcept(const IMemAllocator* excluded);
  // Tells the peer about an allocator whose size is settled, and keeps it when the peer takes it.
  HRESULT ShareAllocator(IMemAllocator* allocator, bool read_only);

 private:
  HRESULT OfferAllocator(IMemAllocator* allocator);

  ComPtr<IMemInputPin> peer_memory_;  // both are guarded by the filter lock; the stream only reads them
  ComPtr<IMemAllocator> allocator_;
};

}  // namespace tervan::directshow
