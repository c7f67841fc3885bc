// Pages of automated effects: parameters as slots of the control interface, and the bypass toggle.
#pragma once

#include "resources/ids.h"
#include "ui/controls/logo_messages.h"
#include "ui/pages/effect_page.h"

namespace tervan::ui {

// The slots of one parameter.
template <class Control, class Value>
struct ParamSlots {
  HRESULT (STDMETHODCALLTYPE Control::*get)(Value* value);
  HRESULT (STDMETHODCALLTYPE Control::*set)(Value value);
  HRESULT (STDMETHODCALLTYPE Control::*begin_edit)();
  HRESULT (STDMETHODCALLTYPE Control::*end_edit)();
  HRESULT (STDMETHODCALLTYPE Control::*is_automated)();

  Value Get(Control& control) const {
    Value value{};
    (control.*get)(&value);
    return value;
  }
  bool IsAutomated(Control& control) const { return (control.*is_automated)() == S_OK; }
};

#define TERVAN_SLOTS_OF(Control, P) \
  { &Control::Get##P, &Control::Set##P, &Control::Begin##P##Edit, &Control::End##P##Edit, &Control::Is##P##Automated }

// A page whose effect can be bypassed and automated.
template <class Control>
class AutomatedPageFor : public EffectPageFor<Control> {
 protected:
  using EffectPageFor<Control>::EffectPageFor;

  // The click on the toggle. While bypass is automated it does nothing.
  void ToggleBypass(Control& control) {
    if (kBypass.IsAutomated(control)) return;
    const bool is_bypassed = kBypass.Get(control) == 0;
    control.SetBypass(is_bypassed);
    ShowBypass(is_bypassed);
  }
  // For the page's timer.
  void FollowBypass(Control& control) {
    const int id = this->description().bypass_id;
    this->Send(IDC_LOGO_STRIP, kLogoEnableItem, id, !kBypass.IsAutomated(control));
    ShowBypass(kBypass.Get(control) != 0);
  }

 private:
  static constexpr ParamSlots<Control, INT32> kBypass = TERVAN_SLOTS_OF(Control, Bypass);

  void ShowBypass(bool is_bypassed) {
    this->Send(IDC_LOGO_STRIP, kLogoSetState, this->description().bypass_id, is_bypassed);
  }
};

}  // namespace tervan::ui
