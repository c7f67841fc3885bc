#include "host/module_loader.h"

#include <algorithm>

#include "host/effect_catalog.h"
#include "host/failure.h"
#include "host/file_handle.h"
#include "host/text.h"

namespace tervan::host {
namespace {

using directshow::ComPtr;

constexpr const char* kModuleName = "tervanfx.dll";
constexpr DWORD kMaxPathUnits = 32768;

std::string PathBesideProgram() {
  std::wstring program(kMaxPathUnits, L'\0');
  program.resize(GetModuleFileNameW(nullptr, program.data(), kMaxPathUnits));
  const std::string path = Narrow(program);
  return path.substr(0, path.find_last_of("\\/") + 1) + kModuleName;
}

template <class F>
F Export(HMODULE library, const char* name) {
  return reinterpret_cast<F>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

// LoadLibrary looks in places of its own for a name without a folder.
std::wstring AbsolutePath(const std::string& path) {
  std::wstring full(kMaxPathUnits, L'\0');
  full.resize(GetFullPathNameW(Wide(path).c_str(), kMaxPathUnits, full.data(), nullptr));
  return full;
}

}  // namespace

Module::Module(const std::string& path) : path_(path.empty() ? PathBesideProgram() : path) {
  if (path.empty() && !FileExists(path_)) {
    path_.clear();
    const auto effects = AllEffects();
    if (std::ranges::none_of(effects, [&](const EffectType& effect) { return HasClass(effect.clsid); })) {
      throw Failure(std::string("there is no ") + kModuleName +
                    " beside this program and none is registered; --module names one");
    }
    return;
  }
  library_ = LoadLibraryW(AbsolutePath(path_).c_str());
  if (!library_) throw Failure("cannot load the module " + Quoted(path_) + ": " + SystemMessage(GetLastError()));
  if (!GetProcAddress(library_, "DllGetClassObject")) throw Failure(Quoted(path_) + " is not a COM module");
}

HRESULT Module::GetFactory(const CLSID& clsid, ComPtr<IClassFactory>* factory) const {
  if (!library_) {
    return CoGetClassObject(clsid, CLSCTX_INPROC_SERVER, nullptr, __uuidof(IClassFactory), factory->PutVoid());
  }
  const auto get_class_object =
      Export<HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**)>(library_, "DllGetClassObject");
  return get_class_object(clsid, __uuidof(IClassFactory), factory->PutVoid());
}

bool Module::HasClass(const CLSID& clsid) const {
  ComPtr<IClassFactory> factory;
  return SUCCEEDED(GetFactory(clsid, &factory));
}

ComPtr<IBaseFilter> Module::CreateFilter(const CLSID& clsid) const {
  ComPtr<IClassFactory> factory;
  ComPtr<IBaseFilter> filter;
  HRESULT result = GetFactory(clsid, &factory);
  if (SUCCEEDED(result)) result = factory->CreateInstance(nullptr, __uuidof(IBaseFilter), filter.PutVoid());
  if (FAILED(result)) throw Failure("the module does not create the effect: " + SystemMessage(result));
  return filter;
}

void Module::Call(const char* function, const char* action) const {
  if (!library_) throw Failure("there is no tervanfx.dll beside this program; --module names one");
  const auto call = Export<HRESULT(STDAPICALLTYPE*)()>(library_, function);
  if (!call) throw Failure(Quoted(path_) + " does not export " + function);
  const HRESULT result = call();
  if (FAILED(result))
    throw Failure(std::string("cannot ") + action + ' ' + Quoted(path_) + ": " + SystemMessage(result));
}

ClassRegistration::ClassRegistration(const Module& module, const CLSID& clsid) {
  ComPtr<IClassFactory> factory;
  HRESULT result = module.GetFactory(clsid, &factory);
  if (SUCCEEDED(result)) {
    result = CoRegisterClassObject(clsid, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_);
  }
  if (FAILED(result)) throw Failure("the platform does not take a class of the module: " + SystemMessage(result));
}

ClassRegistration::~ClassRegistration() { CoRevokeClassObject(cookie_); }

}  // namespace tervan::host
