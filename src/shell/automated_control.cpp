#include "shell/automated_control.h"

#include <algorithm>

namespace tervan {

HRESULT AutomatedControl::Set(std::uint32_t index, float control) {
  if (std::isnan(control)) return S_OK;
  const ParamDescriptor& row = params_.table()[index];
  const auto low = static_cast<float>(row.controlMin);
  const auto high = static_cast<float>(row.controlMax);
  if (params_.SetFloat(index, std::clamp(control, low, high))) MarkChangedAndDirty();
  return S_OK;
}

HRESULT AutomatedControl::Set(std::uint32_t index, std::int32_t control) {
  const ParamDescriptor& row = params_.table()[index];
  if (params_.SetInteger(index, std::clamp(control, row.controlMin, row.controlMax))) MarkChangedAndDirty();
  return S_OK;
}

HRESULT AutomatedControl::EndEdit(std::uint32_t index) {
  params_.EndEdit(index);
  MarkChanged();
  return S_OK;
}

HRESULT AutomatedControl::SetParam(std::uint32_t index, float value) {
  const HRESULT result = params_.SetParam(index, value);
  if (result == S_OK) MarkChangedAndDirty();
  return result;
}

void AutomatedControl::ImportRecord(const void* record) {
  params_.ImportSettings(record);
  MarkChangedAndDirty();
}

bool AutomatedControl::FetchRecord(void* record) {
  const LockGuard guard(lock_);
  params_.ExportSettings(record);
  return changed_.exchange(false, std::memory_order_relaxed);
}

}  // namespace tervan
