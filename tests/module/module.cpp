#include "module/module.h"

#include <cstdlib>

namespace tervan::test {
namespace {

class Environment final : public testing::Environment {
 public:
  void SetUp() override {
    ASSERT_HRESULT_SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    const wchar_t* const path = _wgetenv(L"TERVAN_MODULE");
    ASSERT_NE(path, nullptr) << "TERVAN_MODULE names the module to test";
    module = LoadLibraryW(path);
    ASSERT_NE(module, nullptr) << "error " << GetLastError();
  }
  void TearDown() override {
    FreeLibrary(module);
    CoUninitialize();
  }
  HMODULE module = nullptr;
};

Environment* const environment = new Environment;
const testing::Environment* const registered = testing::AddGlobalTestEnvironment(environment);

}  // namespace

HMODULE TheModule() { return environment->module; }

HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** out) {
  static auto* const get = Export<HRESULT STDMETHODCALLTYPE(REFCLSID, REFIID, void**)>("DllGetClassObject");
  return get(clsid, iid, out);
}

HRESULT CanUnloadNow() {
  static auto* const can_unload = Export<HRESULT STDMETHODCALLTYPE()>("DllCanUnloadNow");
  return can_unload();
}

HRESULT Create(REFCLSID clsid, IUnknown* outer, REFIID iid, void** out) {
  ComPtr<IClassFactory> factory;
  const HRESULT result = GetClassObject(clsid, IID_IClassFactory, factory.PutVoid());
  return FAILED(result) ? result : factory->CreateInstance(outer, iid, out);
}

}  // namespace tervan::test
