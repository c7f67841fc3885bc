#include "effects/dither/dither_effect.h"

#include <cstdint>
#include <new>

namespace tervan {

constinit const EffectTraits kDitherTraits{
    .filter_clsid = {0x260df3e1, 0xac77, 0x11d2, {0x9e, 0x93, 0x00, 0xc0, 0x4f, 0x68, 0xbe, 0x44}},
    .page_clsid = {0x260df3e2, 0xac77, 0x11d2, {0x9e, 0x93, 0x00, 0xc0, 0x4f, 0x68, 0xbe, 0x44}},
    .drains_at_end = false,
    .mode_settles = ModeSettles::kAfterFirstChunk,  // buffers are one chunk
    .settings_replaced_code = kSettingsReplaced,
    .param_set_code = std::nullopt,  // it has no parameters
    .stored = {dither::kForms, sizeof(DitherSettings), LoadNotifies::kAfterBodyRead},
    .presets = ListOf(dither::kPresets),
};

namespace {

// What a new engine is made with; the settings follow at once.
constexpr std::uint32_t kFirstBits = 16;

static_assert(dither::kType.highest + 1 == kDitherTypeCount);

}  // namespace

DitherEffect::DitherEffect(WindowPoster& poster, MillisecondClock clock) : control_(poster), clock_(clock) {
  ApplyPreset(*this, 0);
}

HRESULT DitherEffect::Start() {
  engine_.reset(new (std::nothrow) CLmDither(kFirstBits, DitherType::kNone, NoiseShaping::kOff, clock_));
  if (engine_ && !engine_->IsReady()) engine_.reset();
  if (!engine_) return E_OUTOFMEMORY;
  FetchSettings();
  return PushSettings(ProcessMode::kDiscontinuity);
}

HRESULT DitherEffect::Stop() {
  engine_.reset();
  is_configured_ = false;
  return S_OK;
}

HRESULT DitherEffect::PushSettings(ProcessMode mode) {
  is_configured_ = engine_ != nullptr;
  if (!engine_) return E_OUTOFMEMORY;
  engine_->Configure(dither::kWordLengthBits[fetched_.quantization_depth],
                     static_cast<DitherType>(fetched_.dither_type), static_cast<NoiseShaping>(fetched_.noise_shaping),
                     clock_);
  if (mode == ProcessMode::kDiscontinuity) has_processed_ = false;
  return S_OK;
}

HRESULT DitherEffect::Process(SampleFormat format, ProcessMode mode, void* data, std::uint32_t* frames, bool stop) {
  if (stop) return S_FALSE;
  const bool reset = mode == ProcessMode::kDiscontinuity && has_processed_;
  if (reset || control_.IsChanged() || NeedsSettings()) {
    FetchSettings();
    const HRESULT pushed = PushSettings(reset ? ProcessMode::kDiscontinuity : ProcessMode::kContinuous);
    if (FAILED(pushed)) return pushed;
  }
  has_processed_ = true;
  switch (format) {
    case SampleFormat::kPcm8: engine_->Process(static_cast<std::uint8_t*>(data), *frames, channels_); break;
    case SampleFormat::kPcm16: engine_->Process(static_cast<std::int16_t*>(data), *frames, channels_); break;
    case SampleFormat::kPcm32: engine_->Process(static_cast<std::int32_t*>(data), *frames, channels_); break;
    case SampleFormat::kFloat32: engine_->Process(static_cast<float*>(data), *frames, channels_); break;
    case SampleFormat::kFloat64: engine_->Process(static_cast<double*>(data), *frames, channels_); break;
    case SampleFormat::kNone: break;
  }
  return S_OK;
}

}  // namespace tervan
