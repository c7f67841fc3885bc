// The Dither's property page: three lists.
#pragma once

#include "effects/dither/dither_interface.h"
#include "ui/pages/effect_page.h"

namespace tervan {

inline constexpr wchar_t kDitherPageName[] = L"LmTDither Property Page";

class DitherPage final : public ui::EffectPageFor<IDitherSettings> {
 public:
  explicit DitherPage(IUnknown* outer) noexcept;

 private:
  bool OnInitPage() override;
  void RefreshControls(int id, ui::Refresh refresh) override;
  void OnFilterNotification(int code) override;
  void OnCommand(int id, int code) override;
};

}  // namespace tervan
