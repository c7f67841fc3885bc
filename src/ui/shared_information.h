// What the maker's products share on a machine: two values under the local machine's registry key of that name.
#pragma once

#include <windows.h>

#include <string>

namespace tervan::ui {

DWORD SharedLocale();             // 0 when there is none
std::wstring SharedHelpFolder();  // empty when there is none

}  // namespace tervan::ui
