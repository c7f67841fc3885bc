#include "effects/compressor/compressor_effect.h"

#include <new>

#include "shell/engine_dispatch.h"

namespace tervan {

constinit const EffectTraits kCompressorTraits{
    .filter_clsid = {0x23c9f225, 0x40ec, 0x11d2, {0x9d, 0x36, 0x00, 0xc0, 0x4f, 0x8e, 0xdc, 0x1e}},
    .page_clsid = {0x23c9f227, 0x40ec, 0x11d2, {0x9d, 0x36, 0x00, 0xc0, 0x4f, 0x8e, 0xdc, 0x1e}},
    .drains_at_end = true,
    .mode_settles = ModeSettles::kAfterPush,
    .settings_replaced_code = compressor::kSettingsReplaced,
    .stored = {compressor::kForms, sizeof(CompressorSettings), LoadNotifies::kAfterBodyRead},
    .presets = ListOf(compressor::kPresets),
};

CompressorEffect::CompressorEffect(WindowPoster& poster) : control_(poster) { ApplyPreset(*this, 0); }

CompressorEffect::~CompressorEffect() {
  control_.Notify(compressor::kMetersReset);
  control_.ResetMeters();
}

void CompressorEffect::SetFormat(const StreamFormat& format) {
  sample_rate_hz_ = format.nSamplesPerSec;
  engine_.SetFormat(format);
}

HRESULT CompressorEffect::Start() {
  engine_.Start();
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

HRESULT CompressorEffect::PushSettings(ProcessMode mode) {
  engine_.LoadParameters(fetched_, mode);
  return S_OK;
}

HRESULT CompressorEffect::Process(SampleFormat format, ProcessMode mode, void* data, std::uint32_t* frames, bool stop) {
  return ProcessWith(engine_, format, mode, data, frames, stop);
}

void CompressorEffect::AdvanceStreamTime(std::uint32_t frames) { control_.AdvanceStreamTime(frames, sample_rate_hz_); }

HRESULT CompressorEffect::SetParam(std::uint32_t index, float value) {
  const HRESULT result = control_.SetParam(index, value);
  if (result == S_OK) control_.Notify(compressor::kParamSetByHost);
  return result;
}

}  // namespace tervan
