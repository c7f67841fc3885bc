#include "host/effect_catalog.h"

#include "directshow/com_ptr.h"
#include "effects/compressor/compressor_interface.h"

namespace tervan::host {
namespace {

// Low word of the messages that a watched effect posts. The window ignores them; 0 would end the registration.
constexpr int kNotificationId = 1;

HRESULT WatchCompressor(IUnknown& effect, HWND window, bool is_on) {
  const auto compressor = directshow::Query<ICompressorSettings>(&effect);
  return compressor ? compressor->SetNotifyWindow(window, is_on ? kNotificationId : 0) : E_NOINTERFACE;
}

std::optional<double> CompressorReduction(IUnknown& effect) {
  const auto compressor = directshow::Query<ICompressorSettings>(&effect);
  CompressorMeters meters;
  if (!compressor || FAILED(compressor->GetMeters(&meters))) return std::nullopt;
  return meters.reduction;
}

constexpr EffectType kEffects[] = {
    {"compressor",
     "Tervan Track Compressor",
     {0x23c9f225, 0x40ec, 0x11d2, {0x9d, 0x36, 0x00, 0xc0, 0x4f, 0x8e, 0xdc, 0x1e}},
     __uuidof(ICompressorSettings),
     "ICompressorSettings",
     WatchCompressor,
     CompressorReduction},
};

}  // namespace

std::span<const EffectType> AllEffects() { return kEffects; }

}  // namespace tervan::host
