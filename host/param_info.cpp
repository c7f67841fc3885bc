#include "host/param_info.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "directshow/com_ptr.h"
#include "host/failure.h"
#include "host/text.h"

namespace tervan::host {
namespace {

struct CurveName {
  std::string_view name;
  MP_CURVE_TYPE curve;  // also its bit in curve_caps
};
constexpr CurveName kCurves[] = {{"jump", MP_CURVE_JUMP},
                                 {"linear", MP_CURVE_LINEAR},
                                 {"square", MP_CURVE_SQUARE},
                                 {"invsquare", MP_CURVE_INVSQUARE},
                                 {"sine", MP_CURVE_SINE}};

void Check(HRESULT result) {
  if (FAILED(result)) throw Failure("the effect does not describe its parameters: " + SystemMessage(result));
}

// label NUL unit NUL item NUL ... item NUL NUL; without items label NUL unit NUL NUL NUL
std::vector<std::string> SplitParamText(const WCHAR* text) {
  std::vector<std::string> parts;
  while (parts.size() < 2 || *text) {
    parts.push_back(Narrow(text));
    text += wcslen(text) + 1;
  }
  return parts;
}

ParamDescription ReadParam(IMediaParamInfo& info, DWORD index) {
  MP_PARAMINFO numbers;
  Check(info.GetParamInfo(index, &numbers));
  WCHAR* text = nullptr;
  Check(info.GetParamText(index, &text));
  const directshow::CoTaskMemPtr<WCHAR> owner(text);
  const std::vector<std::string> parts = SplitParamText(text);
  return {.label = parts[0],
          .unit = parts[1],
          .type = numbers.mpType,
          .curve_caps = numbers.mopCaps,
          .min = numbers.mpdMinValue,
          .max = numbers.mpdMaxValue,
          .neutral = numbers.mpdNeutralValue,
          .items = {parts.begin() + 2, parts.end()}};
}

std::string_view WithoutUnit(const ParamDescription& param, std::string_view text) {
  if (Lower(text).ends_with(Lower(param.unit))) text.remove_suffix(param.unit.size());
  return Trimmed(text);
}

std::optional<float> FindItem(const ParamDescription& param, std::string_view text) {
  const auto item = std::ranges::find(param.items, NameKey(text), [](const auto& name) { return NameKey(name); });
  if (item == param.items.end()) return std::nullopt;
  return param.min + static_cast<float>(item - param.items.begin());
}

bool IsNumber(const std::string& text) { return ParseNumber(text).has_value(); }

std::optional<float> ParseSwitch(std::string_view text) {
  const std::string key = Lower(text);
  if (key == "1" || key == "on") return 1.0f;
  if (key == "0" || key == "off") return 0.0f;
  return std::nullopt;
}

std::optional<float> ParseAmount(const ParamDescription& param, std::string_view text) {
  const auto number = ParseNumber(text);
  if (!number) return std::nullopt;
  const float value = static_cast<float>(*number);
  if (value < param.min || value > param.max) return std::nullopt;
  if (param.type != MPT_FLOAT && value != std::trunc(value)) return std::nullopt;
  return value;
}

std::optional<float> ParseValue(const ParamDescription& param, std::string_view text) {
  if (param.type == MPT_BOOL) return ParseSwitch(text);
  if (const auto item = FindItem(param, text)) return item;
  // The number of an item would be mistaken for its text.
  if (std::ranges::any_of(param.items, IsNumber)) return std::nullopt;
  return ParseAmount(param, text);
}

}  // namespace

std::vector<ParamDescription> ReadParams(IMediaParamInfo& info) {
  DWORD count = 0;
  Check(info.GetParamCount(&count));
  std::vector<ParamDescription> params;
  for (DWORD i = 0; i < count; ++i) params.push_back(ReadParam(info, i));
  return params;
}

ParamDescription DescribeChoice(const Choice& choice) {
  return {.label = std::string(choice.label),
          .unit = std::string(choice.unit),
          .type = MPT_ENUM,
          .curve_caps = 0,
          .min = 0.0f,
          .max = static_cast<float>(choice.items.size() - 1),
          .neutral = std::nullopt,
          .items = {choice.items.begin(), choice.items.end()}};
}

DWORD FindParam(const std::vector<ParamDescription>& params, std::string_view name, std::string_view effect_name) {
  const std::string key = NameKey(name);
  std::vector<DWORD> beginnings;
  std::vector<std::string> labels, candidates;
  for (DWORD i = 0; i < params.size(); ++i) {
    const std::string label_key = NameKey(params[i].label);
    if (label_key == key) return i;
    labels.push_back(params[i].label);
    if (key.empty() || !label_key.starts_with(key)) continue;
    beginnings.push_back(i);
    candidates.push_back(params[i].label);
  }
  if (beginnings.size() == 1) return beginnings[0];
  if (beginnings.empty()) {
    throw UsageError("the " + std::string(effect_name) + " has no parameter " + Quoted(name) + "; it has " +
                     Listed(labels));
  }
  throw UsageError("the parameter " + Quoted(name) + " of the " + std::string(effect_name) + " could be " +
                   Listed(candidates, "or"));
}

float ParseParamValue(const ParamDescription& param, std::string_view text) {
  const auto value = ParseValue(param, WithoutUnit(param, Trimmed(text)));
  if (!value) throw UsageError(param.label + " takes " + DescribeRange(param) + ", not " + Quoted(text));
  return *value;
}

std::string DescribeRange(const ParamDescription& param) {
  if (param.type == MPT_BOOL) return "off or on";
  const std::string range =
      param.items.empty() ? ShortNumber(param.min) + " to " + ShortNumber(param.max) : Listed(param.items, "or");
  return param.unit.empty() ? range : range + ' ' + param.unit;
}

std::string_view TypeName(MP_TYPE type) {
  switch (type) {
    case MPT_INT: return "integer";
    case MPT_FLOAT: return "float";
    case MPT_BOOL: return "switch";
    case MPT_ENUM: return "choice";
    default: return "other";
  }
}

std::string FormatParamValue(const ParamDescription& param, float value) {
  if (param.type == MPT_BOOL) return value != 0.0f ? "on" : "off";
  const float item = value - param.min;
  if (item >= 0.0f && item < static_cast<float>(param.items.size())) return param.items[static_cast<size_t>(item)];
  return ShortNumber(value);
}

std::vector<std::string> CurveNames(const ParamDescription& param) {
  std::vector<std::string> names;
  for (const auto& [name, curve] : kCurves) {
    if (param.curve_caps & curve) names.emplace_back(name);
  }
  return names;
}

MP_CURVE_TYPE ParseCurve(const ParamDescription& param, std::string_view text) {
  for (const auto& [name, curve] : kCurves) {
    if ((param.curve_caps & curve) && NameKey(text) == name) return curve;
  }
  throw UsageError(param.label + " takes the curves " + Listed(CurveNames(param)) + ", not " + Quoted(text));
}

}  // namespace tervan::host
