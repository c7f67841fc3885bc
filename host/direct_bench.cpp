#include "host/direct_bench.h"

#include <deque>
#include <memory>
#include <optional>

#include "host/bench_timing.h"
#include "host/direct_stage.h"
#include "host/render_io.h"

namespace tervan::host {
namespace {

constexpr size_t kChannels = kBenchFormat.channels;

enum class Automation { kNone, kHeld, kMoving };

// Envelopes on all parameters, longer than any benchmark runs. Only those that take lines move: a switch that does
// would make the effect another one.
EffectInstance Automated(EffectInstance effect, Automation automation) {
  constexpr REFERENCE_TIME kOneDay = 864'000'000'000;
  if (automation == Automation::kNone) return effect;
  for (DWORD i = 0; i < effect.Params().size(); ++i) {
    const ParamDescription& param = effect.Params()[i];
    const float value = effect.ParamValue(i);
    const bool moves = automation == Automation::kMoving && (param.curve_caps & MP_CAPS_CURVE_LINEAR);
    const float end = !moves ? value : value < param.max ? param.max : param.min;
    const MP_ENVELOPE_SEGMENT segment{0, kOneDay, value, end, moves ? MP_CURVE_LINEAR : MP_CURVE_JUMP, 0};
    effect.Automate(i, {&segment, 1});
  }
  return effect;
}

// An effect in a stream of plain buffers.
class Track {
 public:
  Track(const BenchPlan& plan, const BenchCase& bench_case, Automation automation = Automation::kNone)
      : effect_(Automated(MakeEffect(plan.module, bench_case), automation)),
        watch_({&effect_, 1}, bench_case.is_watched ? plan.meter_window : nullptr),
        stage_(effect_, kBenchFormat) {}

  void Process(float* samples, size_t frames) { stage_.Process(samples, frames); }

 private:
  EffectInstance effect_;
  ReductionWatch watch_;
  DirectStage stage_;
};

// So many blocks of the material, one after the other; seconds for all.
class BlockPass {
 public:
  BlockPass(std::shared_ptr<Track> track, Material material, size_t block_frames, size_t blocks)
      : track_(std::move(track)), material_(MaterialOf(material)), block_frames_(block_frames), blocks_(blocks) {}

  double operator()() {
    samples_ = material_;
    return SecondsOf([this] {
      for (size_t i = 0; i < blocks_; ++i) track_->Process(&samples_[i * block_frames_ * kChannels], block_frames_);
    });
  }

 private:
  std::shared_ptr<Track> track_;
  std::vector<float> material_;
  size_t block_frames_;
  size_t blocks_;
  std::vector<float> samples_;
};

Trial MaterialTrial(const BenchPlan& plan, const BenchCase& bench_case, Material material, size_t block_frames) {
  return {BlockPass(std::make_shared<Track>(plan, bench_case), material, block_frames, kMaterialFrames / block_frames)};
}

double NsPerFrame(const Trial& trial) { return trial.least_s * kNsPerSecond / kMaterialFrames; }

// Instances in turn, a block each, until so many frames are done. Each has a buffer of its own and is elsewhere in the
// material, as tracks of a mix are.
class CrowdPass {
 public:
  static constexpr size_t kBlock = kBlockFrames[0];
  static constexpr size_t kFrames = 100 * 16 * kBlock;

  CrowdPass(const BenchPlan& plan, const BenchCase& bench_case, size_t count)
      : tracks_(std::make_shared<std::deque<Track>>()),
        material_(MaterialOf(Material::kProgramme)),
        buffers_(count * kBlockSamples) {
    for (size_t i = 0; i < count; ++i) tracks_->emplace_back(plan, bench_case);
  }

  double operator()() {
    const size_t rounds = kFrames / kBlock / tracks_->size();
    return SecondsOf([this, rounds] {
      for (size_t i = 0; i < rounds; ++i) Round();
    });
  }

 private:
  static constexpr size_t kBlockSamples = kBlock * kChannels;
  static constexpr size_t kMaterialBlocks = kMaterialFrames / kBlock;

  void Round() {
    const size_t count = tracks_->size();
    for (size_t i = 0; i < count; ++i) {
      const size_t block = (round_ + i * kMaterialBlocks / count) % kMaterialBlocks;
      float* const buffer = &buffers_[i * kBlockSamples];
      std::copy_n(&material_[block * kBlockSamples], kBlockSamples, buffer);
      (*tracks_)[i].Process(buffer, kBlock);
    }
    ++round_;
  }

