// The least of several repetitions: what else the machine does can only make a run slower.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

namespace tervan::bench {

inline void ReportLeast(benchmark::internal::Benchmark* benchmark) {
  benchmark->Repetitions(7)->MinTime(0.05)->DisplayAggregatesOnly(true)->ComputeStatistics(
      "least", [](const std::vector<double>& values) { return *std::min_element(values.begin(), values.end()); });
}

}  // namespace tervan::bench
