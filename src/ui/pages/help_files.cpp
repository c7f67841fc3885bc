#include "ui/pages/help_files.h"

#include <htmlhelp.h>

#include "ui/shared_information.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

std::wstring ModulePath() {
  wchar_t path[MAX_PATH];
  const DWORD length = GetModuleFileNameW(ResourceModule(), path, MAX_PATH);
  return length < MAX_PATH ? std::wstring(path, length) : std::wstring();
}

std::wstring Located(const std::wstring& shared_folder, const std::wstring& module_folder, const std::wstring& name) {
  const std::wstring shared = shared_folder.empty() ? std::wstring() : shared_folder + L'\\' + name;
  return FileExists(shared) ? shared : module_folder + name;
}

}  // namespace

bool FileExists(const std::wstring& path) {
  const DWORD attributes = path.empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

HelpFiles LocateHelpFiles() {
  const std::wstring path = ModulePath();
  const size_t name_begin = path.find_last_of(L'\\') + 1;  // 0 without a folder
  const std::wstring name = path.substr(name_begin, path.find_last_of(L'.') - name_begin);
  if (name.empty()) return {};
  const std::wstring module_folder = path.substr(0, name_begin);
  const std::wstring shared_folder = SharedHelpFolder();
  return {Located(shared_folder, module_folder, name + L".chm"), Located(shared_folder, module_folder, name + L".hlp")};
}

// The viewer is loaded when it is first wanted, and stays: its window outlives this call.
bool OpenHtmlHelp(const HelpFiles& files, HWND owner, DWORD context) {
  if (!FileExists(files.html_help)) return false;
  const HMODULE viewer = LoadLibraryW(L"hhctrl.ocx");
  if (!viewer) return false;
  const auto html_help =
      reinterpret_cast<decltype(&HtmlHelpW)>(reinterpret_cast<void (*)()>(GetProcAddress(viewer, "HtmlHelpW")));
  return html_help && html_help(owner, files.html_help.c_str(), HH_HELP_CONTEXT, context);
}

}  // namespace tervan::ui
