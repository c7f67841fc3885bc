#include "host/effect_catalog.h"

#include "directshow/com_ptr.h"
#include "effects/compressor/compressor_interface.h"
#include "effects/dither/dither_interface.h"
#include "effects/eq/eq_interface.h"
#include "effects/gate/gate_interface.h"

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

template <auto kGet>
HRESULT GetDither(IUnknown& effect, INT32* index) {
  const auto dither = directshow::Query<IDitherSettings>(&effect);
  return dither ? (dither.Get()->*kGet)(index) : E_NOINTERFACE;
}

template <auto kSet>
HRESULT SetDither(IUnknown& effect, INT32 index) {
  const auto dither = directshow::Query<IDitherSettings>(&effect);
  return dither ? (dither.Get()->*kSet)(index) : E_NOINTERFACE;
}

constexpr std::string_view kDepths[] = {"8", "12", "16", "18", "20", "24", "32"};
constexpr std::string_view kDitherTypes[] = {"None",       "Half Rectangular",    "Rectangular",
                                             "Triangular", "Highpass Triangular", "Gaussian"};
constexpr std::string_view kShapings[] = {"Off", "High-pass contour", "Equal loudness contour"};

constexpr Choice kDitherChoices[] = {
    {"Depth", "bits", kDepths, GetDither<&IDitherSettings::GetQuantizationDepth>,
     SetDither<&IDitherSettings::SetQuantizationDepth>},
    {"Type", "", kDitherTypes, GetDither<&IDitherSettings::GetDitherType>, SetDither<&IDitherSettings::SetDitherType>},
    {"Shaping", "", kShapings, GetDither<&IDitherSettings::GetNoiseShaping>,
     SetDither<&IDitherSettings::SetNoiseShaping>},
};

constexpr EffectType kEffects[] = {
    {.name = "compressor",
     .title = "Tervan Track Compressor",
     .clsid = {0x23c9f225, 0x40ec, 0x11d2, {0x9d, 0x36, 0x00, 0xc0, 0x4f, 0x8e, 0xdc, 0x1e}},
     .control_interface = __uuidof(ICompressorSettings),
     .control_interface_name = "ICompressorSettings",
     .watch_meters = WatchCompressor,
     .reduction = CompressorReduction},
    {.name = "eq",
     .title = "Tervan Track EQ",
     .clsid = {0x8cb69a0a, 0x10e8, 0x11d2, {0x9b, 0x89, 0x00, 0x10, 0x4b, 0x8d, 0x13, 0xc2}},
     .control_interface = __uuidof(IEqSettings),
     .control_interface_name = "IEqSettings"},
    {.name = "gate",
     .title = "Tervan Track Noise Gate",
     .clsid = {0x869419dd, 0x501f, 0x11d3, {0x8c, 0xdc, 0x00, 0xc0, 0x4f, 0x6b, 0x8e, 0x4c}},
     .control_interface = __uuidof(IGateSettings),
     .control_interface_name = "IGateSettings"},
    {.name = "dither",
     .title = "Tervan Dither",
     .clsid = {0x260df3e1, 0xac77, 0x11d2, {0x9e, 0x93, 0x00, 0xc0, 0x4f, 0x68, 0xbe, 0x44}},
     .control_interface = __uuidof(IDitherSettings),
     .control_interface_name = "IDitherSettings",
     .choices = kDitherChoices},
};

}  // namespace

std::span<const EffectType> AllEffects() { return kEffects; }

}  // namespace tervan::host
