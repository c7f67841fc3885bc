// An effect's COM filter: the shell plus the effect's control interface. The operations that all control interfaces
// have are forwarded here; the filter itself adds the slots of its own.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "shell/filter_setup.h"
#include "shell/filter_shell.h"

namespace tervan {

static_assert(sizeof(WAVEFORMATEX) == sizeof(StreamFormat));

// Interface: the control interface. EffectType: the Effect, with settings_control(). kSetup: the registration data.
template <typename Interface, typename Settings, typename EffectType, const directshow::FilterSetup& kSetup>
class EffectFilter : public directshow::Implements<FilterShell, Interface> {
  using Base = directshow::Implements<FilterShell, Interface>;
  using Control = std::remove_reference_t<decltype(std::declval<EffectType>().settings_control())>;

 public:
  explicit EffectFilter(IUnknown* outer)
      : Base(outer, std::make_unique<EffectType>(MessagePoster())),
        control_(static_cast<EffectType&>(this->effect()).settings_control()) {}

  STDMETHODIMP GetSettings(Settings* settings) override { return control_.GetSettings(settings); }
  STDMETHODIMP SetSettings(const Settings* settings) override { return control_.SetSettings(settings); }
  STDMETHODIMP GetFormat(WAVEFORMATEX* format) override {
    return control_.GetFormat(reinterpret_cast<StreamFormat*>(format));
  }
  STDMETHODIMP SetNotifyWindow(HWND window, int command_id) override {
    return control_.SetNotifyWindow(window, command_id);
  }

 protected:
  IUnknown* FindInterface(REFIID iid) noexcept override {
    IUnknown* const found = directshow::FindIn(iid, {{__uuidof(Interface), static_cast<Interface*>(this)}});
    return found ? found : FilterShell::FindInterface(iid);
  }
  const directshow::FilterSetup* Setup() noexcept override { return &kSetup; }

  Control& control_;
};

}  // namespace tervan
