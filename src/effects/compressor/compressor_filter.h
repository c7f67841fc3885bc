// The Track Compressor's filter: the shell plus ICompressorSettings and the graph's reference clock.
#pragma once

#include "effects/compressor/compressor_effect.h"
#include "effects/compressor/compressor_interface.h"
#include "shell/effect_filter.h"

namespace tervan {

inline constexpr wchar_t kCompressorFilterName[] = L"Tervan Track Compressor";
inline constexpr directshow::FilterSetup kCompressorFilterSetup =
    EffectFilterSetup(&kCompressorTraits.filter_clsid, kCompressorFilterName);

class CompressorFilter final
    : public EffectFilter<ICompressorSettings, CompressorSettings, CompressorEffect, kCompressorFilterSetup> {
 public:
  using EffectFilter::EffectFilter;

  STDMETHODIMP SetSyncSource(IReferenceClock* clock) override;

  STDMETHODIMP SetLegacySettings6(const UINT32* words) override { return control_.SetLegacySettings6(words); }
  STDMETHODIMP SetLegacySettings8(const UINT32* words) override { return control_.SetLegacySettings8(words); }

#define TERVAN_COMPRESSOR_SLOTS(P, Value) \
  TERVAN_FORWARD_PARAM_SLOTS(P, Value, control_, static_cast<std::uint32_t>(CompressorParam::k##P))
  TERVAN_COMPRESSOR_SLOTS(InputGain, float)
  TERVAN_COMPRESSOR_SLOTS(OutputGain, float)
  TERVAN_COMPRESSOR_SLOTS(Threshold, float)
  TERVAN_COMPRESSOR_SLOTS(Amount, float)
  TERVAN_COMPRESSOR_SLOTS(AttackTime, float)
  TERVAN_COMPRESSOR_SLOTS(ReleaseTime, float)
  TERVAN_COMPRESSOR_SLOTS(AutoGainCompensation, INT32)
  TERVAN_COMPRESSOR_SLOTS(SmoothSaturation, INT32)
  TERVAN_COMPRESSOR_SLOTS(Bypass, INT32)
#undef TERVAN_COMPRESSOR_SLOTS

  STDMETHODIMP GetMeters(CompressorMeters* meters) override { return control_.GetMeters(meters); }
  STDMETHODIMP PutMeters(CompressorMeters meters) override { return control_.PutMeters(meters); }
};

}  // namespace tervan
