// A property page: a dialog from a resource that a frame shows for one object. Derived pages fill in the hooks.
#pragma once
#include <windows.h>

#include <ocidl.h>

#include "directshow/com_object.h"
#include "directshow/com_ptr.h"

namespace tervan::directshow {

// Everything runs on the thread of the frame's windows: no locks. Hooks may throw std::bad_alloc, which becomes
// E_OUTOFMEMORY, or a message that was not handled.
class PropertyPage : public Implements<ComObject, IPropertyPage> {
 public:
  // S_OK; E_UNEXPECTED for a second site, or for none to drop.
  STDMETHODIMP SetPageSite(IPropertyPageSite* site) override;
  // Creates and shows the dialog, with or without an object. E_POINTER, E_UNEXPECTED when it is there already,
  // E_OUTOFMEMORY when the window cannot be made, or what OnActivate fails with (no window stays then).
  STDMETHODIMP Activate(HWND parent, LPCRECT area, BOOL is_modal) override;
  // E_UNEXPECTED without a dialog.
  STDMETHODIMP Deactivate() override;
  // Title in task memory and the dialog's size in pixels; no texts on help. E_POINTER, E_OUTOFMEMORY.
  STDMETHODIMP GetPageInfo(PROPPAGEINFO* info) override;
  // One object connects, none disconnects: what the hook answers. E_POINTER, E_UNEXPECTED for several.
  STDMETHODIMP SetObjects(ULONG count, IUnknown** objects) override;
  // SW_SHOW, SW_SHOWNORMAL or SW_HIDE, else E_INVALIDARG. E_UNEXPECTED without a dialog.
  STDMETHODIMP Show(UINT command) override;
  // E_POINTER, E_UNEXPECTED without a dialog.
  STDMETHODIMP Move(LPCRECT area) override;
  // S_FALSE: what is changed on a page takes effect at once.
  STDMETHODIMP IsPageDirty() override { return S_FALSE; }
  // S_OK, there is nothing to apply. E_UNEXPECTED without an object or a site.
  STDMETHODIMP Apply() override { return has_object_ && site_ ? S_OK : E_UNEXPECTED; }
  STDMETHODIMP Help(LPCOLESTR /*help_dir*/) override { return E_NOTIMPL; }
  STDMETHODIMP TranslateAccelerator(MSG* /*message*/) override { return E_NOTIMPL; }

 protected:
  // Dialog and title are resources of this module.
  PropertyPage(IUnknown* outer, HINSTANCE module, int dialog_id, int title_id) noexcept
      : Implements(outer), module_(module), dialog_id_(dialog_id), title_id_(title_id) {}

  IUnknown* FindInterface(REFIID iid) noexcept override;
  // A page that is released while it is shown takes its window along.
  void OnLastRelease() noexcept override {
    if (dialog_) DestroyWindow(dialog_);
  }

  virtual HRESULT OnConnect(IUnknown* /*object*/) { return S_OK; }
  virtual HRESULT OnDisconnect() { return S_OK; }
  virtual HRESULT OnActivate() { return S_OK; }
  virtual HRESULT OnDeactivate() { return S_OK; }
  // Every message of the dialog from WM_INITDIALOG on; the answer is that of a dialog procedure.
  virtual INT_PTR OnReceiveMessage(HWND /*dialog*/, UINT /*message*/, WPARAM /*wparam*/, LPARAM /*lparam*/) {
    return FALSE;
  }

  // Null while there is no dialog; set before OnReceiveMessage sees WM_INITDIALOG.
  HWND Dialog() const noexcept { return dialog_; }
  HINSTANCE Module() const noexcept { return module_; }

 private:
  static INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam);

  const HINSTANCE module_;
  const int dialog_id_;
  const int title_id_;
  HWND dialog_ = nullptr;
  ComPtr<IPropertyPageSite> site_;
  bool has_object_ = false;
};

}  // namespace tervan::directshow
