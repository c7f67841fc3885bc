// The module under test: loaded from the path in TERVAN_MODULE, used through its exports and through COM only.
#pragma once
#include <windows.h>

#include <dshow.h>
#include <mmreg.h>

#include <cstring>
#include <utility>
#include <vector>

#include "directshow/com_ptr.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "shell/media_params.h"
#include "shell/plugin_interfaces.h"

namespace tervan::test {

using directshow::ComPtr;
using directshow::Query;

HMODULE TheModule();

// An export by its plain name; a failed test and null when there is none.
template <class Function>
Function* Export(const char* name) {
  const FARPROC found = GetProcAddress(TheModule(), name);
  EXPECT_NE(found, nullptr) << name;
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(found));
}

HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** out);
HRESULT CanUnloadNow();

// A new object of the class, made by the module's own factory.
HRESULT Create(REFCLSID clsid, IUnknown* outer, REFIID iid, void** out);

// A method by its place in the interface's table, as hosts that know nothing of our declarations reach it.
template <class... Arguments>
HRESULT CallSlot(IUnknown* object, int slot, Arguments... arguments) {
  void* const* const table = *reinterpret_cast<void* const* const*>(object);
  const auto method = reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)(IUnknown*, Arguments...)>(table[slot]);
  return method(object, arguments...);
}

// No object of the module may outlive the test that made it.
class ModuleTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(CanUnloadNow(), S_OK) << "left over from before"; }
  void TearDown() override { EXPECT_EQ(CanUnloadNow(), S_OK) << "objects leaked"; }
};

// Counts references; lives on the stack of its test. Interface is one that derives from IUnknown; `own` is its id.
template <class Interface>
class CountedFake : public Interface {
 public:
  explicit CountedFake(const IID& own = __uuidof(Interface)) : own_(own) {}
  virtual ~CountedFake() { EXPECT_EQ(references, 0); }
  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    const bool known = iid == IID_IUnknown || iid == own_;
    *out = known ? static_cast<Interface*>(this) : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references)); }
  STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(InterlockedDecrement(&references)); }

  LONG references = 0;

 private:
  const IID own_;
};

using Commands = std::vector<std::pair<int, int>>;  // (command id, code) of each, oldest first

// A hidden window, with what is posted to it.
class Window {
 public:
  Window() : handle_(CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
    EXPECT_NE(handle_, nullptr);
  }
  ~Window() { Destroy(); }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  void Destroy() {
    if (handle_) DestroyWindow(std::exchange(handle_, nullptr));
  }
  operator HWND() const { return handle_; }
  Commands Take() {
    Commands commands;
    MSG message;
    while (PeekMessageW(&message, handle_, WM_COMMAND, WM_COMMAND, PM_REMOVE)) {
      EXPECT_EQ(message.lParam, 0);
      commands.emplace_back(LOWORD(message.wParam), HIWORD(message.wParam));
    }
    return commands;
  }

 private:
  HWND handle_;
};

}  // namespace tervan::test
