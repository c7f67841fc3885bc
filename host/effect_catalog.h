// The effects that the host knows, as data. Another effect is another row.
#pragma once

#include <windows.h>

#include <optional>
#include <span>
#include <string_view>

namespace tervan::host {

// A setting that is no automatable parameter: one entry of a fixed list, reached through the control interface.
struct Choice {
  std::string_view label;
  std::string_view unit;                    // may be empty
  std::span<const std::string_view> items;  // by the index that the effect keeps
  HRESULT (*get)(IUnknown& effect, INT32* index);
  HRESULT (*set)(IUnknown& effect, INT32 index);
};

struct EffectType {
  std::string_view name;   // on the command line
  std::string_view title;  // for people
  CLSID clsid;
  IID control_interface;
  std::string_view control_interface_name;

  // Registers the window for the effect's notifications, or ends that: some meters are published only while a window
  // is registered. Null without meters.
  HRESULT (*watch_meters)(IUnknown& effect, HWND window, bool is_on) = nullptr;
  // The smallest gain factor in the meters now; nothing when the effect does not tell.
  std::optional<double> (*reduction)(IUnknown& effect) = nullptr;

  std::span<const Choice> choices = {};
};

std::span<const EffectType> AllEffects();

}  // namespace tervan::host
