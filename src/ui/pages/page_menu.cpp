#include "ui/pages/page_menu.h"

#include <algorithm>
#include <string>

#include "directshow/com_ptr.h"
#include "resources/ids.h"
#include "shell/plugin_interfaces.h"
#include "ui/gdi.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

using directshow::ComPtr;

constexpr LONG kMaxPresetCount = 40999;  // whatever an object says
constexpr int kMaxNameLength = 260;      // with its terminator

// As a menu shows it: an ampersand by itself would underline the letter behind it.
std::wstring MenuText(const wchar_t* name) {
  std::wstring text;
  for (; *name; ++name) text.append(*name == L'&' ? 2 : 1, *name);
  if (text.size() >= kMaxNameLength) text.resize(kMaxNameLength - 1);
  return text;
}

// Preset 0 stands for the effect as it is made and is not offered.
void AppendPresets(HMENU menu, IUnknown* object) {
  const ComPtr<IPluginPresets> presets = directshow::Query<IPluginPresets>(object);
  LONG count = 0;
  if (!presets || FAILED(presets->GetPresetCount(&count))) return;
  UINT id = ID_PRESET_FIRST;
  for (LONG preset = 1; preset < std::min(count, kMaxPresetCount) && id <= ID_PRESET_LAST; ++preset) {
    wchar_t name[kMaxNameLength] = {};
    if (FAILED(presets->GetPresetName(preset, name, kMaxNameLength))) continue;
    AppendMenuW(menu, MF_STRING, id++, MenuText(name).c_str());
  }
}

MenuHandle BuildMenu(IUnknown* object) {
  MenuHandle menu(CreatePopupMenu());
  MenuHandle presets(CreatePopupMenu());
  if (!menu || !presets) return nullptr;
  AppendPresets(presets.get(), object);
  const auto submenu = reinterpret_cast<UINT_PTR>(presets.get());
  if (!AppendMenuW(menu.get(), MF_POPUP, submenu, ResourceText(IDS_MENU_PRESETS).c_str())) return nullptr;
  static_cast<void>(presets.release());  // goes with the menu from now on
  AppendMenuW(menu.get(), MF_SEPARATOR, 0, nullptr);
  AppendMenuW(menu.get(), MF_STRING, ID_HELP, ResourceText(IDS_MENU_HELP).c_str());
  AppendMenuW(menu.get(), MF_STRING, ID_ABOUT, ResourceText(IDS_MENU_ABOUT).c_str());
  return menu;
}

}  // namespace

void ShowPageMenu(HWND page, IUnknown* object, Point at) {
  const MenuHandle menu = BuildMenu(object);
  if (!menu) return;
  if (at.x < 0 || at.y < 0) {
    RECT bounds;
    GetWindowRect(page, &bounds);
    const Rect page_bounds = FromRECT(bounds);
    at = {page_bounds.left + page_bounds.Width() / 2, page_bounds.top + page_bounds.Height() / 4};
  }
  TrackPopupMenu(menu.get(), TPM_RIGHTBUTTON, at.x, at.y, 0, page, nullptr);
}

void ApplyPresetOfCommand(IUnknown* object, int command_id) {
  if (const ComPtr<IPluginPresets> presets = directshow::Query<IPluginPresets>(object)) {
    presets->ApplyPreset(command_id - ID_PRESET_FIRST + 1);
  }
}

}  // namespace tervan::ui
