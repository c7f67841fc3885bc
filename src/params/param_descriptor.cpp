#include "params/param_descriptor.h"

#include <algorithm>

#include "support/saturate.h"

namespace tervan {

float ValueOfInteger(const ParamDescriptor& row, std::int32_t control) {
  return static_cast<float>(ControlRatio(row) * control);
}

float ValueOfFloat(const ParamDescriptor& row, float control) {
  return static_cast<float>(ControlRatio(row) * static_cast<double>(control));
}

std::int32_t IntegerOfValue(const ParamDescriptor& row, float value) {
  const double controls = static_cast<double>(row.controlMax) - static_cast<double>(row.controlMin);
  const double span = static_cast<double>(row.info.mpdMaxValue) - static_cast<double>(row.info.mpdMinValue);
  const double control = static_cast<double>(value) * controls / span;
  return SaturatingTruncate<std::int32_t>(value > 0 ? control + 0.5 : control - 0.5);
}

float FloatOfValue(const ParamDescriptor& row, float value) {
  return static_cast<float>(static_cast<double>(value) / ControlRatio(row));
}

std::u16string ParamText(const ParamDescriptor& row) {
  std::u16string text;
  text.append(row.info.szLabel).push_back(u'\0');
  text.append(row.info.szUnitText).push_back(u'\0');
  const auto items = static_cast<std::ptrdiff_t>(text.size());
  text.append(row.enumText).push_back(u'\0');
  std::replace(text.begin() + items, text.end(), u',', u'\0');
  text.push_back(u'\0');
  return text;
}

}  // namespace tervan
