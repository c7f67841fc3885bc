#include "host/bench.h"

#include <vector>

#include "host/console.h"
#include "host/direct_bench.h"
#include "host/filter_bench.h"
#include "host/json_writer.h"
#include "host/machine_info.h"
#include "host/render_bench.h"
#include "host/render_io.h"

namespace tervan::host {
namespace {

constexpr int kModuleBits = 8 * sizeof(void*);  // those of this program: it has loaded the module
constexpr BenchTable (*kMeasurements[])(const BenchPlan&) = {MeasurePlainBuffers, MeasureFilter, MeasureQuietInput,
                                                             MeasureCalls,        MeasureCrowd,  MeasureRendering};

std::string HeadingText(const LoadedModule& module) {
  return "module     " + module.path + "\nversion    " + module.version + ", " + std::to_string(kModuleBits) +
         " bits\nprocessor  " + ProcessorName() + "\n\nStereo at " + std::to_string(kBenchFormat.rate_hz) +
         " Hz; the least of several passes.\n";
}

void AddHeading(JsonWriter& json, const LoadedModule& module) {
  json.Key("module").Text(module.path).Key("version").Text(module.version).Key("bits").Integer(kModuleBits);
  json.Key("processor").Text(ProcessorName());
  json.Key("sample_rate_hz").Integer(kBenchFormat.rate_hz).Key("channels").Integer(kBenchFormat.channels);
}

}  // namespace

void Bench(const Options& options) {
  const Module module(options.module_path);
  const std::vector<BenchCase> cases = BenchCases(module, options.effects);
  const MeterWindow meter_window;
  const BenchPlan plan{.module = module,
                       .cases = cases,
                       .meter_window = meter_window.Get(),
                       .passes = options.quick ? 5 : 101,
                       .graph_runs = options.quick ? 1 : 6,
                       .file_seconds = options.quick ? 10u : 60u};
  const LoadedModule loaded = ModuleOf(MakeEffect(module, cases.front()).Filter());
  JsonWriter json;
  json.BeginObject();
  AddHeading(json, loaded);
  if (!options.json) PrintOut(HeadingText(loaded));
  for (const auto measure : kMeasurements) {
    const BenchTable table = measure(plan);
    AddTable(json, table);
    if (!options.json && !table.rows.empty()) PrintOut('\n' + TableText(table));
  }
  json.EndObject();
  if (options.json) PrintOut(json.Take());
}

}  // namespace tervan::host