  std::shared_ptr<std::deque<Track>> tracks_;
  std::vector<float> material_;
  std::vector<float> buffers_;
  size_t round_ = 0;
};

}  // namespace

BenchTable MeasurePlainBuffers(const BenchPlan& plan) {
  BenchTable table{.key = "plain_buffers",
                   .title = "Plain buffers of 32-bit float, by frames in a block: ns a frame, times real time",
                   .columns = {},
                   .rows = {}};
  AddBlockColumns(table, "ns", "ns_per_frame", 2);
  AddBlockColumns(table, "x", "times_real_time", 0);
  std::vector<CaseTrials> cases;
  for (const BenchCase& bench_case : plan.cases) {
    auto& trials = cases.emplace_back(CaseTrials{bench_case}).trials;
    for (const size_t frames : kBlockFrames) {
      trials.push_back(MaterialTrial(plan, bench_case, Material::kProgramme, frames));
    }
  }
  TakeTurns(cases, plan.passes);
  for (const auto& [bench_case, trials] : cases) {
    BenchRow& row = table.rows.emplace_back(BenchRow{bench_case, {}});
    for (const Trial& trial : trials) row.figures.push_back(NsPerFrame(trial));
    for (const Trial& trial : trials) row.figures.push_back(TimesRealTime(NsPerFrame(trial)));
  }
  return table;
}

BenchTable MeasureQuietInput(const BenchPlan& plan) {
  constexpr size_t kFrames = 512;
  BenchTable table{.key = "quiet_input",
                   .title = "Noise, silence and subnormal numbers, 512 frames in a block: ns a frame",
                   .columns = {{"programme", "programme_ns_per_frame", 2},
                               {"noise", "noise_ns_per_frame", 2},
                               {"silence", "silence_ns_per_frame", 2},
                               {"subnormal", "subnormal_ns_per_frame", 2},
                               {"worse of the two to noise", "ratio_to_noise", 2}},
                   .rows = {}};
  std::vector<CaseTrials> cases;
  for (const BenchCase& bench_case : plan.cases) {
    auto& trials = cases.emplace_back(CaseTrials{bench_case}).trials;
    for (const Material material : {Material::kProgramme, Material::kNoise, Material::kSilence, Material::kSubnormal}) {
      trials.push_back(MaterialTrial(plan, bench_case, material, kFrames));
    }
  }
  TakeTurns(cases, plan.passes);
  for (const auto& [bench_case, trials] : cases) {
    BenchRow& row = table.rows.emplace_back(BenchRow{bench_case, {}});
    for (const Trial& trial : trials) row.figures.push_back(NsPerFrame(trial));
    row.figures.push_back(std::max(row.figures[2], row.figures[3]) / row.figures[1]);
  }
  return table;
}

BenchTable MeasureCalls(const BenchPlan& plan) {
  constexpr size_t kCalls = 500;
  constexpr size_t kLengths[] = {1, 64};
  constexpr Automation kAutomations[] = {Automation::kNone, Automation::kHeld, Automation::kMoving};
  BenchTable table{
      .key = "calls",
      .title = "Calls of 1 and 64 frames, with all parameters automated but still, and with all moving: ns a call",
      .columns = {},
      .rows = {}};
  for (const size_t frames : kLengths) {
    const std::string number = std::to_string(frames);
    table.columns.push_back({"none @" + number, "plain_ns_" + number, 0});
    table.columns.push_back({"still @" + number, "held_ns_" + number, 0});
    table.columns.push_back({"moving @" + number, "moving_ns_" + number, 0});
  }
  std::vector<CaseTrials> cases;
  for (const BenchCase& bench_case : plan.cases) {
    if (!MakeEffect(plan.module, bench_case).As<IMediaParams>()) continue;
    auto& trials = cases.emplace_back(CaseTrials{bench_case}).trials;
    for (const size_t frames : kLengths) {
      for (const Automation automation : kAutomations) {
        const auto track = std::make_shared<Track>(plan, bench_case, automation);
        trials.push_back({BlockPass(track, Material::kProgramme, frames, kCalls)});
      }
    }
  }
  TakeTurns(cases, plan.passes);
  for (const auto& [bench_case, trials] : cases) {
    BenchRow& row = table.rows.emplace_back(BenchRow{bench_case, {}});
    for (const Trial& trial : trials) row.figures.push_back(trial.least_s * kNsPerSecond / kCalls);
  }
  return table;
}

BenchTable MeasureCrowd(const BenchPlan& plan) {
  constexpr size_t kCrowd = 100;
  BenchTable table{.key = "hundred_instances",
                   .title = "A hundred instances in turn against one, 64 frames in a block: ns a frame",
                   .columns = {{"one", "one_ns_per_frame", 2},
                               {"hundred", "hundred_ns_per_frame", 2},
                               {"hundred to one", "ratio", 2}},
                   .rows = {}};
  std::vector<CaseTrials> cases;
  for (const BenchCase& bench_case : plan.cases) {
    auto& trials = cases.emplace_back(CaseTrials{bench_case}).trials;
    for (const size_t count : {size_t{1}, kCrowd}) trials.push_back({CrowdPass(plan, bench_case, count)});
  }
  TakeTurns(cases, plan.passes);
  for (const auto& [bench_case, trials] : cases) {
    const double one = trials[0].least_s * kNsPerSecond / CrowdPass::kFrames;
    const double hundred = trials[1].least_s * kNsPerSecond / CrowdPass::kFrames;
    table.rows.push_back({bench_case, {one, hundred, hundred / one}});
  }
  return table;
}

}  // namespace tervan::host
