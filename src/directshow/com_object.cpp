#include "directshow/com_object.h"

namespace tervan::directshow {

IUnknown* FindIn(REFIID iid, std::initializer_list<InterfaceEntry> entries) noexcept {
  for (const InterfaceEntry& entry : entries) {
    if (IsEqualGUID(iid, entry.iid)) return entry.pointer;
  }
  return nullptr;
}

HRESULT HandOut(IUnknown* found, void** out) noexcept {
  if (!out) return E_POINTER;
  *out = found;
  if (!found) return E_NOINTERFACE;
  found->AddRef();
  return S_OK;
}

ComObject::ComObject(IUnknown* outer) noexcept : outer_(outer ? outer : &inner_) { ++live_count_; }

ComObject::~ComObject() { --live_count_; }

IUnknown* ComObject::FindInterface(REFIID) noexcept { return nullptr; }

STDMETHODIMP ComObject::InnerUnknown::QueryInterface(REFIID iid, void** out) {
  return HandOut(IsEqualGUID(iid, IID_IUnknown) ? this : owner_.FindInterface(iid), out);
}

STDMETHODIMP_(ULONG) ComObject::InnerUnknown::AddRef() { return ++owner_.references_; }

STDMETHODIMP_(ULONG) ComObject::InnerUnknown::Release() {
  const ULONG left = --owner_.references_;
  if (left != 0) return left;
  // Held up meanwhile: a reference that is taken and dropped must not destroy the object again.
  owner_.references_ = 1;
  owner_.OnLastRelease();
  delete &owner_;
  return 0;
}

}  // namespace tervan::directshow
