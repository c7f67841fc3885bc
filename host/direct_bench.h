// The benchmark's figures that are taken through IDirectBufferProcess, with 32-bit float. All throw a Failure.
#pragma once

#include "host/bench_plan.h"
#include "host/bench_table.h"

namespace tervan::host {

// By block length.
BenchTable MeasurePlainBuffers(const BenchPlan& plan);
// Silence and subnormal numbers against noise.
BenchTable MeasureQuietInput(const BenchPlan& plan);
// Short calls, with and without automation: what a chunk costs beside its frames. Only of effects with automation.
BenchTable MeasureCalls(const BenchPlan& plan);
// Many instances in turn.
BenchTable MeasureCrowd(const BenchPlan& plan);

}  // namespace tervan::host
