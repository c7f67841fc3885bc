// One row of an effect's parameter table: what hosts are told of a parameter, and how it meets the settings record.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tervan {

// Wide text as the media-parameter interfaces carry it: 16-bit units on every platform.
inline constexpr std::size_t kParamTextLength = 32;

inline constexpr std::size_t kMaxParams = 32;  // no table has more rows

enum class ParamType : std::uint32_t { kInt = 0, kFloat = 1, kBool = 2, kEnum = 3 };

// Bits of the supported curve shapes.
inline constexpr std::uint32_t kCapsJump = 1;
inline constexpr std::uint32_t kCapsAllCurves = 15;  // jump, linear, square, inverse square

// Laid out exactly as MP_PARAMINFO and handed out unchanged.
struct ParamInfo {
  ParamType mpType;
  std::uint32_t mopCaps;
  float mpdMinValue;
  float mpdMaxValue;
  float mpdNeutralValue;
  char16_t szUnitText[kParamTextLength];
  char16_t szLabel[kParamTextLength];
};
static_assert(sizeof(ParamInfo) == 148 && offsetof(ParamInfo, szLabel) == 84);

// How a parameter's field in the settings record is stored. Both integer kinds behave alike.
enum class ControlKind : std::uint32_t { kInteger = 0, kSwitch = 1, kFloat = 2 };

struct ParamDescriptor {
  ParamInfo info;
  std::uint32_t changeMask;      // reported when automation changes the parameter
  std::int32_t controlMax;       // control value of mpdMaxValue
  std::int32_t controlMin;       // control value of mpdMinValue
  std::u16string_view enumText;  // item names, comma-separated; empty but for enumerations
  ControlKind controlKind;
  std::uint32_t recordOffset;  // bytes into the effect's settings record
};

// A row in the order in which tables are read: what it is, its range, its control range, its place in the record.
struct ParamRow {
  std::u16string_view label;
  std::u16string_view unit;
  ParamType type;
  float min, max, neutral;
  std::int32_t control_min, control_max;
  ControlKind kind;
  std::uint32_t offset;
  std::u16string_view enum_text = u"";
};

// Everything but numeric floats can only jump.
constexpr ParamDescriptor Describe(const ParamRow& row) {
  ParamDescriptor descriptor{};
  descriptor.info.mpType = row.type;
  descriptor.info.mopCaps = row.type == ParamType::kFloat ? kCapsAllCurves : kCapsJump;
  descriptor.info.mpdMinValue = row.min;
  descriptor.info.mpdMaxValue = row.max;
  descriptor.info.mpdNeutralValue = row.neutral;
  for (std::size_t i = 0; i < row.unit.size(); ++i) descriptor.info.szUnitText[i] = row.unit[i];
  for (std::size_t i = 0; i < row.label.size(); ++i) descriptor.info.szLabel[i] = row.label[i];
  descriptor.changeMask = 1;
  descriptor.controlMax = row.control_max;
  descriptor.controlMin = row.control_min;
  descriptor.enumText = row.enum_text;
  descriptor.controlKind = row.kind;
  descriptor.recordOffset = row.offset;
  return descriptor;
}

// A control value is a parameter value in the units of the settings record and the page: value / ratio, no offset.
constexpr double ControlRatio(const ParamDescriptor& row) {
  return (static_cast<double>(row.info.mpdMaxValue) - static_cast<double>(row.info.mpdMinValue)) /
         (static_cast<double>(row.controlMax) - static_cast<double>(row.controlMin));
}

// Neither direction checks the range: records may carry values outside it.
float ValueOfInteger(const ParamDescriptor& row, std::int32_t control);
float ValueOfFloat(const ParamDescriptor& row, float control);
std::int32_t IntegerOfValue(const ParamDescriptor& row, float value);  // rounds half away from zero, saturates
float FloatOfValue(const ParamDescriptor& row, float value);

// label NUL unit NUL item NUL … item NUL NUL; without items label NUL unit NUL NUL NUL.
std::u16string ParamText(const ParamDescriptor& row);

}  // namespace tervan
