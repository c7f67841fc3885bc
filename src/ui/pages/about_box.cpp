#include "ui/pages/about_box.h"

#include "resources/ids.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

void SetTitle(HWND box) {
  wchar_t title[128];
  const std::wstring format = ResourceText(IDS_ABOUT_TITLE);
  const std::wstring product = ResourceText(IDS_PRODUCT_NAME);
  wsprintfW(title, format.c_str(), product.c_str());
  SetWindowTextW(box, title);
}

INT_PTR CALLBACK AboutProc(HWND box, UINT message, WPARAM wparam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG: SetTitle(box); return TRUE;
    case WM_COMMAND:
      if (LOWORD(wparam) == IDOK || LOWORD(wparam) == IDCANCEL) EndDialog(box, LOWORD(wparam));
      return TRUE;
  }
  return FALSE;
}

}  // namespace

void ShowAboutBox(HWND owner) { DialogBoxParamW(ResourceModule(), MAKEINTRESOURCEW(IDD_ABOUT), owner, AboutProc, 0); }

}  // namespace tervan::ui
