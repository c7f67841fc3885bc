// Finds the module and creates its effects. A module that is named, or lies beside the program, is loaded directly and
// need not be registered.
#pragma once

#include <windows.h>

#include <dshow.h>

#include <string>

#include "directshow/com_ptr.h"

namespace tervan::host {

class Module {
 public:
  // Loads the module at the path. Without a path: the one beside the program, else the registered one.
  // Throws a Failure. The module stays loaded until the process ends: its objects may outlive this one.
  explicit Module(const std::string& path);

  // Empty for the registered module.
  const std::string& Path() const { return path_; }

  bool HasClass(const CLSID& clsid) const;
  HRESULT GetFactory(const CLSID& clsid, directshow::ComPtr<IClassFactory>* factory) const;
  // Throws a Failure.
  directshow::ComPtr<IBaseFilter> CreateFilter(const CLSID& clsid) const;

  // Throw a Failure; so does a registered module, whose file is not known.
  void Register() const { Call("DllRegisterServer", "register"); }
  void Unregister() const { Call("DllUnregisterServer", "unregister"); }

 private:
  void Call(const char* function, const char* action) const;

  std::string path_;
  HMODULE library_ = nullptr;
};

// While it lives, CoCreateInstance finds a class of the module in this process, registered or not.
class ClassRegistration {
 public:
  // Throws a Failure.
  ClassRegistration(const Module& module, const CLSID& clsid);
  ~ClassRegistration();
  ClassRegistration(const ClassRegistration&) = delete;
  ClassRegistration& operator=(const ClassRegistration&) = delete;

 private:
  DWORD cookie_ = 0;
};

}  // namespace tervan::host
