#include "host/page.h"

#include <windows.h>

#include <ocidl.h>

#include <deque>
#include <optional>
#include <vector>

#include "host/automation_csv.h"
#include "host/console.h"
#include "host/effect_instance.h"
#include "host/exit_code.h"
#include "host/failure.h"
#include "host/json_writer.h"
#include "host/output_file.h"
#include "host/page_photographer.h"
#include "host/playback.h"
#include "host/property_frame.h"
#include "host/stored_states.h"
#include "host/text.h"

namespace tervan::host {
namespace {

using directshow::ComPtr;

std::vector<CLSID> PagesOf(const EffectInstance& effect, const Module& module) {
  const std::string name(effect.Type().name);
  const auto specify = effect.As<ISpecifyPropertyPages>();
  CAUUID pages{};
  if (!specify || FAILED(specify->GetPages(&pages)) || pages.cElems == 0) {
    throw Failure("the " + name + " has no property page");
  }
  const directshow::CoTaskMemPtr<CLSID> owner(pages.pElems);
  const std::vector<CLSID> clsids(pages.pElems, pages.pElems + pages.cElems);
  for (const CLSID& clsid : clsids) {
    if (!module.HasClass(clsid)) throw Failure("the module does not have the property page of the " + name);
  }
  return clsids;
}

// Everything that would fail at the end anyway fails before the window opens.
void CheckOutputs(const Options& options, std::span<const StateFile> states) {
  std::vector<std::string> outputs;
  if (!options.picture_path.empty()) outputs.push_back(options.picture_path);
  for (const StateFile& state : states) outputs.push_back(state.path);
  CheckOutputPaths(outputs, options.inputs);
  for (const std::string& output : outputs) CheckReplaceable(output, options.force);
}

void ReportPage(const Options& options) {
  if (options.json) {
    JsonWriter json;
    json.BeginObject().Key("effect").Text(options.effects.front().name).Key("picture");
    options.picture_path.empty() ? json.Null() : json.Text(options.picture_path);
    json.EndObject();
    PrintOut(json.Take());
  } else if (!options.picture_path.empty()) {
    PrintOut("wrote " + options.picture_path + '\n');
  }
}

}  // namespace

int ShowPage(const Options& options) {
  SetProcessDPIAware();  // otherwise the platform may enlarge the page's pixels
  const Module module(options.module_path);
  std::vector<EffectInstance> chain = MakeChain(module, options.effects);
  EffectInstance& effect = chain.front();
  CheckOutputs(options, StatesToSave(options.effects, chain));
  if (!options.automation_path.empty()) Automate(chain, ReadAutomation(options.automation_path, chain));
  std::vector<CLSID> pages = PagesOf(effect, module);
  std::deque<ClassRegistration> classes;
  for (const CLSID& clsid : pages) classes.emplace_back(module, clsid);
  std::optional<Playback> playback;
  if (!options.inputs.empty()) playback.emplace(options.inputs.front(), chain);

  PagePhotographer photographer(options.opening);
  const auto on_tick = [&](HWND frame) {
    ThrowIfInterrupted();
    if (playback) playback->Check();
    return options.picture_path.empty() || photographer.Tick(frame);
  };
  ShowPropertyFrame(effect.Filter(), pages, std::string(effect.Type().title), on_tick);
  playback.reset();

  if (!options.picture_path.empty()) WriteWholeFile(options.picture_path, photographer.Picture(), options.force);
  WriteStates(StatesToSave(options.effects, chain), options.force);
  ReportPage(options);
  return kExitDone;
}

}  // namespace tervan::host
