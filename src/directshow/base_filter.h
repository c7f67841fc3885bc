// A filter: state machine, pins, graph membership, registration. Generic; sources, transforms and writers derive from
// it.
//
// Locks, in the order in which they are taken:
//   1. FilterLock     state changes and connections. Held while peers are asked during a connection (they call back on
//                     the same thread, and the lock is recursive), never by the streaming thread.
//   2. StreamingLock  held by Receive, EndOfStream and NewSegment, also while they deliver downstream. A state change
//                     takes it second, after everything on which the streaming thread could wait has been released.
//   3. Leaf locks     (graph_lock_, a pin's connection_lock_) guard a few members; nothing of another filter is called
//                     under them except AddRef.
// Queries that a peer may make while samples flow (QueryAccept, ConnectedTo, GetState, quality, flushing...) take leaf
// locks only, so none of them can wait for a blocked Receive or for a Stop in progress.
//
// Hooks do not throw: they are called from COM methods.
#pragma once
#include <windows.h>

#include <dshow.h>

#include <atomic>

#include "directshow/com_object.h"
#include "directshow/com_ptr.h"
#include "directshow/critical_section.h"
#include "directshow/registration.h"

namespace tervan::directshow {

class BasePin;

class BaseFilter : public Implements<ComObject, IBaseFilter, IAMovieSetup> {
 public:
  // Pins in the order in which they are enumerated, inputs first. They live as long as the filter, always the same
  // ones.
  virtual int PinCount() noexcept = 0;
  virtual BasePin* PinAt(int index) noexcept = 0;  // 0 <= index < PinCount()

  // IPersist. E_POINTER.
  STDMETHODIMP GetClassID(CLSID* clsid) override;

  // IMediaFilter. State changes answer S_OK or what a hook or pin failed with. [host]
  STDMETHODIMP Stop() override;
  STDMETHODIMP Pause() override;
  STDMETHODIMP Run(REFERENCE_TIME start) override;
  // S_OK at once, whatever the timeout; E_POINTER. [any thread]
  STDMETHODIMP GetState(DWORD timeout_ms, FILTER_STATE* state) override;
  STDMETHODIMP SetSyncSource(IReferenceClock* clock) override;
  STDMETHODIMP GetSyncSource(IReferenceClock** clock) override;

  // IBaseFilter
  STDMETHODIMP EnumPins(IEnumPins** out) override;
  // By id, or by name. VFW_E_NOT_FOUND.
  STDMETHODIMP FindPin(LPCWSTR id, IPin** out) override;
  STDMETHODIMP QueryFilterInfo(FILTER_INFO* info) override;
  // The graph is not referenced: it owns its filters, and tells them when it goes.
  STDMETHODIMP JoinFilterGraph(IFilterGraph* graph, LPCWSTR name) override;
  STDMETHODIMP QueryVendorInfo(LPWSTR* info) override;

  // IAMovieSetup: enters or removes Setup() in the filter mapper. S_FALSE for a filter without one.
  STDMETHODIMP Register() override;
  STDMETHODIMP Unregister() override;

  FILTER_STATE State() const noexcept { return state_.load(); }
  bool IsStopped() const noexcept { return State() == State_Stopped; }
  CriticalSection& FilterLock() noexcept { return filter_lock_; }
  CriticalSection& StreamingLock() noexcept { return streaming_lock_; }

  ComPtr<IReferenceClock> Clock() noexcept;
  ComPtr<IFilterGraph> Graph() noexcept;
  // Sends an event to the graph; EC_COMPLETE carries this filter. E_NOTIMPL without a graph. [any thread]
  HRESULT NotifyGraph(long code, LONG_PTR parameter1, LONG_PTR parameter2) noexcept;
  // Has the graph connect a pin of this filter to its present peer again, with this type. VFW_E_NOT_IN_GRAPH.
  HRESULT Reconnect(IPin* pin, const AM_MEDIA_TYPE& type) noexcept;

 protected:
  BaseFilter(IUnknown* outer, REFCLSID clsid) noexcept : Implements(outer), clsid_(clsid) {}

  IUnknown* FindInterface(REFIID iid) noexcept override;

  // Stopped to paused, before the connected pins are made active. A failure keeps the filter stopped.
  // [host; filter lock and streaming lock held]
  virtual HRESULT OnStart() { return S_OK; }
  // To stopped, after the pins were made inactive and the streaming thread has left. The filter stops even when this
  // fails. [host; filter lock and streaming lock held]
  virtual HRESULT OnStop() { return S_OK; }
  virtual const FilterSetup* Setup() noexcept { return nullptr; }

 private:
  HRESULT ActivatePins();
  HRESULT DeactivatePins();

  const CLSID clsid_;
  CriticalSection filter_lock_;
  CriticalSection streaming_lock_;
  std::atomic<FILTER_STATE> state_{State_Stopped};  // written under the filter lock, to stopped under both

  CriticalSection graph_lock_;  // guards the members below
  ComPtr<IReferenceClock> clock_;
  IFilterGraph* graph_ = nullptr;
  IMediaEventSink* event_sink_ = nullptr;  // the graph's; not referenced either
  WCHAR name_[MAX_FILTER_NAME] = {};
};

}  // namespace tervan::directshow
