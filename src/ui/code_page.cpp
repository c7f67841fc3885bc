#include "ui/code_page.h"

#include <windows.h>

#include <cstring>

namespace tervan::ui {

std::wstring FromSystemCodePage(const char* text) {
  const int length = static_cast<int>(std::strlen(text));
  std::wstring wide(MultiByteToWideChar(CP_ACP, 0, text, length, nullptr, 0), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text, length, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string InSystemCodePage(const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  std::string narrow(WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr), '\0');
  WideCharToMultiByte(CP_ACP, 0, text.data(), length, narrow.data(), static_cast<int>(narrow.size()), nullptr, nullptr);
  return narrow;
}

}  // namespace tervan::ui
