// What the path around the engines costs: a chunk of one frame, with and without automation, and many effects in turn,
// as a mix has them.

#include "shell/stream_processor.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "comparison.h"
#include "effects/compressor/compressor_effect.h"
#include "effects/dither/dither_effect.h"
#include "effects/eq/eq_effect.h"
#include "effects/gate/gate_effect.h"
#include "least.h"

namespace tervan::bench {
namespace {

constexpr std::uint32_t kRateHz = 48000;
constexpr std::size_t kManyEffects = 100;
constexpr std::uint32_t kPreset = 3;  // of every effect: one that changes the sound

struct NoWindows : WindowPoster {
  bool Exists(WindowHandle) override { return false; }
  void PostCommand(WindowHandle, std::int32_t, std::uint16_t) override {}
};

// An effect in a stereo stream.
template <typename EffectType>
struct Track {
  Track() {
    ApplyPreset(effect, kPreset);
    processor.BeginStream(2, kRateHz);
    processor.Refresh(true);
  }
  NoWindows windows;
  EffectType effect{windows};
  StreamProcessor processor{effect};
};

enum class Automation { kNone, kConstant, kMoving };

// All parameters from where they are, for longer than the benchmark runs.
void Automate(ParamManager& params, Automation automation) {
  const std::uint32_t curve = automation == Automation::kMoving ? kCurveLinear : kCurveJump;
  const auto count = automation == Automation::kNone ? 0u : static_cast<std::uint32_t>(params.table().size());
  for (std::uint32_t i = 0; i < count; ++i) {
    float value = 0.0f;
    params.GetParam(i, &value);
    const SegmentData segment{0, INT64_MAX, value, value + 1.0f, curve, 0};
    params.AddEnvelope(i, 1, &segment);
  }
}

// A moving parameter costs a new design of the coefficients on top.
template <typename EffectType>
void TimeChunk(benchmark::State& state, Automation automation) {
  Track<EffectType> track;
  Automate(*track.effect.params(), automation);
  float frame[2] = {0.1f, 0.1f};
  for ([[maybe_unused]] auto _ : state) {
    track.processor.ProcessBuffer(frame, 1, false);
    benchmark::DoNotOptimize(frame);
  }
}

template <typename EffectType>
void RegisterChunks(const std::string& effect) {
  const struct {
    const char* name;
    Automation automation;
  } kRows[] = {{"", Automation::kNone}, {"_AllHeld", Automation::kConstant}, {"_AllMoving", Automation::kMoving}};
  for (const auto& row : kRows) {
    const auto time = [automation = row.automation](benchmark::State& state) {
      TimeChunk<EffectType>(state, automation);
    };
    ReportLeast(benchmark::RegisterBenchmark(("Chunk_" + effect + row.name).c_str(), time));
  }
}

// Blocks go to the tracks in turn.
template <typename EffectType>
auto Tracks(std::size_t count) {
  return Timed<float>([tracks = std::vector<Track<EffectType>>(count), next = std::size_t{0}](
                          float* samples, std::uint32_t frames) mutable {
    tracks[next].processor.ProcessBuffer(samples, frames, false);
    next = next + 1 == tracks.size() ? 0 : next + 1;
  });
}

template <typename EffectType>
void RegisterTracks(const std::string& effect) {
  RegisterComparison(
      "HundredTracks_" + effect, [] { return Tracks<EffectType>(1); }, [] { return Tracks<EffectType>(kManyEffects); });
}

[[maybe_unused]] const bool registered = [] {
  RegisterChunks<CompressorEffect>("Compressor");
  RegisterChunks<EqEffect>("Eq");
  RegisterChunks<GateEffect>("Gate");
  RegisterTracks<CompressorEffect>("Compressor");
  RegisterTracks<EqEffect>("Eq");
  RegisterTracks<GateEffect>("Gate");
  RegisterTracks<DitherEffect>("Dither");
  return true;
}();

}  // namespace
}  // namespace tervan::bench
