// The Track Compressor's property page: faders for the gains, trackbars with edit boxes for threshold, amount and
// times, two switches, three live meters, and the bypass toggle.
#pragma once

#include <array>

#include "effects/compressor/compressor_interface.h"
#include "ui/pages/param_sliders.h"

namespace tervan {

inline constexpr wchar_t kCompressorPageName[] = L"LmTComp Property Page";

class CompressorPage final : public ui::SliderPageFor<ICompressorSettings, float, 6> {
 public:
  explicit CompressorPage(IUnknown* outer) noexcept;

 private:
  bool OnInitPage() override;
  void RefreshControls(int id, ui::Refresh refresh) override;
  void OnFilterNotification(int code) override;
  void OnCommand(int id, int code) override;
  void OnScroll(UINT message, ui::ScrollCode code, HWND slider) override;
  void OnTimer() override;

  void ShowLevels(const CompressorMeters& meters) const;

  std::array<bool, 2> was_switch_automated_ = {};  // at the last tick of the timer
};

}  // namespace tervan
