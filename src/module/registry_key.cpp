#include "module/registry_key.h"

namespace tervan {
namespace {

constexpr DWORD kMaxKeyNameLength = 256;  // the registry's own limit is 255 and a terminator

}  // namespace

HRESULT RegistryKey::Create(HKEY parent, const wchar_t* path) {
  return HRESULT_FROM_WIN32(
      RegCreateKeyExW(parent, path, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr, &key_, nullptr));
}

HRESULT RegistryKey::Open(HKEY parent, const wchar_t* path, REGSAM access) {
  return HRESULT_FROM_WIN32(RegOpenKeyExW(parent, path, 0, access, &key_));
}

HRESULT RegistryKey::SetText(const wchar_t* value_name, const wchar_t* text) {
  const auto bytes = static_cast<DWORD>((lstrlenW(text) + 1) * sizeof(wchar_t));
  return HRESULT_FROM_WIN32(RegSetValueExW(key_, value_name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), bytes));
}

HRESULT DeleteKeyTree(HKEY parent, const wchar_t* path) {
  {
    RegistryKey key;
    if (FAILED(key.Open(parent, path, KEY_READ | KEY_WRITE))) return S_OK;
    wchar_t name[kMaxKeyNameLength];
    DWORD length = kMaxKeyNameLength;
    while (RegEnumKeyExW(key.Get(), 0, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS) {
      const HRESULT deleted = DeleteKeyTree(key.Get(), name);
      if (FAILED(deleted)) return deleted;
      length = kMaxKeyNameLength;
    }
  }
  return HRESULT_FROM_WIN32(RegDeleteKeyW(parent, path));
}

}  // namespace tervan
