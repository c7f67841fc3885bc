// One effect of the chain: a filter of the module, its settings and its meters, all through COM.
#pragma once

#include <windows.h>

#include <dshow.h>
#include <medparam.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "directshow/com_ptr.h"
#include "host/effect_catalog.h"
#include "host/effect_request.h"
#include "host/module_loader.h"
#include "host/param_info.h"

namespace tervan::host {

class EffectInstance {
 public:
  // Throws a Failure.
  EffectInstance(const Module& module, const EffectType& type);

  const EffectType& Type() const { return *type_; }
  IBaseFilter& Filter() const { return *filter_; }
  // Null when the effect does not have it.
  template <class Interface>
  directshow::ComPtr<Interface> As() const {
    return directshow::Query<Interface>(filter_.Get());
  }

  // Those of IMediaParamInfo under their indices, then the choices.
  const std::vector<ParamDescription>& Params() const { return params_; }
  float ParamValue(DWORD index) const;
  std::vector<std::string> PresetNames() const;

  // Applies a preset, a stored state or a parameter. kSaveKey does nothing here.
  // Throws a UsageError for names and values that do not exist, otherwise a Failure.
  void Apply(const Setting& setting);
  // The record that the effect stores of its settings. Throws a Failure.
  std::vector<std::uint8_t> StoredState() const;
  // Of a parameter that takes curves, with segments in the order of time. Throws a Failure.
  void Automate(DWORD param, std::span<const MP_ENVELOPE_SEGMENT> segments);

 private:
  // Null for a parameter of IMediaParams.
  const Choice* ChoiceAt(DWORD index) const;
  HRESULT SetParam(DWORD index, float value);
  void ApplyPreset(std::string_view text);
  void LoadState(const std::string& path);

  const EffectType* type_;
  directshow::ComPtr<IBaseFilter> filter_;
  std::vector<ParamDescription> params_;
};

// The row of the catalogue, if the module has its class. Throws a UsageError that names those there are.
const EffectType& FindEffect(const Module& module, std::string_view name);
std::vector<const EffectType*> AvailableEffects(const Module& module);

// Effects with the settings of these requests.
std::vector<EffectInstance> MakeChain(const Module& module, std::span<const EffectRequest> requests);

}  // namespace tervan::host
