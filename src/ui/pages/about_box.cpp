#include "ui/pages/about_box.h"

#include "resources/ids.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

constexpr int kMaxTextLength = 128;  // with its terminator

void SetTitle(HWND box) {
  wchar_t format[kMaxTextLength];
  wchar_t product[kMaxTextLength];
  wchar_t title[2 * kMaxTextLength];
  LoadStringW(ResourceModule(), IDS_ABOUT_TITLE, format, kMaxTextLength);
  LoadStringW(ResourceModule(), IDS_PRODUCT_NAME, product, kMaxTextLength);
  wsprintfW(title, format, product);
  SetWindowTextW(box, title);
}

}  // namespace

INT_PTR CALLBACK AboutBox::Procedure(HWND box, UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_INITDIALOG:
      reinterpret_cast<AboutBox*>(lparam)->window_ = box;
      SetTitle(box);
      return TRUE;
    case WM_COMMAND:
      if (LOWORD(wparam) == IDOK || LOWORD(wparam) == IDCANCEL) EndDialog(box, LOWORD(wparam));
      return TRUE;
  }
  return FALSE;
}

void AboutBox::Show(HWND owner) {
  DialogBoxParamW(ResourceModule(), MAKEINTRESOURCEW(IDD_ABOUT), owner, Procedure, reinterpret_cast<LPARAM>(this));
  window_ = nullptr;
}

void AboutBox::Close() const {
  if (window_) EndDialog(window_, IDCANCEL);
}

}  // namespace tervan::ui
