#include "host/effect_instance.h"

#include <array>
#include <cstring>

#include "host/failure.h"
#include "host/file_handle.h"
#include "host/memory_stream.h"
#include "host/text.h"
#include "shell/plugin_interfaces.h"

namespace tervan::host {
namespace {

using directshow::ComPtr;

constexpr LONG kMaxPresetName = 256;

// A stored state begins with its size, 32 bits, and a GUID.
constexpr size_t kStateHeaderBytes = 20;

void Check(HRESULT result, const std::string& what) {
  if (FAILED(result)) throw Failure(what + ": " + SystemMessage(result));
}

// Effects take what the stream gives without counting it, so a file that was cut off must be noticed here.
bool IsWholeState(const std::vector<std::uint8_t>& state) {
  std::uint32_t size = 0;
  if (state.size() < kStateHeaderBytes) return false;
  std::memcpy(&size, state.data(), sizeof size);
  return size <= state.size();
}

}  // namespace

EffectInstance::EffectInstance(const Module& module, const EffectType& type)
    : type_(&type), filter_(module.CreateFilter(type.clsid)) {
  if (const auto info = As<IMediaParamInfo>()) params_ = ReadParams(*info);
  for (const Choice& choice : type.choices) params_.push_back(DescribeChoice(choice));
}

const Choice* EffectInstance::ChoiceAt(DWORD index) const {
  const size_t media_params = params_.size() - type_->choices.size();
  return index < media_params ? nullptr : &type_->choices[index - media_params];
}

HRESULT EffectInstance::SetParam(DWORD index, float value) {
  if (const Choice* choice = ChoiceAt(index)) return choice->set(*filter_, static_cast<INT32>(value));
  const auto params = As<IMediaParams>();
  return params ? params->SetParam(index, value) : E_NOINTERFACE;
}

float EffectInstance::ParamValue(DWORD index) const {
  const char* const problem = "the effect does not tell a parameter";
  if (const Choice* choice = ChoiceAt(index)) {
    INT32 item = 0;
    Check(choice->get(*filter_, &item), problem);
    return static_cast<float>(item);
  }
  MP_DATA value = 0;
  const auto params = As<IMediaParams>();
  Check(params ? params->GetParam(index, &value) : E_NOINTERFACE, problem);
  return value;
}

std::vector<std::string> EffectInstance::PresetNames() const {
  const auto presets = As<IPluginPresets>();
  LONG count = 0;
  if (!presets || FAILED(presets->GetPresetCount(&count))) return {};
  std::vector<std::string> names;
  for (LONG i = 0; i < count; ++i) {
    std::array<WCHAR, kMaxPresetName> name{};
    Check(presets->GetPresetName(i, name.data(), kMaxPresetName), "the effect does not tell the name of a preset");
    names.push_back(Narrow(name.data()));
  }
  return names;
}

void EffectInstance::Apply(const Setting& setting) {
  if (setting.key == kSaveKey) return;
  if (setting.key == kPresetKey) return ApplyPreset(setting.value);
  if (setting.key == kLoadKey) return LoadState(setting.value);
  const DWORD index = FindParam(params_, setting.key, type_->name);
  const float value = ParseParamValue(params_[index], setting.value);
  Check(SetParam(index, value), "the effect refuses " + Quoted(setting.value) + " for " + params_[index].label);
}

void EffectInstance::ApplyPreset(std::string_view text) {
  const std::vector<std::string> names = PresetNames();
  const std::string key = Lower(text);
  std::vector<LONG> beginnings;
  std::vector<std::string> candidates, all;
  std::optional<LONG> chosen;
  const auto number = ParseInteger(text);
  if (number && *number >= 0 && *number < static_cast<long>(names.size())) chosen = *number;
  for (LONG i = 0; i < static_cast<LONG>(names.size()); ++i) {
    const std::string name = Lower(names[i]);
    if (name == key) chosen = i;
    all.push_back(std::to_string(i) + ' ' + Quoted(names[i]));
    if (!name.starts_with(key)) continue;
    beginnings.push_back(i);
    candidates.push_back(Quoted(names[i]));
  }
  if (!chosen && !number && beginnings.size() == 1) chosen = beginnings[0];
  const std::string effect(type_->name);
  if (!chosen && !number && beginnings.size() > 1) {
    throw UsageError("the preset " + Quoted(text) + " of the " + effect + " could be " + Listed(candidates, "or"));
  }
  if (!chosen) throw UsageError("the " + effect + " has no preset " + Quoted(text) + "; it has " + Listed(all));
  Check(As<IPluginPresets>()->ApplyPreset(*chosen), "the effect refuses its own preset");
}

void EffectInstance::LoadState(const std::string& path) {
  const std::vector<std::uint8_t> state = ReadWholeFile(path);
  const auto persist = As<IPersistStream>();
  const ComPtr<IStream> stream = MemoryStream();
  HRESULT result = persist && IsWholeState(state) ? S_OK : E_FAIL;
  if (SUCCEEDED(result)) result = stream->Write(state.data(), static_cast<ULONG>(state.size()), nullptr);
  if (SUCCEEDED(result)) result = stream->Seek({}, STREAM_SEEK_SET, nullptr);
  if (SUCCEEDED(result)) result = persist->Load(stream.Get());
  if (FAILED(result)) {
    throw Failure(Quoted(path) + " does not hold the whole stored settings of a " + std::string(type_->name));
  }
}

std::vector<std::uint8_t> EffectInstance::StoredState() const {
  const auto persist = As<IPersistStream>();
  const ComPtr<IStream> stream = MemoryStream();
  Check(persist ? persist->Save(stream.Get(), FALSE) : E_NOINTERFACE, "the effect does not store its settings");
  return ContentOf(*stream);
}

void EffectInstance::Automate(DWORD param, std::span<const MP_ENVELOPE_SEGMENT> segments) {
  std::vector<MP_ENVELOPE_SEGMENT> copy(segments.begin(), segments.end());
  const auto params = As<IMediaParams>();
  Check(params ? params->AddEnvelope(param, static_cast<DWORD>(copy.size()), copy.data()) : E_NOINTERFACE,
        "the effect refuses the automation of " + params_[param].label);
}

const EffectType& FindEffect(const Module& module, std::string_view name) {
  std::vector<std::string> names;
  for (const EffectType* type : AvailableEffects(module)) {
    if (Lower(name) == type->name) return *type;
    names.emplace_back(type->name);
  }
  throw UsageError("there is no effect " + Quoted(name) + "; the module has " + Listed(names));
}

std::vector<const EffectType*> AvailableEffects(const Module& module) {
  std::vector<const EffectType*> available;
  for (const EffectType& type : AllEffects()) {
    if (module.HasClass(type.clsid)) available.push_back(&type);
  }
  return available;
}

std::vector<EffectInstance> MakeChain(const Module& module, std::span<const EffectRequest> requests) {
  std::vector<EffectInstance> chain;
  for (const EffectRequest& request : requests) {
    EffectInstance& effect = chain.emplace_back(module, FindEffect(module, request.name));
    for (const Setting& setting : request.settings) effect.Apply(setting);
  }
  return chain;
}

}  // namespace tervan::host
