// What it costs to ask for the next parameter change, once per chunk, while a stream plays forward over its envelopes.
// The number of segments should not matter.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "effects/compressor/compressor_settings.h"
#include "least.h"
#include "params/param_manager.h"

namespace tervan {
namespace {

constexpr std::uint32_t kRateHz = 48000;
constexpr std::uint32_t kBlockFrames = 512;
constexpr std::int64_t kSegment_100ns = 30000;  // 3 ms: each block meets several segments, as dense automation does

std::vector<SegmentData> Ramps(std::int64_t count) {
  std::vector<SegmentData> ramps;
  for (std::int64_t i = 0; i < count; ++i) {
    ramps.push_back({i * kSegment_100ns, (i + 1) * kSegment_100ns, 0.0f, 1.0f, kCurveLinear, 0});
  }
  return ramps;
}

// Arguments: envelopes, segments in each. One iteration is one chunk.
void BM_NextChangeFrames(benchmark::State& state) {
  const auto envelopes = static_cast<std::uint32_t>(state.range(0));
  const std::vector<SegmentData> ramps = Ramps(state.range(1));
  ParamManager params(compressor::kParams);
  params.SetSampleRate(kRateHz);
  params.SetStreaming(true);
  for (std::uint32_t i = 0; i < envelopes; ++i) {
    if (params.AddEnvelope(i, static_cast<std::uint32_t>(ramps.size()), ramps.data()) != S_OK) {
      state.SkipWithError("no envelope");
    }
  }
  const std::int64_t end_100ns = ramps.empty() ? INT64_MAX : ramps.back().rtEnd;
  const std::int64_t block_100ns = std::int64_t{kBlockFrames} * 10000000 / kRateHz;
  std::int64_t start_100ns = 0;
  std::uint32_t left = 0;
  for ([[maybe_unused]] auto _ : state) {
    if (left == 0) {
      if (start_100ns + block_100ns > end_100ns) {
        // Back to the start, and the search with it, outside the measured time.
        state.PauseTiming();
        start_100ns = 0;
        params.SetBlock({});
        params.NextChangeFrames(1, nullptr);
        state.ResumeTiming();
      }
      params.SetBlock({start_100ns, start_100ns + block_100ns});
      start_100ns += block_100ns;
      left = kBlockFrames;
    }
    std::uint32_t flags = 0;
    left -= std::min(left, params.NextChangeFrames(left, &flags));
    benchmark::DoNotOptimize(flags);
  }
}
BENCHMARK(BM_NextChangeFrames)
    ->ArgNames({"envelopes", "segments"})
    ->Args({0, 0})
    ->ArgsProduct({{1, 9}, {100, 10000}})
    ->Apply(bench::ReportLeast);

}  // namespace
}  // namespace tervan
