// The object that a screen reader asks about one of our controls.
#pragma once

#include <windows.h>

#include <oleacc.h>

#include "directshow/com_object.h"
#include "ui/control_window.h"

namespace tervan::ui {

// Answers for the control as long as there is one, and with CO_E_OBJNOTCONNECTED after that. Calls arrive on the
// window's thread: the platform sees to that.
class AccessibleControl final : public directshow::Implements<directshow::ComObject, IAccessible> {
 public:
  AccessibleControl(HWND window, ControlWindow& parts) : Implements(nullptr), window_(window), parts_(&parts) {}
  void Detach() noexcept { parts_ = nullptr; }

  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }

  STDMETHODIMP get_accParent(IDispatch** parent) override;
  STDMETHODIMP get_accChildCount(LONG* count) override;
  STDMETHODIMP get_accChild(VARIANT child, IDispatch** object) override;
  STDMETHODIMP get_accName(VARIANT child, BSTR* name) override;
  STDMETHODIMP get_accValue(VARIANT child, BSTR* value) override;
  STDMETHODIMP get_accDescription(VARIANT, BSTR* text) override { return NoText(text); }
  STDMETHODIMP get_accRole(VARIANT child, VARIANT* role) override;
  STDMETHODIMP get_accState(VARIANT child, VARIANT* state) override;
  STDMETHODIMP get_accHelp(VARIANT, BSTR* text) override { return NoText(text); }
  STDMETHODIMP get_accHelpTopic(BSTR* file, VARIANT, LONG*) override { return NoText(file); }
  STDMETHODIMP get_accKeyboardShortcut(VARIANT, BSTR* text) override { return NoText(text); }
  STDMETHODIMP get_accFocus(VARIANT* child) override;
  STDMETHODIMP get_accSelection(VARIANT* children) override;
  STDMETHODIMP get_accDefaultAction(VARIANT child, BSTR* action) override;
  STDMETHODIMP accSelect(LONG flags, VARIANT child) override;
  STDMETHODIMP accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) override;
  STDMETHODIMP accNavigate(LONG, VARIANT, VARIANT* end) override;
  STDMETHODIMP accHitTest(LONG left, LONG top, VARIANT* child) override;
  STDMETHODIMP accDoDefaultAction(VARIANT child) override;
  STDMETHODIMP put_accName(VARIANT, BSTR) override { return DISP_E_MEMBERNOTFOUND; }
  STDMETHODIMP put_accValue(VARIANT, BSTR) override { return DISP_E_MEMBERNOTFOUND; }

 protected:
  IUnknown* FindInterface(REFIID iid) noexcept override;

 private:
  static HRESULT NoText(BSTR* text);
  // S_OK with the part's number; CO_E_OBJNOTCONNECTED without a control, E_INVALIDARG for a part that there is not.
  HRESULT PartOf(const VARIANT& child, int* part) const;
  template <class Get>
  HRESULT TextOf(const VARIANT& child, BSTR* text, Get get) const;

  const HWND window_;
  ControlWindow* parts_;  // null: the window is gone
};

}  // namespace tervan::ui
