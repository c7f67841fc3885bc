#include "directshow/base_pin.h"

#include <utility>

#include "directshow/com_object.h"
#include "directshow/enumerators.h"

namespace tervan::directshow {
namespace {

// Failures that only say "not this type"; anything else is worth telling the caller.
bool IsPlainRefusal(HRESULT result) {
  return result == VFW_E_TYPE_NOT_ACCEPTED || result == VFW_E_NO_ACCEPTABLE_TYPES || result == E_FAIL ||
         result == E_INVALIDARG;
}

}  // namespace

STDMETHODIMP BasePin::QueryInterface(REFIID iid, void** out) {
  return HandOut(IsEqualGUID(iid, IID_IUnknown) ? static_cast<IPin*>(this) : FindInterface(iid), out);
}

STDMETHODIMP_(ULONG) BasePin::AddRef() { return filter_.AddRef(); }

STDMETHODIMP_(ULONG) BasePin::Release() { return filter_.Release(); }

IUnknown* BasePin::FindInterface(REFIID iid) noexcept {
  return FindIn(iid,
                {{IID_IPin, static_cast<IPin*>(this)}, {IID_IQualityControl, static_cast<IQualityControl*>(this)}});
}

STDMETHODIMP BasePin::Connect(IPin* peer, const AM_MEDIA_TYPE* type) {
  if (!peer) return E_POINTER;
  const LockGuard filter(filter_.FilterLock());
  if (IsConnected()) return VFW_E_ALREADY_CONNECTED;
  if (!filter_.IsStopped()) return VFW_E_NOT_STOPPED;
  PIN_DIRECTION peer_direction;
  if (FAILED(peer->QueryDirection(&peer_direction)) || peer_direction == direction_) return VFW_E_INVALID_DIRECTION;
  if (type && !IsPartialMediaType(*type)) return TryType(peer, *type);

  HRESULT telling_failure = VFW_E_NO_ACCEPTABLE_TYPES;
  for (IPin* const chooser : {peer, static_cast<IPin*>(this)}) {
    ComPtr<IEnumMediaTypes> types;
    if (chooser->EnumMediaTypes(types.Put()) != S_OK || !types) continue;
    const HRESULT result = TryTypes(peer, types.Get(), type);
    if (SUCCEEDED(result)) return result;
    if (!IsPlainRefusal(result)) telling_failure = result;
  }
  return telling_failure;
}

HRESULT BasePin::TryTypes(IPin* peer, IEnumMediaTypes* types, const AM_MEDIA_TYPE* partial) {
  HRESULT telling_failure = VFW_E_NO_ACCEPTABLE_TYPES;
  for (;;) {
    AM_MEDIA_TYPE* next = nullptr;
    ULONG fetched = 0;
    if (types->Next(1, &next, &fetched) != S_OK) return telling_failure;
    MediaType type;
    type.Adopt(next);
    if (partial && !MatchesPartialMediaType(type, *partial)) continue;
    const HRESULT result = TryType(peer, type);
    if (SUCCEEDED(result)) return result;
    if (!IsPlainRefusal(result)) telling_failure = result;
  }
}

HRESULT BasePin::TryType(IPin* peer, const AM_MEDIA_TYPE& type) {
  HRESULT result = CheckConnect(peer);
  if (SUCCEEDED(result) && CheckMediaType(type) != S_OK) result = VFW_E_TYPE_NOT_ACCEPTED;
  if (SUCCEEDED(result)) {
    SetPeer(peer);
    result = SetMediaType(type);
  }
  if (SUCCEEDED(result)) result = peer->ReceiveConnection(this, &type);
  if (SUCCEEDED(result)) {
    result = CompleteConnect(peer);
    if (FAILED(result)) peer->Disconnect();
  }
  if (FAILED(result)) DropConnection();
  return result;
}

STDMETHODIMP BasePin::ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) {
  if (!connector || !type) return E_POINTER;
  const LockGuard filter(filter_.FilterLock());
  if (IsConnected()) return VFW_E_ALREADY_CONNECTED;
  if (!filter_.IsStopped()) return VFW_E_NOT_STOPPED;
  HRESULT result = CheckConnect(connector);
  if (SUCCEEDED(result) && CheckMediaType(*type) != S_OK) result = VFW_E_TYPE_NOT_ACCEPTED;
  if (SUCCEEDED(result)) {
    SetPeer(connector);
    result = SetMediaType(*type);
  }
  if (SUCCEEDED(result)) result = CompleteConnect(connector);
  if (FAILED(result)) DropConnection();
  return result;
}

