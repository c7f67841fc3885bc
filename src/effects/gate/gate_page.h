// The Track Noise Gate's property page: a fader for the threshold, two trackbars with edit boxes for the times, and the
// bypass toggle.
#pragma once

#include "effects/gate/gate_interface.h"
#include "ui/pages/param_sliders.h"

namespace tervan {

inline constexpr wchar_t kGatePageName[] = L"LmTNoisg Property Page";

class GatePage final : public ui::SliderPageFor<IGateSettings, INT32, 3> {
 public:
  explicit GatePage(IUnknown* outer) noexcept;

 private:
  bool OnInitPage() override;
  void RefreshControls(int id, ui::Refresh refresh) override;
  void OnFilterNotification(int code) override;
  void OnCommand(int id, int code) override;
  void OnScroll(UINT message, ui::ScrollCode code, HWND slider) override;
  void OnTimer() override;
};

}  // namespace tervan
