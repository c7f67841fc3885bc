// The effects that the host knows, as data. Another effect is another row.
#pragma once

#include <windows.h>

#include <optional>
#include <span>
#include <string_view>

namespace tervan::host {

struct EffectType {
  std::string_view name;   // on the command line
  std::string_view title;  // for people
  CLSID clsid;
  IID control_interface;
  std::string_view control_interface_name;

  // Registers the window for the effect's notifications, or ends that: some meters are published only while a window
  // is registered. Null without meters.
  HRESULT (*watch_meters)(IUnknown& effect, HWND window, bool is_on);
  // The smallest gain factor in the meters now; nothing when the effect does not tell.
  std::optional<double> (*reduction)(IUnknown& effect);
};

std::span<const EffectType> AllEffects();

}  // namespace tervan::host