STDMETHODIMP BasePin::Disconnect() {
  const LockGuard filter(filter_.FilterLock());
  if (!filter_.IsStopped()) return VFW_E_NOT_STOPPED;
  if (!IsConnected()) return S_FALSE;
  DropConnection();
  return S_OK;
}

void BasePin::DropConnection() {
  BreakConnect();
  SetPeer(nullptr);
}

void BasePin::SetPeer(IPin* peer) noexcept {
  ComPtr<IPin> replaced(peer);  // released behind the lock: the last reference may destroy a whole filter
  MediaType old_type;
  const LockGuard guard(connection_lock_);
  std::swap(peer_, replaced);
  media_type_.Swap(old_type);
  is_connected_ = peer != nullptr;
}

ComPtr<IPin> BasePin::Peer() noexcept {
  const LockGuard guard(connection_lock_);
  return peer_;
}

HRESULT BasePin::CheckConnect(IPin* peer) {
  PIN_DIRECTION peer_direction;
  const HRESULT result = peer->QueryDirection(&peer_direction);
  if (FAILED(result)) return result;
  return peer_direction == direction_ ? VFW_E_INVALID_DIRECTION : S_OK;
}

HRESULT BasePin::SetMediaType(const AM_MEDIA_TYPE& type) {
  MediaType copy;
  const HRESULT result = copy.Assign(type);
  if (FAILED(result)) return result;
  const LockGuard guard(connection_lock_);
  media_type_.Swap(copy);
  return S_OK;
}

HRESULT BasePin::GetConnectionType(MediaType* type) noexcept {
  type->Clear();
  const LockGuard guard(connection_lock_);
  return peer_ ? type->Assign(media_type_) : VFW_E_NOT_CONNECTED;
}

HRESULT BasePin::GetMediaType(int, MediaType*) { return VFW_S_NO_MORE_ITEMS; }

STDMETHODIMP BasePin::ConnectedTo(IPin** out) {
  if (!out) return E_POINTER;
  *out = Peer().Detach();
  return *out ? S_OK : VFW_E_NOT_CONNECTED;
}

STDMETHODIMP BasePin::ConnectionMediaType(AM_MEDIA_TYPE* out) {
  if (!out) return E_POINTER;
  *out = {};
  const LockGuard guard(connection_lock_);
  return peer_ ? CopyMediaType(out, media_type_) : VFW_E_NOT_CONNECTED;
}

STDMETHODIMP BasePin::QueryPinInfo(PIN_INFO* info) {
  if (!info) return E_POINTER;
  info->pFilter = &filter_;
  info->pFilter->AddRef();
  info->dir = direction_;
  lstrcpynW(info->achName, name_, MAX_PIN_NAME);
  return S_OK;
}

STDMETHODIMP BasePin::QueryDirection(PIN_DIRECTION* direction) {
  if (!direction) return E_POINTER;
  *direction = direction_;
  return S_OK;
}

STDMETHODIMP BasePin::QueryId(LPWSTR* id) { return CopyToTaskMemory(Id(), id); }

STDMETHODIMP BasePin::QueryAccept(const AM_MEDIA_TYPE* type) {
  if (!type) return E_POINTER;
  return CheckMediaType(*type) == S_OK ? S_OK : S_FALSE;
}

STDMETHODIMP BasePin::EnumMediaTypes(IEnumMediaTypes** out) { return CreateMediaTypeEnumerator(*this, out); }

STDMETHODIMP BasePin::QueryInternalConnections(IPin**, ULONG*) { return E_NOTIMPL; }

STDMETHODIMP BasePin::Notify(IBaseFilter*, Quality) { return E_NOTIMPL; }

STDMETHODIMP BasePin::SetSink(IQualityControl* sink) {
  quality_sink_ = sink;
  return S_OK;
}

}  // namespace tervan::directshow
