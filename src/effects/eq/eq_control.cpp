#include "effects/eq/eq_control.h"

#include <utility>

namespace tervan {

HRESULT EqControl::GetSettings(EqSettings* settings) const {
  const HRESULT result = RecordControl::GetSettings(settings);
  return FAILED(result) ? result : GetSelectedBand(&settings->selected_band);
}

HRESULT EqControl::SetSettings(const EqSettings* settings) {
  if (!settings) return E_POINTER;
  SetSelectedBand(settings->selected_band);  // before the settings are marked as modified: a save takes both
  return RecordControl::SetSettings(settings);
}

HRESULT EqControl::SetParam(std::uint32_t index, float value) {
  const HRESULT result = AutomatedControl::SetParam(index, value);
  if (result == S_OK) {
    const LockGuard guard(lock_);
    set_by_host_ = true;
  }
  return result;
}

HRESULT EqControl::PollChanged() {
  const LockGuard guard(lock_);
  return std::exchange(set_by_host_, false) ? S_OK : S_FALSE;
}

HRESULT EqControl::GetSelectedBand(std::int32_t* band) const {
  if (!band) return E_POINTER;
  const LockGuard guard(lock_);
  *band = selected_band_;
  return S_OK;
}

HRESULT EqControl::SetSelectedBand(std::int32_t band) {
  const LockGuard guard(lock_);
  selected_band_ = band;
  return S_OK;
}

HRESULT EqControl::GetBand(std::int32_t* value, std::int32_t band, eq::BandRow row) const {
  const auto index = static_cast<std::uint32_t>(band);
  return index < kEqBands ? Get(eq::ParamIndex(index, row), value) : S_OK;
}

}  // namespace tervan
