#include "ui/shared_information.h"

namespace tervan::ui {
namespace {

constexpr wchar_t kKey[] = L"Software\\Lumarch\\Shared Information";

}  // namespace

DWORD SharedLocale() {
  DWORD locale = 0;
  DWORD bytes = sizeof locale;
  const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, kKey, L"Locale", RRF_RT_REG_DWORD, nullptr, &locale, &bytes);
  return status == ERROR_SUCCESS ? locale : 0;
}

std::wstring SharedHelpFolder() {
  wchar_t folder[MAX_PATH];
  DWORD bytes = sizeof folder;
  const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, kKey, L"HelpFolder", RRF_RT_REG_SZ, nullptr, folder, &bytes);
  return status == ERROR_SUCCESS ? folder : L"";
}

}  // namespace tervan::ui
