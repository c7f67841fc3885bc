// What input and output pins have in common: connection, media types, identity.
#pragma once
#include <windows.h>

#include <dshow.h>

#include <atomic>

#include "directshow/base_filter.h"
#include "directshow/media_type.h"

namespace tervan::directshow {

// A pin is a member of its filter and shares its reference count, so neither keeps the other alive in a cycle. It is an
// object of its own to queries: its IUnknown is not the filter's.
class BasePin : public IPin, public IQualityControl {
 public:
  BasePin(const BasePin&) = delete;
  BasePin& operator=(const BasePin&) = delete;
  virtual ~BasePin() = default;

  // IUnknown
  STDMETHODIMP QueryInterface(REFIID iid, void** out) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;

  // IPin, connection. [host]
  // S_OK; E_POINTER, VFW_E_ALREADY_CONNECTED, VFW_E_NOT_STOPPED, VFW_E_INVALID_DIRECTION; with a full type
  // VFW_E_TYPE_NOT_ACCEPTED, without one VFW_E_NO_ACCEPTABLE_TYPES when no type of either side suits both.
  STDMETHODIMP Connect(IPin* peer, const AM_MEDIA_TYPE* type) override;
  STDMETHODIMP ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) override;
  // S_FALSE when not connected, VFW_E_NOT_STOPPED.
  STDMETHODIMP Disconnect() override;
  // VFW_E_NOT_CONNECTED, with the output null or all zero. [any thread]
  STDMETHODIMP ConnectedTo(IPin** out) override;
  STDMETHODIMP ConnectionMediaType(AM_MEDIA_TYPE* out) override;

  // IPin, description. [any thread]
  STDMETHODIMP QueryPinInfo(PIN_INFO* info) override;
  STDMETHODIMP QueryDirection(PIN_DIRECTION* direction) override;
  STDMETHODIMP QueryId(LPWSTR* id) override;
  // S_OK or S_FALSE.
  STDMETHODIMP QueryAccept(const AM_MEDIA_TYPE* type) override;
  STDMETHODIMP EnumMediaTypes(IEnumMediaTypes** out) override;
  STDMETHODIMP QueryInternalConnections(IPin** pins, ULONG* count) override;

  // IPin, stream: only an input pin takes these. E_UNEXPECTED.
  STDMETHODIMP EndOfStream() override { return E_UNEXPECTED; }
  STDMETHODIMP BeginFlush() override { return E_UNEXPECTED; }
  STDMETHODIMP EndFlush() override { return E_UNEXPECTED; }
  STDMETHODIMP NewSegment(REFERENCE_TIME, REFERENCE_TIME, double) override { return E_UNEXPECTED; }

  // IQualityControl. The sink is not referenced, like the graph. [any thread]
  STDMETHODIMP Notify(IBaseFilter* sender, Quality quality) override;
  STDMETHODIMP SetSink(IQualityControl* sink) override;

  BaseFilter& Filter() noexcept { return filter_; }
  bool IsConnected() const noexcept { return is_connected_.load(); }
  // The connected pin, referenced, or none. [any thread]
  ComPtr<IPin> Peer() noexcept;
  IQualityControl* QualitySink() const noexcept { return quality_sink_.load(); }
  const wchar_t* Name() const noexcept { return name_; }
  // What graphs store to find the pin again.
  virtual const wchar_t* Id() const noexcept { return name_; }
  PIN_DIRECTION Direction() const noexcept { return direction_; }

  // Type `index` of those this pin prefers: S_OK, VFW_S_NO_MORE_ITEMS, or a failure. [any thread]
  virtual HRESULT GetMediaType(int index, MediaType* type);
  // Whether this type may be used now. S_OK; everything else refuses. [any thread]
  virtual HRESULT CheckMediaType(const AM_MEDIA_TYPE& type) = 0;
  // Stores the agreed type. Overriding, call this first. [host with the filter lock; stream on a format change]
  virtual HRESULT SetMediaType(const AM_MEDIA_TYPE& type);
  // A copy of the agreed type. S_OK, VFW_E_NOT_CONNECTED (empty then), E_OUTOFMEMORY. [any thread]
  HRESULT GetConnectionType(MediaType* type) noexcept;

  // State changes of the filter, for connected pins. [host; filter lock held]
  // Stopped to paused: get ready to stream.
  virtual HRESULT Active() { return S_OK; }
  // To stopped: release whatever the streaming thread may be waiting for. Called without the streaming lock.
  virtual HRESULT Inactive() { return S_OK; }
  virtual HRESULT Run(REFERENCE_TIME /*start*/) { return S_OK; }

 protected:
  // The name is not copied: a literal, or owned by the filter.
  BasePin(BaseFilter& filter, PIN_DIRECTION direction, const wchar_t* name) noexcept
      : filter_(filter), direction_(direction), name_(name) {}

  // As ComObject::FindInterface. Without reference.
  virtual IUnknown* FindInterface(REFIID iid) noexcept;

  // Steps of making a connection. [host; filter lock held]
  // May this peer be connected at all? Overriding, call this first; what it acquired is released in BreakConnect.
  virtual HRESULT CheckConnect(IPin* peer);
  // After the peer agreed and the type is set; a failure undoes the connection.
  virtual HRESULT CompleteConnect(IPin* /*peer*/) { return S_OK; }
  // Also called for a connection that failed half-way.
  virtual void BreakConnect() {}

 private:
  HRESULT TryType(IPin* peer, const AM_MEDIA_TYPE& type);
  HRESULT TryTypes(IPin* peer, IEnumMediaTypes* types, const AM_MEDIA_TYPE* partial);
  void SetPeer(IPin* peer) noexcept;
  void DropConnection();

  BaseFilter& filter_;
  const PIN_DIRECTION direction_;
  const wchar_t* const name_;
  std::atomic<bool> is_connected_{false};
  std::atomic<IQualityControl*> quality_sink_{nullptr};

  CriticalSection connection_lock_;  // guards peer_ and media_type_
  ComPtr<IPin> peer_;
  MediaType media_type_;
};

}  // namespace tervan::directshow
