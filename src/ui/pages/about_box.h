// The box that names the product, its version and its maker.
#pragma once

#include <windows.h>

namespace tervan::ui {

class AboutBox {
 public:
  // Modal. Other messages are handled meanwhile, so whoever calls may be closed when it returns.
  void Show(HWND owner);
  // For the end of whoever shows it.
  void Close() const;

 private:
  static INT_PTR CALLBACK Procedure(HWND box, UINT message, WPARAM wparam, LPARAM lparam);

  HWND window_ = nullptr;  // while it is shown
};

}  // namespace tervan::ui
