#include "ui/accessible_control.h"

namespace tervan::ui {
namespace {

HRESULT GiveNumber(VARIANT* out, LONG number) {
  if (!out) return E_POINTER;
  out->vt = VT_I4;
  out->lVal = number;
  return S_OK;
}

HRESULT GiveNothing(VARIANT* out) {
  if (!out) return E_POINTER;
  out->vt = VT_EMPTY;
  return S_FALSE;
}

}  // namespace

IUnknown* AccessibleControl::FindInterface(REFIID iid) noexcept {
  IUnknown* const accessible = static_cast<IAccessible*>(this);
  return directshow::FindIn(iid, {{__uuidof(IAccessible), accessible}, {IID_IDispatch, accessible}});
}

HRESULT AccessibleControl::NoText(BSTR* text) {
  if (!text) return E_POINTER;
  *text = nullptr;
  return S_FALSE;
}

HRESULT AccessibleControl::PartOf(const VARIANT& child, int* part) const {
  if (!parts_) return CO_E_OBJNOTCONNECTED;
  if (child.vt != VT_I4 || child.lVal < 0 || child.lVal > parts_->PartCount()) return E_INVALIDARG;
  *part = child.lVal;
  return S_OK;
}

template <class Get>
HRESULT AccessibleControl::TextOf(const VARIANT& child, BSTR* text, Get get) const {
  if (!text) return E_POINTER;
  *text = nullptr;
  int part;
  const HRESULT result = PartOf(child, &part);
  if (FAILED(result)) return result;
  try {
    const std::wstring found = (parts_->*get)(part);
    if (found.empty()) return S_FALSE;
    *text = SysAllocStringLen(found.data(), static_cast<UINT>(found.size()));
  } catch (...) {  // out of memory
  }
  return *text ? S_OK : E_OUTOFMEMORY;
}

STDMETHODIMP AccessibleControl::GetTypeInfoCount(UINT* count) {
  if (!count) return E_POINTER;
  *count = 0;
  return S_OK;
}

STDMETHODIMP AccessibleControl::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info) *info = nullptr;
  return E_NOTIMPL;
}

STDMETHODIMP AccessibleControl::get_accParent(IDispatch** parent) {
  if (!parent) return E_POINTER;
  *parent = nullptr;
  if (!parts_) return CO_E_OBJNOTCONNECTED;
  return AccessibleObjectFromWindow(window_, static_cast<DWORD>(OBJID_WINDOW), IID_IDispatch,
                                    reinterpret_cast<void**>(parent));
}

STDMETHODIMP AccessibleControl::get_accChildCount(LONG* count) {
  if (!count) return E_POINTER;
  *count = parts_ ? parts_->PartCount() : 0;
  return parts_ ? S_OK : CO_E_OBJNOTCONNECTED;
}

// Parts are no objects of their own: they are asked about by number.
STDMETHODIMP AccessibleControl::get_accChild(VARIANT child, IDispatch** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  int part;
  const HRESULT result = PartOf(child, &part);
  return FAILED(result) ? result : S_FALSE;
}

STDMETHODIMP AccessibleControl::get_accName(VARIANT child, BSTR* name) {
  return TextOf(child, name, &AccessibleParts::PartName);
}

STDMETHODIMP AccessibleControl::get_accValue(VARIANT child, BSTR* value) {
  return TextOf(child, value, &AccessibleParts::PartValue);
}

STDMETHODIMP AccessibleControl::get_accDefaultAction(VARIANT child, BSTR* action) {
  return TextOf(child, action, &AccessibleParts::PartAction);
}

STDMETHODIMP AccessibleControl::get_accRole(VARIANT child, VARIANT* role) {
  int part;
  const HRESULT result = PartOf(child, &part);
  return FAILED(result) ? result : GiveNumber(role, parts_->PartRole(part));
}

STDMETHODIMP AccessibleControl::get_accState(VARIANT child, VARIANT* state) {
  int part;
  const HRESULT result = PartOf(child, &part);
  return FAILED(result) ? result : GiveNumber(state, parts_->PartState(part));
}

STDMETHODIMP AccessibleControl::get_accFocus(VARIANT* child) {
  if (!parts_) return CO_E_OBJNOTCONNECTED;
  if (GetFocus() != window_) return GiveNothing(child);
  for (int part = parts_->PartCount(); part > 0; --part) {
    if ((parts_->PartState(part) & STATE_SYSTEM_FOCUSED) != 0) return GiveNumber(child, part);
  }
  return GiveNumber(child, CHILDID_SELF);
}

STDMETHODIMP AccessibleControl::get_accSelection(VARIANT* children) { return GiveNothing(children); }

STDMETHODIMP AccessibleControl::accSelect(LONG flags, VARIANT child) {
  int part;
  const HRESULT result = PartOf(child, &part);
  if (FAILED(result)) return result;
  if ((flags & SELFLAG_TAKEFOCUS) == 0 || (parts_->PartState(part) & STATE_SYSTEM_FOCUSABLE) == 0) return S_FALSE;
  SetFocus(window_);
  return S_OK;
}

STDMETHODIMP AccessibleControl::accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) {
  if (!left || !top || !width || !height) return E_POINTER;
  int part;
  const HRESULT result = PartOf(child, &part);
  if (FAILED(result)) return result;
  RECT bounds = ToRECT(parts_->PartBounds(part));
  MapWindowPoints(window_, nullptr, reinterpret_cast<POINT*>(&bounds), 2);
  *left = bounds.left;
  *top = bounds.top;
  *width = bounds.right - bounds.left;
  *height = bounds.bottom - bounds.top;
  return S_OK;
}

STDMETHODIMP AccessibleControl::accNavigate(LONG, VARIANT, VARIANT* end) { return GiveNothing(end); }

STDMETHODIMP AccessibleControl::accHitTest(LONG left, LONG top, VARIANT* child) {
  if (!parts_) return CO_E_OBJNOTCONNECTED;
  POINT point = {left, top};
  ScreenToClient(window_, &point);
  const Point client = {static_cast<int>(point.x), static_cast<int>(point.y)};
  if (!parts_->PartBounds(CHILDID_SELF).Contains(client)) return GiveNothing(child);
  return GiveNumber(child, parts_->PartAt(client));
}

STDMETHODIMP AccessibleControl::accDoDefaultAction(VARIANT child) {
  int part;
  const HRESULT result = PartOf(child, &part);
  if (FAILED(result)) return result;
  try {
    if (parts_->PartAction(part).empty()) return DISP_E_MEMBERNOTFOUND;
    const ControlWindow::Keep keep(*parts_);
    parts_->PressPart(part);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
  return S_OK;
}

}  // namespace tervan::ui
