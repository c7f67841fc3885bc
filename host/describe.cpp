#include "host/describe.h"

#include <algorithm>
#include <vector>

#include "host/effect_instance.h"
#include "host/json_writer.h"
#include "host/text.h"
#include "host/text_table.h"
#include "shell/plugin_interfaces.h"

namespace tervan::host {
namespace {

struct KnownInterface {
  std::string_view name;
  IID iid;
};

const KnownInterface kKnownInterfaces[] = {
    {"IMediaParams", __uuidof(IMediaParams)},
    {"IMediaParamInfo", __uuidof(IMediaParamInfo)},
    {"IParamRecorderSite", __uuidof(IParamRecorderSite)},
    {"ISpecifyPropertyPages", __uuidof(ISpecifyPropertyPages)},
    {"IPersistStream", __uuidof(IPersistStream)},
    {"IPluginPresets", __uuidof(IPluginPresets)},
    {"IDirectBufferProcess", __uuidof(IDirectBufferProcess)},
    {"IBaseFilter", __uuidof(IBaseFilter)},
    {"IMediaFilter", __uuidof(IMediaFilter)},
    {"IPersist", __uuidof(IPersist)},
    {"IAMovieSetup", __uuidof(IAMovieSetup)},
};

std::string GuidText(const GUID& guid) {
  WCHAR text[40];
  StringFromGUID2(guid, text, 40);
  return Narrow(text);
}

bool Answers(const EffectInstance& effect, const IID& iid) {
  directshow::ComPtr<IUnknown> found;
  return SUCCEEDED(effect.Filter().QueryInterface(iid, found.PutVoid()));
}

// Its own control interface first, then those that all effects may have.
std::vector<KnownInterface> Interfaces(const EffectInstance& effect) {
  std::vector<KnownInterface> interfaces{{effect.Type().control_interface_name, effect.Type().control_interface}};
  interfaces.insert(interfaces.end(), std::begin(kKnownInterfaces), std::end(kKnownInterfaces));
  std::erase_if(interfaces, [&](const KnownInterface& known) { return !Answers(effect, known.iid); });
  return interfaces;
}

void AddParam(JsonWriter& json, const EffectInstance& effect, DWORD index) {
  const ParamDescription& param = effect.Params()[index];
  json.BeginObject();
  json.Key("index").Integer(index).Key("label").Text(param.label).Key("unit").Text(param.unit);
  json.Key("type").Text(TypeName(param.type));
  json.Key("min").Number(param.min).Key("max").Number(param.max).Key("neutral").Number(param.neutral);
  json.Key("value").Number(effect.ParamValue(index));
  json.Key("items").BeginArray();
  for (const std::string& item : param.items) json.Text(item);
  json.EndArray().Key("curves").BeginArray();
  for (const std::string& curve : CurveNames(param)) json.Text(curve);
  json.EndArray().EndObject();
}

std::string DescriptionJson(const EffectInstance& effect) {
  JsonWriter json;
  json.BeginObject();
  json.Key("name").Text(effect.Type().name).Key("title").Text(effect.Type().title);
  json.Key("clsid").Text(GuidText(effect.Type().clsid));
  json.Key("parameters").BeginArray();
  for (DWORD i = 0; i < effect.Params().size(); ++i) AddParam(json, effect, i);
  json.EndArray().Key("presets").BeginArray();
  for (const std::string& name : effect.PresetNames()) json.Text(name);
  json.EndArray().Key("interfaces").BeginArray();
  for (const KnownInterface& known : Interfaces(effect)) {
    json.BeginObject().Key("name").Text(known.name).Key("iid").Text(GuidText(known.iid)).EndObject();
  }
  json.EndArray().EndObject();
  return json.Take();
}

std::string DescriptionText(const EffectInstance& effect) {
  TextRows params{{"Parameter", "Type", "Range", "New effect", "Curves"}};
  for (DWORD i = 0; i < effect.Params().size(); ++i) {
    const ParamDescription& param = effect.Params()[i];
    const std::vector<std::string> curves = CurveNames(param);
    params.push_back({param.label, std::string(TypeName(param.type)), DescribeRange(param),
                      FormatParamValue(param, effect.ParamValue(i)), curves.empty() ? "none" : Listed(curves)});
  }
  TextRows presets{{"#", "Preset"}};
  for (const std::string& name : effect.PresetNames()) presets.push_back({std::to_string(presets.size() - 1), name});
  TextRows interfaces{{"Interface", "IID"}};
  for (const KnownInterface& known : Interfaces(effect)) {
    interfaces.push_back({std::string(known.name), GuidText(known.iid)});
  }
  return std::string(effect.Type().title) + ' ' + GuidText(effect.Type().clsid) + "\n\n" + TextTable(params) + '\n' +
         TextTable(presets) + '\n' + TextTable(interfaces);
}

}  // namespace

std::string ListEffects(const Module& module, bool json) {
  const std::vector<const EffectType*> effects = AvailableEffects(module);
  if (!json) {
    TextRows rows;
    for (const EffectType* effect : effects) {
      rows.push_back({std::string(effect->name), std::string(effect->title), GuidText(effect->clsid)});
    }
    return TextTable(rows);
  }
  JsonWriter writer;
  writer.BeginObject().Key("effects").BeginArray();
  for (const EffectType* effect : effects) {
    writer.BeginObject().Key("name").Text(effect->name).Key("title").Text(effect->title);
    writer.Key("clsid").Text(GuidText(effect->clsid)).EndObject();
  }
  writer.EndArray().EndObject();
  return writer.Take();
}

std::string DescribeEffect(const Module& module, const std::string& name, bool json) {
  const EffectInstance effect(module, FindEffect(module, name));
  return json ? DescriptionJson(effect) : DescriptionText(effect);
}

}  // namespace tervan::host
