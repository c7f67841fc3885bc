// The Track EQ's filter: the shell plus IEqSettings.
#pragma once

#include "effects/eq/eq_effect.h"
#include "effects/eq/eq_interface.h"
#include "shell/effect_filter.h"

namespace tervan {

inline constexpr wchar_t kEqFilterName[] = L"Tervan Track EQ";
inline constexpr directshow::FilterSetup kEqFilterSetup = EffectFilterSetup(&kEqTraits.filter_clsid, kEqFilterName);

class EqFilter final : public EffectFilter<IEqSettings, EqSettings, EqEffect, kEqFilterSetup> {
 public:
  using EffectFilter::EffectFilter;

#define TERVAN_FORWARD_BAND_SLOTS(Setting)                                                                \
  TERVAN_FORWARD_PARAM_SLOTS(Band1##Setting, INT32, control_, eq::ParamIndex(0, eq::BandRow::k##Setting)) \
  TERVAN_FORWARD_PARAM_SLOTS(Band2##Setting, INT32, control_, eq::ParamIndex(1, eq::BandRow::k##Setting)) \
  TERVAN_FORWARD_PARAM_SLOTS(Band3##Setting, INT32, control_, eq::ParamIndex(2, eq::BandRow::k##Setting)) \
  TERVAN_FORWARD_PARAM_SLOTS(Band4##Setting, INT32, control_, eq::ParamIndex(3, eq::BandRow::k##Setting)) \
  STDMETHODIMP GetBand##Setting(int* value, int band) override {                                          \
    return control_.GetBand(value, band, eq::BandRow::k##Setting);                                        \
  }
  TERVAN_FORWARD_BAND_SLOTS(Gain)
  TERVAN_FORWARD_BAND_SLOTS(Bandwidth)
  TERVAN_FORWARD_BAND_SLOTS(Frequency)
  TERVAN_FORWARD_BAND_SLOTS(Mode)
  TERVAN_FORWARD_BAND_SLOTS(Rolloff)
  TERVAN_FORWARD_BAND_SLOTS(Enable)
#undef TERVAN_FORWARD_BAND_SLOTS
  TERVAN_FORWARD_PARAM_SLOTS(Bypass, INT32, control_, eq::kBypassParam)

  STDMETHODIMP GetSelectedBand(int* band) override { return control_.GetSelectedBand(band); }
  STDMETHODIMP SetSelectedBand(int band) override { return control_.SetSelectedBand(band); }
  STDMETHODIMP PollChanged() override { return control_.PollChanged(); }
};

}  // namespace tervan
