#include "host/filter_bench.h"

#include <x86intrin.h>

#include <cstring>
#include <memory>
#include <vector>

#include "host/bench_timing.h"
#include "host/console.h"
#include "host/render_io.h"
#include "host/stream_graph.h"

namespace tervan::host {
namespace {

constexpr int kPassesPerRun = 3;

// Both ends of a stream. Takes the time from when a block leaves the one until it reaches the other, summed up over a
// pass through the material. With the processor's own counter, as a block takes hardly longer than asking the platform
// for the time; the pass as a whole tells how long a tick is.
class FilterTimer final : public SampleSource, public SampleSink {
 public:
  explicit FilterTimer(SampleType type) : format_(kBenchFormat.With(type)), material_(ProgrammeAs(type)) {}

  const AudioFormat& Format() const override { return format_; }
  std::optional<std::uint64_t> Frames() const override { return kPassesPerRun * kMaterialFrames; }
  double LeastSeconds() const { return least_s_; }  // of a pass, once the stream has ended

  size_t Read(void* data, size_t frames) override {
    if (passes_done_ == kPassesPerRun) return 0;
    if (frames_done_ == 0) {
      pass_start_ = std::chrono::steady_clock::now();
      pass_start_ticks_ = __rdtsc();
      ticks_ = 0;
    }
    frames = std::min(frames, kMaterialFrames - frames_done_);
    std::memcpy(data, &material_[frames_done_ * format_.FrameBytes()], frames * format_.FrameBytes());
    frames_done_ += frames;
    block_start_ticks_ = __rdtsc();
    return frames;
  }

  void Write(const void* /*data*/, size_t frames) override {
    const std::uint64_t now_ticks = __rdtsc();
    if (frames == 0) return;  // an effect's last sample may be empty
    ticks_ += now_ticks - block_start_ticks_;
    if (frames_done_ < kMaterialFrames) return;
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - pass_start_;
    const double tick_s = elapsed.count() / static_cast<double>(now_ticks - pass_start_ticks_);
    least_s_ = std::min(least_s_, static_cast<double>(ticks_) * tick_s);
    frames_done_ = 0;
    ++passes_done_;
  }

 private:
  const AudioFormat format_;
  const std::vector<std::uint8_t> material_;
  int passes_done_ = 0;
  size_t frames_done_ = 0;  // of this pass
  std::chrono::steady_clock::time_point pass_start_;
  std::uint64_t pass_start_ticks_ = 0;
  std::uint64_t block_start_ticks_ = 0;
  std::uint64_t ticks_ = 0;
  double least_s_ = std::numeric_limits<double>::infinity();
};

double RunGraph(const EffectInstance& effect, HWND meter_window, SampleType type, size_t block_frames) {
  constexpr long kPollMs = 50;
  const std::span<const EffectInstance> chain(&effect, 1);
  const ReductionWatch watch(chain, meter_window);
  FilterTimer timer(type);
  StreamGraph graph(timer, timer, chain, block_frames, Pace::kUnlimited);
  graph.Run();
  while (!graph.IsComplete(kPollMs)) ThrowIfInterrupted();
  return timer.LeastSeconds();
}

}  // namespace

BenchTable MeasureFilter(const BenchPlan& plan) {
  constexpr size_t kBlocks = kBlockFrames.size();
  BenchTable table{.key = "filter_pcm16",
                   .title =
                       "16-bit PCM through the filter, by frames in a sample: ns a frame, times real time, and ns "
                       "to those of 32-bit float",
                   .columns = {},
                   .rows = {}};
  AddBlockColumns(table, "ns", "ns_per_frame", 2);
  AddBlockColumns(table, "x", "times_real_time", 0);
  AddBlockColumns(table, "to f32", "ratio_to_float32", 2);
  std::vector<CaseTrials> cases;
  for (const BenchCase& bench_case : plan.cases) {
    auto& trials = cases.emplace_back(CaseTrials{bench_case}).trials;
    const HWND window = bench_case.is_watched ? plan.meter_window : nullptr;
    const auto effect = std::make_shared<EffectInstance>(MakeEffect(plan.module, bench_case));
    for (const size_t frames : kBlockFrames) {
      for (const SampleType type : {SampleType::kPcm16, SampleType::kFloat32}) {
        trials.push_back({[=] { return RunGraph(*effect, window, type, frames); }});
      }
    }
  }
  TakeTurns(cases, plan.graph_runs);
  for (const auto& [bench_case, trials] : cases) {
    std::vector<double> figures;
    for (size_t i = 0; i < kBlocks; ++i) figures.push_back(trials[2 * i].least_s * kNsPerSecond / kMaterialFrames);
    for (size_t i = 0; i < kBlocks; ++i) figures.push_back(TimesRealTime(figures[i]));
    for (size_t i = 0; i < kBlocks; ++i) figures.push_back(trials[2 * i].least_s / trials[2 * i + 1].least_s);
    table.rows.push_back({bench_case, figures});
  }
  return table;
}

}  // namespace tervan::host
