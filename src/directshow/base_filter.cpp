#include "directshow/base_filter.h"

#include "directshow/base_pin.h"
#include "directshow/enumerators.h"

namespace tervan::directshow {

IUnknown* BaseFilter::FindInterface(REFIID iid) noexcept {
  return FindIn(iid, {{IID_IBaseFilter, static_cast<IBaseFilter*>(this)},
                      {IID_IMediaFilter, static_cast<IMediaFilter*>(this)},
                      {IID_IPersist, static_cast<IPersist*>(static_cast<IBaseFilter*>(this))},
                      {IID_IAMovieSetup, static_cast<IAMovieSetup*>(this)}});
}

STDMETHODIMP BaseFilter::GetClassID(CLSID* clsid) {
  if (!clsid) return E_POINTER;
  *clsid = clsid_;
  return S_OK;
}

STDMETHODIMP BaseFilter::Stop() {
  const LockGuard filter(filter_lock_);
  if (IsStopped()) return S_OK;
  const HRESULT deactivated = DeactivatePins();
  const LockGuard streaming(streaming_lock_);
  state_ = State_Stopped;
  const HRESULT stopped = OnStop();
  return FAILED(deactivated) ? deactivated : stopped;
}

STDMETHODIMP BaseFilter::Pause() {
  const LockGuard filter(filter_lock_);
  if (IsStopped()) {
    HRESULT result;
    {
      const LockGuard streaming(streaming_lock_);
      result = OnStart();
    }
    if (FAILED(result)) return result;
    result = ActivatePins();
    if (FAILED(result)) {
      DeactivatePins();
      const LockGuard streaming(streaming_lock_);
      OnStop();
      return result;
    }
  }
  state_ = State_Paused;
  return S_OK;
}

STDMETHODIMP BaseFilter::Run(REFERENCE_TIME start) {
  if (IsStopped()) {
    const HRESULT result = Pause();  // without the lock: a derived Pause may call downstream
    if (FAILED(result)) return result;
  }
  const LockGuard filter(filter_lock_);
  if (State() != State_Running) {
    for (int i = 0; i < PinCount(); ++i) {
      if (!PinAt(i)->IsConnected()) continue;
      const HRESULT result = PinAt(i)->Run(start);
      if (FAILED(result)) return result;
    }
  }
  state_ = State_Running;
  return S_OK;
}

HRESULT BaseFilter::ActivatePins() {
  for (int i = 0; i < PinCount(); ++i) {
    if (!PinAt(i)->IsConnected()) continue;
    const HRESULT result = PinAt(i)->Active();
    if (FAILED(result)) return result;
  }
  return S_OK;
}

HRESULT BaseFilter::DeactivatePins() {
  HRESULT first_failure = S_OK;
  for (int i = 0; i < PinCount(); ++i) {
    if (!PinAt(i)->IsConnected()) continue;
    const HRESULT result = PinAt(i)->Inactive();
    if (FAILED(result) && SUCCEEDED(first_failure)) first_failure = result;
  }
  return first_failure;
}

STDMETHODIMP BaseFilter::GetState(DWORD, FILTER_STATE* state) {
  if (!state) return E_POINTER;
  *state = State();
  return S_OK;
}

STDMETHODIMP BaseFilter::SetSyncSource(IReferenceClock* clock) {
  ComPtr<IReferenceClock> replaced(clock);
  const LockGuard guard(graph_lock_);
  std::swap(clock_, replaced);
  return S_OK;
}

STDMETHODIMP BaseFilter::GetSyncSource(IReferenceClock** clock) {
  if (!clock) return E_POINTER;
  *clock = Clock().Detach();
  return S_OK;
}

STDMETHODIMP BaseFilter::EnumPins(IEnumPins** out) { return CreatePinEnumerator(*this, out); }

STDMETHODIMP BaseFilter::FindPin(LPCWSTR id, IPin** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  if (!id) return E_POINTER;
  for (int i = 0; i < PinCount(); ++i) {
    if (lstrcmpW(PinAt(i)->Id(), id) != 0 && lstrcmpW(PinAt(i)->Name(), id) != 0) continue;
    *out = PinAt(i);
    (*out)->AddRef();
    return S_OK;
  }
  return VFW_E_NOT_FOUND;
}

STDMETHODIMP BaseFilter::QueryFilterInfo(FILTER_INFO* info) {
  if (!info) return E_POINTER;
  const LockGuard guard(graph_lock_);
  lstrcpynW(info->achName, name_, MAX_FILTER_NAME);
  info->pGraph = graph_;
  if (graph_) graph_->AddRef();
  return S_OK;
}

STDMETHODIMP BaseFilter::JoinFilterGraph(IFilterGraph* graph, LPCWSTR name) {
  const ComPtr<IMediaEventSink> sink = Query<IMediaEventSink>(graph);
  const LockGuard guard(graph_lock_);
  graph_ = graph;
  event_sink_ = sink.Get();
  lstrcpynW(name_, name ? name : L"", MAX_FILTER_NAME);
  return S_OK;
}

STDMETHODIMP BaseFilter::QueryVendorInfo(LPWSTR* info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  return E_NOTIMPL;
}

STDMETHODIMP BaseFilter::Register() {
  const FilterSetup* const setup = Setup();
  if (!setup) return S_FALSE;
  FilterMapper mapper;
  const HRESULT result = mapper.Open();
  return FAILED(result) ? result : mapper.Register(*setup);
}

STDMETHODIMP BaseFilter::Unregister() {
  const FilterSetup* const setup = Setup();
  if (!setup) return S_FALSE;
  FilterMapper mapper;
  const HRESULT result = mapper.Open();
  return FAILED(result) ? result : mapper.Unregister(*setup);
}

ComPtr<IReferenceClock> BaseFilter::Clock() noexcept {
  const LockGuard guard(graph_lock_);
  return clock_;
}

ComPtr<IFilterGraph> BaseFilter::Graph() noexcept {
  const LockGuard guard(graph_lock_);
  return ComPtr<IFilterGraph>(graph_);
}

HRESULT BaseFilter::NotifyGraph(long code, LONG_PTR parameter1, LONG_PTR parameter2) noexcept {
  ComPtr<IMediaEventSink> sink;
  {
    const LockGuard guard(graph_lock_);
    sink = ComPtr<IMediaEventSink>(event_sink_);
  }
  if (!sink) return E_NOTIMPL;
  if (code == EC_COMPLETE) parameter2 = reinterpret_cast<LONG_PTR>(static_cast<IBaseFilter*>(this));
  return sink->Notify(code, parameter1, parameter2);
}

HRESULT BaseFilter::Reconnect(IPin* pin, const AM_MEDIA_TYPE& type) noexcept {
  const ComPtr<IFilterGraph> graph = Graph();
  if (!graph) return VFW_E_NOT_IN_GRAPH;
  const ComPtr<IFilterGraph2> graph2 = Query<IFilterGraph2>(graph.Get());
  return graph2 ? graph2->ReconnectEx(pin, &type) : graph->Reconnect(pin);
}

}  // namespace tervan::directshow
