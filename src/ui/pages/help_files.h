// The module's help files: named after it, with the extensions .chm (HTML Help) and .hlp (WinHelp).
#pragma once

#include <windows.h>

#include <string>

namespace tervan::ui {

struct HelpFiles {
  std::wstring html_help;
  std::wstring win_help;
};

// In the folder that the maker's products share for help when the file is there, else beside the module, where it may
// be missing. Empty when even the module's own path is not to be had.
HelpFiles LocateHelpFiles();

bool FileExists(const std::wstring& path);

// Shows the help file at this context. False when it is missing or the platform has no viewer.
bool OpenHtmlHelp(const HelpFiles& files, HWND owner, DWORD context);

}  // namespace tervan::ui
