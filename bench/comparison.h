// Two routines over the same material, taking turns pass by pass, so that both meet the same machine. Of many passes
// the fastest counts: what else the machine does can only make one slower. Counters: "ns" is the time of the second
// routine per frame, "base_ns" that of the first, "ratio" how many times faster the second is.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "testing/programme.h"

namespace tervan::bench {

inline constexpr std::size_t kMaterialFrames = 1 << 15;  // 256 KiB of stereo 32-bit floats: second-level cache
inline constexpr std::size_t kPartFrames = 6000;         // of a kind of programme material
inline constexpr int kPasses = 101;

enum class Material { kProgramme, kNoise, kSilence, kSubnormal };

// kMaterialFrames × channels interleaved samples. Subnormal is so for 64-bit floats, too.
template <typename Sample>
std::vector<Sample> MaterialOf(Material material, std::size_t channels) {
  std::vector<double> signal = testing::Programme(kMaterialFrames, channels, kPartFrames, 0);
  switch (material) {
    case Material::kProgramme: break;
    case Material::kNoise: signal = testing::Programme(kMaterialFrames, channels, kMaterialFrames, 1); break;
    case Material::kSilence: signal.assign(signal.size(), 0.0); break;
    case Material::kSubnormal: {
      std::vector<Sample> samples(signal.size());
      for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<Sample>(signal[i]) * std::numeric_limits<Sample>::min();
      }
      return samples;
    }
  }
  return testing::SamplesOf<Sample>(signal);
}

// A routine with the state that it carries, the samples it works on, and the fastest pass so far. process(samples,
// frames) works in place.
template <typename Sample, typename Process>
class TimedRoutine {
 public:
  TimedRoutine(Process process, Material material, std::size_t channels)
      : process_(std::move(process)), channels_(channels), material_(MaterialOf<Sample>(material, channels)) {}

  void Pass(std::size_t block_frames) {
    samples_ = material_;
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t at = 0; at < kMaterialFrames; at += block_frames) {
      process_(samples_.data() + at * channels_, static_cast<std::uint32_t>(block_frames));
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    benchmark::ClobberMemory();
    least_s_ = std::min(least_s_, elapsed.count());
  }

  double NanosecondsPerFrame() const { return least_s_ * 1e9 / kMaterialFrames; }

 private:
  Process process_;
  const std::size_t channels_;
  const std::vector<Sample> material_;
  std::vector<Sample> samples_;
  double least_s_ = 1e9;
};

template <typename Sample, typename Process>
auto Timed(Process process, Material material = Material::kProgramme, std::size_t channels = 2) {
  return TimedRoutine<Sample, Process>(std::move(process), material, channels);
}

// make_base() and make_routine() give TimedRoutines, made anew for each block length.
template <typename MakeBase, typename MakeRoutine>
void RegisterComparison(const std::string& name, const MakeBase& make_base, const MakeRoutine& make_routine) {
  const auto compare = [=](benchmark::State& state) {
    const auto block_frames = static_cast<std::size_t>(state.range(0));
    auto base = make_base();
    auto routine = make_routine();
    for ([[maybe_unused]] auto _ : state) {
      for (int pass = 0; pass < kPasses; ++pass) {
        base.Pass(block_frames);
        routine.Pass(block_frames);
      }
    }
    state.counters["base_ns"] = base.NanosecondsPerFrame();
    state.counters["ns"] = routine.NanosecondsPerFrame();
    state.counters["ratio"] = base.NanosecondsPerFrame() / routine.NanosecondsPerFrame();
  };
  auto* const registered = benchmark::RegisterBenchmark(name.c_str(), compare);
  for (const int frames : {64, 512, 4096}) registered->Arg(frames);
  registered->Iterations(1)->Unit(benchmark::kMillisecond);
}

}  // namespace tervan::bench
