// The text that names an effect and its settings on the command line:
//
//   NAME[:KEY=VALUE]...      compressor:preset=2:1 compression starting at -18 dB:threshold=-20:auto-gain=on
//
// A colon starts a new setting only where a key and "=" follow, so values may hold colons, as preset names and paths
// do. A value in double quotes is taken as it is.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tervan::host {

// Keys that do not name a parameter.
inline constexpr std::string_view kPresetKey = "preset";
inline constexpr std::string_view kLoadKey = "load";
inline constexpr std::string_view kSaveKey = "save";

struct Setting {
  std::string key;
  std::string value;
};

struct EffectRequest {
  std::string name;
  std::vector<Setting> settings;  // in the order in which they are applied
};

// Throws a UsageError.
EffectRequest ParseEffectRequest(std::string_view text);

}  // namespace tervan::host
