#include "host/render.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <vector>

#include "host/automation_csv.h"
#include "host/console.h"
#include "host/direct_render.h"
#include "host/effect_instance.h"
#include "host/exit_code.h"
#include "host/failure.h"
#include "host/graph_render.h"
#include "host/output_file.h"
#include "host/report.h"
#include "host/stored_states.h"
#include "host/stream_graph.h"
#include "host/text.h"

namespace tervan::host {
namespace {

std::vector<EffectInstance> MakeChain(const RenderPlan& plan) {
  if (!plan.module) return {};
  return MakeChain(*plan.module, plan.options.effects);
}

bool HaveMeters(std::span<const EffectInstance> chain) {
  return std::ranges::any_of(chain, [](const EffectInstance& effect) { return effect.Type().watch_meters != nullptr; });
}

void CheckOutputs(const Options& options, std::span<const StateFile> states) {
  std::vector<std::string> outputs;
  for (const std::string& input : options.inputs) outputs.push_back(OutputPathFor(options.output, input));
  for (const StateFile& state : states) outputs.push_back(state.path);
  CheckOutputPaths(outputs, options.inputs);
  for (const StateFile& state : states) CheckReplaceable(state.path, options.force);
}

// What the effects work on. Integers that shall be cut to a word length are cut once, at the end of the chain.
SampleType WorkingType(const Options& options, const AudioFormat& input) {
  if (options.path == RenderPath::kDirect) return SampleType::kFloat32;
  if (options.word_length && !input.IsFloat()) return SampleType::kFloat64;
  return WorkingType(input.type);
}

Levels LevelsOf(const LevelMeter& meter) { return {meter.PeakDb(), meter.RmsDb()}; }

// Without results.
FileReport ReportOn(const RenderPlan& plan, const std::string& input) {
  FileReport report;
  report.input = input;
  report.output = OutputPathFor(plan.options.output, input);
  return report;
}

FileReport TryFile(const RenderPlan& plan, const std::string& input) {
  FileReport report = ReportOn(plan, input);
  try {
    return RenderFile(plan, input);
  } catch (const std::bad_alloc&) {
    report.error = "memory ran out";
  } catch (const std::exception& error) {
    report.error = error.what();
  }
  PrintError("tervan-host: " + report.error + '\n');
  return report;
}

}  // namespace

FileReport RenderFile(const RenderPlan& plan, const std::string& input_path) {
  const Options& options = plan.options;
  FileReport report = ReportOn(plan, input_path);
  const auto start = std::chrono::steady_clock::now();
  WavReader reader(report.input);
  const SampleType type = WorkingType(options, reader.Format());
  report.input_format = reader.Format();
  report.output_format = reader.Format().With(options.word_length.value_or(type));
  WavWriter writer(report.output, report.output_format, reader.Frames(), options.force);

  // New effects for every file: nothing of one may be heard in the next.
  std::vector<EffectInstance> chain = MakeChain(plan);
  Automate(chain, plan.automation);
  RenderInput input(reader, type);
  RenderOutput output(writer, type, chain, plan.meter_window);
  ProgressLine progress(report.input, reader.Frames());
  const size_t buffer_frames = BufferFrames(reader.Format(), !plan.automation.empty());
  const auto render = options.path == RenderPath::kDirect ? RenderDirectly : RenderThroughGraph;
  render(input, output, chain, buffer_frames, progress);
  ThrowIfInterrupted();
  writer.Finish();

  report.frames = writer.Frames();
  report.input_levels = LevelsOf(input.Levels());
  report.output_levels = LevelsOf(output.Levels());
  const auto reductions = output.Reductions().LargestDb();
  for (size_t i = 0; i < chain.size(); ++i) {
    report.effects.push_back({std::string(chain[i].Type().name), reductions[i]});
  }
  report.elapsed_s = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return report;
}

int Render(const Options& options) {
  RenderPlan plan{.options = options};
  std::optional<Module> module;
  if (!options.effects.empty()) plan.module = &module.emplace(options.module_path);
  std::optional<MeterWindow> meter_window;
  std::vector<Envelope> automation;
  std::vector<StateFile> states;
  {
    const std::vector<EffectInstance> chain = MakeChain(plan);
    if (HaveMeters(chain)) plan.meter_window = meter_window.emplace().Get();
    if (!options.automation_path.empty()) automation = ReadAutomation(options.automation_path, chain);
    // Settings do not change while files are rendered, so they can be stored from a chain that never ran.
    states = StatesToSave(options.effects, chain);
  }
  plan.automation = automation;
  CheckOutputs(options, states);

  // Never used, but there: no file has to wait until the platform has loaded what its graph needs.
  directshow::ComPtr<IGraphBuilder> first_graph;
  if (options.path == RenderPath::kGraph) first_graph = CreateFilterGraph();

  std::vector<FileReport> reports;
  bool has_failed = false;
  for (const std::string& input : options.inputs) {
    reports.push_back(TryFile(plan, input));
    const FileReport& report = reports.back();
    has_failed |= !report.error.empty();
    if (report.error.empty() && !options.json) PrintOut(ReportText(report));
    if (IsInterrupted()) break;
  }
  if (options.json) PrintOut(ReportJson(reports, options.path));
  if (has_failed) return kExitFailed;
  WriteStates(states, options.force);
  return kExitDone;
}

}  // namespace tervan::host
