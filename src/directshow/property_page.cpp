#include "directshow/property_page.h"

#include <algorithm>
#include <new>

#include "directshow/string_resource.h"

namespace tervan::directshow {
namespace {

INT_PTR CALLBACK EmptyDialogProc(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

// The size in pixels depends on the dialog's font, so a hidden one is made and measured.
SIZE MeasureDialog(HINSTANCE module, int dialog_id) {
  SIZE size = {300, 150};  // for a dialog that cannot be made
  const HWND dialog = CreateDialogParamW(module, MAKEINTRESOURCEW(dialog_id), GetDesktopWindow(), EmptyDialogProc, 0);
  if (!dialog) return size;
  RECT bounds;
  if (GetWindowRect(dialog, &bounds)) size = {bounds.right - bounds.left, bounds.bottom - bounds.top};
  DestroyWindow(dialog);
  return size;
}

HRESULT LoadTitle(HINSTANCE module, int title_id, LPOLESTR* title) {
  const std::wstring_view text = StringResource(module, title_id);
  *title = static_cast<LPOLESTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
  if (!*title) return E_OUTOFMEMORY;
  *std::copy(text.begin(), text.end(), *title) = L'\0';
  return S_OK;
}

}  // namespace

IUnknown* PropertyPage::FindInterface(REFIID iid) noexcept {
  return FindIn(iid, {{IID_IPropertyPage, static_cast<IPropertyPage*>(this)}});
}

STDMETHODIMP PropertyPage::SetPageSite(IPropertyPageSite* site) {
  if ((site != nullptr) == static_cast<bool>(site_)) return E_UNEXPECTED;
  site_ = ComPtr<IPropertyPageSite>(site);
  return S_OK;
}

STDMETHODIMP PropertyPage::Activate(HWND parent, LPCRECT area, BOOL) {
  if (!area) return E_POINTER;
  if (dialog_) return E_UNEXPECTED;
  CreateDialogParamW(module_, MAKEINTRESOURCEW(dialog_id_), parent, DialogProc, reinterpret_cast<LPARAM>(this));
  if (!dialog_) return E_OUTOFMEMORY;
  const HRESULT result = OnActivate();
  if (FAILED(result)) {
    DestroyWindow(dialog_);
    return result;
  }
  Move(area);
  return Show(SW_SHOWNORMAL);
}

STDMETHODIMP PropertyPage::Deactivate() {
  if (!dialog_) return E_UNEXPECTED;
  const HRESULT result = OnDeactivate();
  DestroyWindow(dialog_);
  return result;
}

STDMETHODIMP PropertyPage::GetPageInfo(PROPPAGEINFO* info) {
  if (!info) return E_POINTER;
  LPOLESTR title;
  const HRESULT result = LoadTitle(module_, title_id_, &title);
  if (FAILED(result)) return result;
  *info = {};
  info->cb = sizeof(PROPPAGEINFO);
  info->pszTitle = title;
  info->size = MeasureDialog(module_, dialog_id_);
  return S_OK;
}

STDMETHODIMP PropertyPage::SetObjects(ULONG count, IUnknown** objects) try {
  if (count > 1) return E_UNEXPECTED;
  if (count == 0) {
    has_object_ = false;
    return OnDisconnect();
  }
  if (!objects || !objects[0]) return E_POINTER;
  const HRESULT result = OnConnect(objects[0]);
  has_object_ = SUCCEEDED(result);
  return result;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

STDMETHODIMP PropertyPage::Show(UINT command) {
  if (!dialog_) return E_UNEXPECTED;
  if (command != SW_SHOW && command != SW_SHOWNORMAL && command != SW_HIDE) return E_INVALIDARG;
  ShowWindow(dialog_, static_cast<int>(command));
  InvalidateRect(dialog_, nullptr, TRUE);
  return S_OK;
}

STDMETHODIMP PropertyPage::Move(LPCRECT area) {
  if (!area) return E_POINTER;
  if (!dialog_) return E_UNEXPECTED;
  MoveWindow(dialog_, area->left, area->top, area->right - area->left, area->bottom - area->top, TRUE);
  return S_OK;
}

INT_PTR CALLBACK PropertyPage::DialogProc(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(dialog, DWLP_USER, lparam);
    reinterpret_cast<PropertyPage*>(lparam)->dialog_ = dialog;
  }
  // Messages that come before WM_INITDIALOG find no page yet.
  auto* const page = reinterpret_cast<PropertyPage*>(GetWindowLongPtrW(dialog, DWLP_USER));
  if (!page) return FALSE;
  // Whoever destroyed the window, be it its parent: the page has none now.
  if (message == WM_NCDESTROY) page->dialog_ = nullptr;
  try {
    return page->OnReceiveMessage(dialog, message, wparam, lparam);
  } catch (const std::bad_alloc&) {
    return FALSE;
  }
}

}  // namespace tervan::directshow
