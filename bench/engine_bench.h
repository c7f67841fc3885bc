// What an engine costs per stereo frame: "per_frame" is the time of one frame, the block's copy out of the programme
// included (below 0.2 ns for 32-bit floats).
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "least.h"
#include "shell/automated_engine.h"
#include "shell/engine_dispatch.h"
#include "testing/formats.h"
#include "testing/programme.h"

namespace tervan::bench {

inline constexpr std::size_t kChannels = 2;
inline constexpr std::size_t kProgrammeFrames = 1 << 17;
inline constexpr std::size_t kPartFrames = 6000;  // the material changes about seven times a second

// Settings that never change.
template <typename Settings>
class FixedSettings : public SettingsSource<Settings> {
 public:
  explicit FixedSettings(const Settings& settings) : settings_(settings) {}
  bool HasChange() const override { return false; }
  bool SnapshotSettings(Settings* settings) override {
    *settings = settings_;
    return false;
  }

 private:
  const Settings settings_;
};

// process(Sample* block, frames) is timed over the programme, in blocks of the benchmark's argument.
template <typename Sample, typename Process>
void TimeBlocks(benchmark::State& state, const Process& process) {
  const auto block_frames = static_cast<std::size_t>(state.range(0));
  const auto programme = testing::SamplesOf<Sample>(testing::Programme(kProgrammeFrames, kChannels, kPartFrames, 0));
  std::vector<Sample> block(block_frames * kChannels);
  std::size_t at = 0;
  for ([[maybe_unused]] auto _ : state) {
    std::copy_n(programme.begin() + static_cast<std::ptrdiff_t>(at), block.size(), block.begin());
    process(block.data(), static_cast<std::uint32_t>(block_frames));
    benchmark::ClobberMemory();
    at = (at + block.size()) % programme.size();
  }
  const double frames = static_cast<double>(state.iterations()) * static_cast<double>(block_frames);
  state.counters["per_frame"] = benchmark::Counter(frames, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// An engine made from this source, in a stereo stream of 44100 Hz.
template <typename Sample, typename Engine, typename Source>
void TimeEngine(benchmark::State& state, Source& source) {
  Engine engine(source);
  engine.SetFormat(testing::FormatOf(kChannels, 44100));
  engine.Start();
  TimeBlocks<Sample>(state, [&engine](Sample* block, std::uint32_t frames) {
    ProcessWith(engine, testing::kFormatOf<Sample>, ProcessMode::kContinuous, block, &frames, false);
  });
}

// time: void(benchmark::State&)
template <typename Time>
void Register(const std::string& name, const Time& time) {
  auto* const benchmark = benchmark::RegisterBenchmark(("BM_" + name).c_str(), time);
  for (const int frames : {64, 512, 4096}) benchmark->Arg(frames);
  ReportLeast(benchmark);
}

template <typename Sample, typename Engine, typename Settings>
void RegisterFormat(const std::string& name, const Settings& settings) {
  Register(name, [settings](benchmark::State& state) {
    FixedSettings<Settings> source(settings);
    TimeEngine<Sample, Engine>(state, source);
  });
}

// An engine that wants nothing but settings, in all formats.
template <typename Engine, typename Settings>
void RegisterFormats(const std::string& name, const Settings& settings) {
  RegisterFormat<float, Engine>(name + "_StereoFloat32", settings);
  RegisterFormat<double, Engine>(name + "_StereoFloat64", settings);
  RegisterFormat<std::uint8_t, Engine>(name + "_StereoPcm8", settings);
  RegisterFormat<std::int16_t, Engine>(name + "_StereoPcm16", settings);
  RegisterFormat<std::int32_t, Engine>(name + "_StereoPcm32", settings);
}

}  // namespace tervan::bench
