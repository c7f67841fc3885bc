// Texts of a module's string table.
#pragma once

#include <windows.h>

#include <string_view>

namespace tervan::directshow {

// Empty when there is none. It lies in the module itself, without a terminator.
inline std::wstring_view StringResource(HINSTANCE module, UINT id) noexcept {
  const wchar_t* text = nullptr;
  const int length = LoadStringW(module, id, reinterpret_cast<LPWSTR>(&text), 0);  // 0: its address instead of a copy
  return {text, static_cast<size_t>(length)};
}

}  // namespace tervan::directshow
