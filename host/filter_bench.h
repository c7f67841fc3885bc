// The benchmark's figures of 16-bit PCM in a filter graph: of the way from the source's pin through the effect to the
// writer's, without the allocator.
#pragma once

#include "host/bench_plan.h"
#include "host/bench_table.h"

namespace tervan::host {

// By block length. Throws a Failure.
BenchTable MeasureFilter(const BenchPlan& plan);

}  // namespace tervan::host
