// What the compressor costs per stereo frame: "per_frame" is the time of one frame, the block's copy out of the
// programme included (below 0.2 ns for 32-bit floats).

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "effects/compressor/compressor_engine.h"
#include "least.h"
#include "testing/programme.h"

namespace tervan {
namespace {

constexpr std::size_t kChannels = 2;
constexpr std::size_t kProgrammeFrames = 1 << 17;
constexpr std::size_t kPartFrames = 6000;  // the material changes about seven times a second

class BenchOwner : public CompressorEngineOwner {
 public:
  BenchOwner(const CompressorSettings& settings, bool watched) : settings_(settings), watched_(watched) {}

  bool SnapshotSettings(CompressorSettings* settings) override {
    *settings = settings_;
    return false;
  }
  void PublishMeters(const CompressorMeters& meters) override { benchmark::DoNotOptimize(meters); }
  bool IsWatched() const override { return watched_; }

 private:
  const CompressorSettings settings_;
  const bool watched_;
};

template <typename Sample>
void ProcessBlock(CompressorEngine& engine, Sample* data, std::uint32_t frames) {
  constexpr ProcessMode kMode = ProcessMode::kContinuous;
  if constexpr (std::is_same_v<Sample, std::uint8_t>) engine.ProcessPcm8(kMode, data, &frames);
  if constexpr (std::is_same_v<Sample, std::int16_t>) engine.ProcessPcm16(kMode, data, &frames);
  if constexpr (std::is_same_v<Sample, std::int32_t>) engine.ProcessPcm32(kMode, data, &frames);
  if constexpr (std::is_same_v<Sample, float>) engine.ProcessFloat32(kMode, data, &frames, false);
  if constexpr (std::is_same_v<Sample, double>) engine.ProcessFloat64(kMode, data, &frames);
}

struct Variant {
  bool metered;
  bool smooth;
};

template <typename Sample>
void BM_Compressor(benchmark::State& state, Variant variant) {
  const auto block_frames = static_cast<std::size_t>(state.range(0));
  const auto programme = testing::SamplesOf<Sample>(testing::Programme(kProgrammeFrames, kChannels, kPartFrames, 0));
  const CompressorSettings settings{0, 0, -24, 4, 15, 250, 1, variant.smooth ? 1 : 0, 0, 0};
  BenchOwner owner(settings, variant.metered);
  CompressorEngine engine(owner);
  StreamFormat format{};
  format.nChannels = kChannels;
  format.nSamplesPerSec = 44100;
  engine.SetFormat(format);
  engine.Start();

  std::vector<Sample> block(block_frames * kChannels);
  std::size_t at = 0;
  for ([[maybe_unused]] auto _ : state) {
    std::copy_n(programme.begin() + static_cast<std::ptrdiff_t>(at), block.size(), block.begin());
    ProcessBlock(engine, block.data(), static_cast<std::uint32_t>(block_frames));
    benchmark::ClobberMemory();
    at = (at + block.size()) % programme.size();
  }
  const double frames = static_cast<double>(state.iterations()) * static_cast<double>(block_frames);
  state.counters["per_frame"] = benchmark::Counter(frames, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

template <typename Sample>
void Register(const std::string& format, Variant variant) {
  const std::string name =
      "BM_Compressor_Stereo" + format + (variant.metered ? "_Metered" : "") + (variant.smooth ? "_Smooth" : "");
  auto* const benchmark = benchmark::RegisterBenchmark(
      name.c_str(), [variant](benchmark::State& state) { BM_Compressor<Sample>(state, variant); });
  for (const int frames : {64, 512, 4096}) benchmark->Arg(frames);
  bench::ReportLeast(benchmark);
}

// Only 32-bit floats have a path without meters.
[[maybe_unused]] const bool registered = [] {
  for (const bool smooth : {false, true}) {
    Register<float>("Float32", {false, smooth});
    Register<float>("Float32", {true, smooth});
    Register<double>("Float64", {true, smooth});
    Register<std::uint8_t>("Pcm8", {true, smooth});
    Register<std::int16_t>("Pcm16", {true, smooth});
    Register<std::int32_t>("Pcm32", {true, smooth});
  }
  return true;
}();

}  // namespace
}  // namespace tervan
