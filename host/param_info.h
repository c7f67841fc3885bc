// The parameters of an effect, as IMediaParamInfo or the catalogue describes them, and how people name and write them.
#pragma once

#include <windows.h>

#include <medparam.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/effect_catalog.h"
#include "shell/media_params.h"  // IMediaParams as hosts call it; shadows the toolchain's

namespace tervan::host {

struct ParamDescription {
  std::string label;  // "Attack Time"
  std::string unit;   // may be empty
  MP_TYPE type;
  DWORD curve_caps;  // MP_CAPS_CURVE_...; 0: cannot be automated
  float min;
  float max;
  std::optional<float> neutral;
  std::vector<std::string> items;  // of an enumeration, from min upwards
};

// In the order of their indices. Throws a Failure.
std::vector<ParamDescription> ReadParams(IMediaParamInfo& info);
ParamDescription DescribeChoice(const Choice& choice);

// The parameter with this name or with the only name that begins so. Throws a UsageError.
DWORD FindParam(const std::vector<ParamDescription>& params, std::string_view name, std::string_view effect_name);
// A number, on or off, the text of an item or its number; with or without the unit. Where the items are numbers
// themselves, only their texts count. Throws a UsageError.
float ParseParamValue(const ParamDescription& param, std::string_view text);

// "-60 to 0 dB", "off or on", "6, 12, 18 or 24 dB/octave"
std::string DescribeRange(const ParamDescription& param);
// "float", "integer", "switch" or "choice"
std::string_view TypeName(MP_TYPE type);
// The value as one would write it: "-20", "on", "Low Shelf".
std::string FormatParamValue(const ParamDescription& param, float value);

// Of all curves that the parameter takes.
std::vector<std::string> CurveNames(const ParamDescription& param);
// Throws a UsageError.
MP_CURVE_TYPE ParseCurve(const ParamDescription& param, std::string_view text);

}  // namespace tervan::host
