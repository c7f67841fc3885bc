// A pin that receives samples. A renderer or writer overrides OnReceive and OnEndOfStream.
#pragma once
#include <windows.h>

#include <dshow.h>

#include <atomic>

#include "directshow/base_pin.h"

namespace tervan::directshow {

class InputPin : public BasePin, public IMemInputPin {
 public:
  InputPin(BaseFilter& filter, const wchar_t* name) noexcept : BasePin(filter, PINDIR_INPUT, name) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override { return BasePin::QueryInterface(iid, out); }
  STDMETHODIMP_(ULONG) AddRef() override { return BasePin::AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return BasePin::Release(); }

  // IMemInputPin. [host]
  // The agreed allocator, or before there is one an allocator of the platform's as a proposal.
  STDMETHODIMP GetAllocator(IMemAllocator** out) override;
  STDMETHODIMP NotifyAllocator(IMemAllocator* allocator, BOOL read_only) override;
  STDMETHODIMP GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) override;
  // What OnReceive answers; E_POINTER, VFW_E_NOT_CONNECTED, VFW_E_WRONG_STATE (stopped), S_FALSE (flushing),
  // VFW_E_RUNTIME_ERROR (after an error, until stopped or flushed), VFW_E_INVALIDMEDIATYPE (a format change that was
  // refused; the graph gets EC_ERRORABORT). [stream]
  STDMETHODIMP Receive(IMediaSample* sample) override;
  // One after the other; stops at the first answer that is not S_OK. [stream]
  STDMETHODIMP ReceiveMultiple(IMediaSample** samples, long count, long* processed) override;
  // S_OK: Receive may block. A pin that passes samples on asks its peers.
  STDMETHODIMP ReceiveCanBlock() override { return S_OK; }

  // IPin. The first and last wait for Receive, the flush does not begin behind it. The states answer as in Receive.
  STDMETHODIMP EndOfStream() override;                                                       // [stream]
  STDMETHODIMP BeginFlush() override;                                                        // [any thread]
  STDMETHODIMP EndFlush() override;                                                          // [any thread]
  STDMETHODIMP NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) override;  // [stream]

  HRESULT Inactive() override;

  // The agreed one, or null; changes only while stopped.
  IMemAllocator* Allocator() const noexcept { return allocator_.Get(); }
  bool IsReadOnly() const noexcept { return is_read_only_; }
  bool IsFlushing() const noexcept { return is_flushing_.load(); }
  // After an error that ends the stream: Receive answers VFW_E_RUNTIME_ERROR from now on.
  void SetRuntimeError() noexcept { has_runtime_error_ = true; }
  // Passes a quality message to the sink, or to the upstream pin. VFW_E_NOT_FOUND without either. [any thread]
  HRESULT PassQuality(Quality quality) noexcept;

 protected:
  IUnknown* FindInterface(REFIID iid) noexcept override;
  void BreakConnect() override;

  // S_OK when a sample may come in now, else the answer of Receive. Overriding, call this one too.
  virtual HRESULT CheckStreaming() noexcept;
  // An accepted change of format inside the stream. [stream; streaming lock held]
  virtual HRESULT OnFormatChange(const AM_MEDIA_TYPE& type) { return SetMediaType(type); }
  virtual HRESULT OnReceive(IMediaSample& sample) = 0;  // [stream; streaming lock held]
  virtual HRESULT OnEndOfStream() { return S_OK; }      // [stream; streaming lock held]
  virtual HRESULT OnBeginFlush() { return S_OK; }       // [any thread; no lock held]
  virtual HRESULT OnEndFlush() { return S_OK; }         // [any thread; no lock held]
  // [stream; streaming lock held]
  virtual HRESULT OnNewSegment(REFERENCE_TIME /*start*/, REFERENCE_TIME /*stop*/, double /*rate*/) { return S_OK; }

 private:
  HRESULT ApplyFormatChange(IMediaSample& sample);

  ComPtr<IMemAllocator> allocator_;  // guarded by the filter lock; the stream only reads it
  bool is_read_only_ = false;        // likewise
  ComPtr<IMemAllocator> proposal_;   // guarded by the filter lock
  std::atomic<bool> is_flushing_{false};
  std::atomic<bool> has_runtime_error_{false};
};

}  // namespace tervan::directshow
