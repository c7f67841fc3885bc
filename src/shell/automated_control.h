// The control object of an effect whose settings are automatable parameters.
#pragma once

#include <cmath>
#include <cstdint>
#include <span>
#include <type_traits>

#include "params/param_manager.h"
#include "shell/control_state.h"

namespace tervan {

class AutomatedControl : public ControlState {
 public:
  AutomatedControl(std::span<const ParamDescriptor> table, WindowPoster& poster)
      : ControlState(poster), params_(table) {}

  ParamManager& params() { return params_; }

  // One group of operations per parameter, for control interfaces. Control: std::int32_t or float, as the row's kind
  // says; index: a row.

  // S_OK; E_POINTER.
  template <typename Control>
  HRESULT Get(std::uint32_t index, Control* control) const {
    if (!control) return E_POINTER;
    if constexpr (std::is_same_v<Control, float>) {
      *control = params_.GetFloat(index);
    } else {
      *control = params_.GetInteger(index);
    }
    return S_OK;
  }

  // Clamps to the row's range; a NaN changes nothing. Always S_OK.
  HRESULT Set(std::uint32_t index, float control);
  HRESULT Set(std::uint32_t index, std::int32_t control);

  HRESULT BeginEdit(std::uint32_t index) { return params_.BeginEdit(index) ? S_OK : S_FALSE; }
  HRESULT EndEdit(std::uint32_t index);  // always S_OK; the engine fetches the settings again
  HRESULT IsAutomated(std::uint32_t index) const { return params_.IsEditable(index) ? S_FALSE : S_OK; }

  // As ParamManager::SetParam; S_OK also marks the settings as changed and modified.
  HRESULT SetParam(std::uint32_t index, float value);

 protected:
  ~AutomatedControl() = default;

  // Copies the current values into the record's fields.
  void ExportRecord(void* record) const { params_.ExportSettings(record); }

  // Replaces all parameters by a settings record, unclamped.
  void ImportRecord(const void* record);

  // As ExportRecord; true when a change was waiting, which this takes note of. [stream]
  bool FetchRecord(void* record);

 private:
  ParamManager params_;
};

}  // namespace tervan
