// The Dither's filter: the shell plus IDitherSettings.
#pragma once

#include "effects/dither/dither_effect.h"
#include "effects/dither/dither_interface.h"
#include "shell/effect_filter.h"

namespace tervan {

inline constexpr wchar_t kDitherFilterName[] = L"Tervan Dither";
inline constexpr directshow::FilterSetup kDitherFilterSetup =
    EffectFilterSetup(&kDitherTraits.filter_clsid, kDitherFilterName);

class DitherFilter final : public EffectFilter<IDitherSettings, DitherSettings, DitherEffect, kDitherFilterSetup> {
 public:
  using EffectFilter::EffectFilter;

  STDMETHODIMP GetQuantizationDepth(INT32* index) override { return control_.Get(dither::kDepth, index); }
  STDMETHODIMP SetQuantizationDepth(INT32 index) override { return control_.Set(dither::kDepth, index); }
  STDMETHODIMP GetDitherType(INT32* type) override { return control_.Get(dither::kType, type); }
  STDMETHODIMP SetDitherType(INT32 type) override { return control_.Set(dither::kType, type); }
  STDMETHODIMP GetNoiseShaping(INT32* shaping) override { return control_.Get(dither::kShaping, shaping); }
  STDMETHODIMP SetNoiseShaping(INT32 shaping) override { return control_.Set(dither::kShaping, shaping); }
};

}  // namespace tervan
