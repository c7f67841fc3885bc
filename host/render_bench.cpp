#include "host/render_bench.h"

#include <array>
#include <vector>

#include "host/bench_timing.h"
#include "host/failure.h"
#include "host/render.h"
#include "host/text.h"
#include "host/wav_writer.h"

namespace tervan::host {
namespace {

constexpr int kRuns = 3;

// An empty file that goes with the object.
class TemporaryFile {
 public:
  TemporaryFile() {
    std::array<wchar_t, MAX_PATH + 1> folder{}, path{};
    if (!GetTempPathW(folder.size(), folder.data()) || !GetTempFileNameW(folder.data(), L"tvn", 0, path.data())) {
      throw Failure("cannot make a temporary file: " + SystemMessage(GetLastError()));
    }
    path_ = Narrow(path.data());
  }
  ~TemporaryFile() { DeleteFileW(Wide(path_).c_str()); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

// Gives its length.
double WriteMaterial(const std::string& path, SampleType type, size_t seconds) {
  const AudioFormat format = kBenchFormat.With(type);
  const std::vector<std::uint8_t> bytes = ProgrammeAs(type);
  const size_t parts = seconds * format.rate_hz / kMaterialFrames;
  WavWriter writer(path, format, parts * kMaterialFrames, true);
  for (size_t i = 0; i < parts; ++i) writer.Write(bytes.data(), kMaterialFrames);
  writer.Finish();
  return static_cast<double>(writer.Frames()) / format.rate_hz;
}

double RenderSeconds(const BenchPlan& plan, const BenchCase& bench_case, const TemporaryFile& input,
                     const TemporaryFile& output) {
  Options options;
  options.effects = {ParseEffectRequest(bench_case.settings)};
  options.output = output.Path();
  options.force = true;
  const RenderPlan render_plan{.options = options, .module = &plan.module, .meter_window = plan.meter_window};
  return RenderFile(render_plan, input.Path()).elapsed_s;
}

}  // namespace

BenchTable MeasureRendering(const BenchPlan& plan) {
  BenchTable table{
      .key = "graph_render",
      .title = "render through a filter graph, from file to file: times real time",
      .columns = {{"16-bit PCM", "pcm16_times_real_time", 0}, {"32-bit float", "float32_times_real_time", 0}},
      .rows = {}};
  const TemporaryFile pcm16, float32, output;
  const double duration_s = WriteMaterial(pcm16.Path(), SampleType::kPcm16, plan.file_seconds);
  WriteMaterial(float32.Path(), SampleType::kFloat32, plan.file_seconds);
  std::vector<CaseTrials> cases;
  for (const BenchCase& bench_case : plan.cases) {
    if (!bench_case.is_first) continue;
    auto& trials = cases.emplace_back(CaseTrials{bench_case}).trials;
    for (const TemporaryFile* const input : {&pcm16, &float32}) {
      trials.push_back({[&, input] { return RenderSeconds(plan, bench_case, *input, output); }});
    }
  }
  TakeTurns(cases, kRuns);
  for (const auto& [bench_case, trials] : cases) {
    table.rows.push_back({bench_case, {duration_s / trials[0].least_s, duration_s / trials[1].least_s}});
  }
  return table;
}

}  // namespace tervan::host
