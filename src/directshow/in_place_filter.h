// A filter with one input and one output that changes samples where they lie. Both pins always have the same media
// type. Upstream's buffers are passed on whenever upstream allows writing to them and downstream takes them; otherwise
// each sample is first copied into a buffer of the output's own allocator.
//
// Locks: see base_filter.h.
#pragma once
#include <windows.h>

#include <dshow.h>

#include "directshow/base_filter.h"
#include "directshow/input_pin.h"
#include "directshow/output_pin.h"
#include "directshow/seeking_pass_through.h"

namespace tervan::directshow {

class InPlaceTransformFilter;

// The ids of the two pins are "In" and "Out", whatever they are named: that is what graphs have stored of such filters.
class InPlaceInputPin final : public InputPin {
 public:
  InPlaceInputPin(InPlaceTransformFilter& filter, const wchar_t* name) noexcept;

  const wchar_t* Id() const noexcept override { return L"In"; }

  STDMETHODIMP EnumMediaTypes(IEnumMediaTypes** out) override;
  STDMETHODIMP GetAllocator(IMemAllocator** out) override;
  STDMETHODIMP NotifyAllocator(IMemAllocator* allocator, BOOL read_only) override;
  STDMETHODIMP GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) override;
  STDMETHODIMP ReceiveCanBlock() override;

  HRESULT CheckMediaType(const AM_MEDIA_TYPE& type) override;
  HRESULT SetMediaType(const AM_MEDIA_TYPE& type) override;

 protected:
  HRESULT CheckStreaming() noexcept override;
  HRESULT CompleteConnect(IPin* peer) override;
  void BreakConnect() override;
  HRESULT OnFormatChange(const AM_MEDIA_TYPE& type) override;
  HRESULT OnReceive(IMediaSample& sample) override;
  HRESULT OnEndOfStream() override;
  HRESULT OnBeginFlush() override;
  HRESULT OnEndFlush() override;
  HRESULT OnNewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) override;

 private:
  InPlaceTransformFilter& filter_;
};

class InPlaceOutputPin final : public OutputPin {
 public:
  InPlaceOutputPin(InPlaceTransformFilter& filter, const wchar_t* name) noexcept;

  const wchar_t* Id() const noexcept override { return L"Out"; }

  STDMETHODIMP QueryInterface(REFIID iid, void** out) override;
  STDMETHODIMP EnumMediaTypes(IEnumMediaTypes** out) override;
  // To the sink, or through the input pin to upstream; never answered by dropping samples.
  STDMETHODIMP Notify(IBaseFilter* sender, Quality quality) override;

  HRESULT CheckMediaType(const AM_MEDIA_TYPE& type) override;
  HRESULT SetMediaType(const AM_MEDIA_TYPE& type) override;

  // Agrees with downstream on the input's allocator, or on one of this pin's own to copy into. [host; filter lock held]
  HRESULT FollowInputAllocator(IMemAllocator* input_allocator, bool read_only);

 protected:
  HRESULT CompleteConnect(IPin* peer) override;
  void BreakConnect() override;
  HRESULT DecideBufferSize(IMemAllocator& allocator, ALLOCATOR_PROPERTIES* properties) override;
  HRESULT DecideAllocator() override;

 private:
  InPlaceTransformFilter& filter_;
  SeekingPassThrough seeking_;
};

class InPlaceTransformFilter : public BaseFilter {
 public:
  int PinCount() noexcept final { return 2; }
  BasePin* PinAt(int index) noexcept final;

  // Also delivers one end-of-stream downstream when nothing is connected upstream, since none will come from there.
  STDMETHODIMP Pause() override;

  InPlaceInputPin& Input() noexcept { return input_; }
  InPlaceOutputPin& Output() noexcept { return output_; }

 protected:
  InPlaceTransformFilter(IUnknown* outer, REFCLSID clsid, const wchar_t* input_name = L"Input",
                         const wchar_t* output_name = L"Output") noexcept
      : BaseFilter(outer, clsid), input_(*this, input_name), output_(*this, output_name) {}

  // Hooks. Those for the stream are called with the streaming lock held, those of the host with the filter lock.

  // S_OK accepts the type; the pins turn any failure into the refusal that the caller expects. [any thread, no lock]
  virtual HRESULT CheckInputType(const AM_MEDIA_TYPE& type) = 0;
  // A pin has got this type: input first, output second, also when the format changes in the stream. [host, stream]
  virtual HRESULT SetMediaType(PIN_DIRECTION /*direction*/, const AM_MEDIA_TYPE& /*type*/) { return S_OK; }
  virtual HRESULT CompleteConnect(PIN_DIRECTION /*direction*/, IPin* /*peer*/) { return S_OK; }  // [host]
  virtual void BreakConnect(PIN_DIRECTION /*direction*/) {}                                      // [host]

  // Stopped to paused and back, only with both pins connected. [host; streaming lock held as well]
  virtual HRESULT StartStreaming() { return S_OK; }
  virtual HRESULT StopStreaming() { return S_OK; }

  // Takes one sample: copies it where necessary, transforms and delivers it. The answer is that of the delivery;
  // S_FALSE from Transform drops the sample and is answered with S_OK, its failures are answered as they are. [stream]
  virtual HRESULT Receive(IMediaSample* sample);
  virtual HRESULT Transform(IMediaSample& sample) = 0;                                  // [stream]
  virtual HRESULT EndOfStream() { return output_.DeliverEndOfStream(); }                // [stream]
  virtual HRESULT BeginFlush() { return output_.DeliverBeginFlush(); }                  // [any thread, no lock]
  virtual HRESULT EndFlush() { return output_.DeliverEndFlush(); }                      // [any thread, no lock]
  virtual HRESULT NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {  // [stream]
    return output_.DeliverNewSegment(start, stop, rate);
  }

  HRESULT OnStart() override;
  HRESULT OnStop() override;

 private:
  friend class InPlaceInputPin;
  friend class InPlaceOutputPin;

  // The sample to work on: the given one, or a copy of it in a buffer of the output pin's allocator.
  HRESULT WritableSample(IMediaSample& source, ComPtr<IMediaSample>* writable);
  bool MustCopy() const noexcept;

  InPlaceInputPin input_;
  InPlaceOutputPin output_;
  bool is_streaming_ = false;  // guarded by the filter lock
};

}  // namespace tervan::directshow
