#include "effects/compressor/compressor_effect.h"

#include <new>

namespace tervan {

constinit const EffectTraits kCompressorTraits{
    .filter_clsid = {0x23c9f225, 0x40ec, 0x11d2, {0x9d, 0x36, 0x00, 0xc0, 0x4f, 0x8e, 0xdc, 0x1e}},
    .page_clsid = {0x23c9f227, 0x40ec, 0x11d2, {0x9d, 0x36, 0x00, 0xc0, 0x4f, 0x8e, 0xdc, 0x1e}},
    .drains_at_end = true,
    .mode_settles = ModeSettles::kAfterPush,
    .settings_replaced_code = compressor::kSettingsReplaced,
    .param_set_code = kParamSetByHost,
    .stored = {compressor::kForms, sizeof(CompressorSettings), LoadNotifies::kAfterBodyRead},
    .presets = ListOf(compressor::kPresets),
};

CompressorEffect::~CompressorEffect() {
  control_.Notify(compressor::kMetersReset);
  control_.ResetMeters();
}

void CompressorEffect::SetFormat(const StreamFormat& format) {
  sample_rate_hz_ = format.nSamplesPerSec;
  AutomatedEffect::SetFormat(format);
}

HRESULT CompressorEffect::Start() {
  AutomatedEffect::Start();
  control_.Notify(compressor::kStreamingStarted);
  control_.Notify(compressor::kMetersReset);
  try {
    control_.StartMeters();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  return S_OK;
}

HRESULT CompressorEffect::Stop() {
  control_.Notify(compressor::kMetersReset);
  control_.ResetMeters();
  return S_OK;
}

void CompressorEffect::AdvanceStreamTime(std::uint32_t frames) { control_.AdvanceStreamTime(frames, sample_rate_hz_); }

}  // namespace tervan
