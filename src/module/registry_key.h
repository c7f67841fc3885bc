// Registry helpers of self-registration. Results are Win32 errors wrapped as HRESULTs.
#pragma once

#include <windows.h>

namespace tervan {

// Owns an open key.
class RegistryKey {
 public:
  RegistryKey() = default;
  ~RegistryKey() {
    if (key_) RegCloseKey(key_);
  }
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;

  HRESULT Create(HKEY parent, const wchar_t* path);
  HRESULT Open(HKEY parent, const wchar_t* path, REGSAM access);
  HRESULT SetText(const wchar_t* value_name, const wchar_t* text);  // a null name sets the default value
  HKEY Get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

// Removes the key with all subkeys, the deepest first. A key that cannot be opened counts as removed.
HRESULT DeleteKeyTree(HKEY parent, const wchar_t* path);

}  // namespace tervan
