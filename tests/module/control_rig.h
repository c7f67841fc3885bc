// A control of the module's in a window that listens to it, as in a dialog of any program.
#pragma once
#include <oleacc.h>

#include <string>

#include "module/module.h"

namespace tervan::test {

class ControlTest : public ModuleTest {
 protected:
  static constexpr int kId = 77;  // of the control
  static constexpr LPARAM kCreationParameter = 78;

  void SetUp() override {
    ModuleTest::SetUp();
    WNDCLASSW own = {};
    own.lpfnWndProc = ParentProcedure;
    own.hbrBackground = static_cast<HBRUSH>(GetStockObject(DKGRAY_BRUSH));
    own.lpszClassName = L"ControlTestParent";
    RegisterClassW(&own);
    parent = CreateWindowW(own.lpszClassName, L"", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 500, 200, nullptr,
                           nullptr, nullptr, nullptr);
    ASSERT_NE(parent, nullptr);
    SetWindowLongPtrW(parent, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  void TearDown() override {
    DestroyWindow(parent);
    ModuleTest::TearDown();
  }

  HWND Make(const wchar_t* class_name, DWORD style, int width, int height) {
    return control = CreateWindowW(class_name, L"", WS_CHILD | WS_VISIBLE | style, 0, 0, width, height, parent,
                                   reinterpret_cast<HMENU>(INT_PTR{kId}), TheModule(),
                                   reinterpret_cast<void*>(kCreationParameter));
  }
  LRESULT Send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
    return SendMessageW(control, message, wparam, lparam);
  }
  // As a screen reader sees it; part 0 is the control itself.
  ComPtr<IAccessible> Accessible() const {
    ComPtr<IAccessible> accessible;
    EXPECT_EQ(AccessibleObjectFromWindow(control, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                         accessible.PutVoid()),
              S_OK);
    return accessible;
  }
  static VARIANT Part(LONG number) {
    VARIANT part = {};
    part.vt = VT_I4;
    part.lVal = number;
    return part;
  }
  using TextOfPart = HRESULT (STDMETHODCALLTYPE IAccessible::*)(VARIANT part, BSTR* text);
  static std::wstring Text(const ComPtr<IAccessible>& accessible, TextOfPart get, LONG part = 0) {
    BSTR text = nullptr;
    EXPECT_EQ((accessible.Get()->*get)(Part(part), &text), S_OK);
    const std::wstring copy = text ? text : L"";
    SysFreeString(text);
    return copy;
  }

  // What the parent is sent.
  virtual void Hear(UINT message, WPARAM wparam, LPARAM lparam) = 0;

  HWND parent = nullptr;
  HWND control = nullptr;

 private:
  static LRESULT CALLBACK ParentProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    auto* const test = reinterpret_cast<ControlTest*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (test) test->Hear(message, wparam, lparam);
    return DefWindowProcW(window, message, wparam, lparam);
  }
};

}  // namespace tervan::test
