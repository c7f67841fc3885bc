// The benchmark's figures of the render command: a file through a filter graph, reading and writing and all.
#pragma once

#include "host/bench_plan.h"
#include "host/bench_table.h"

namespace tervan::host {

// One case of every effect, with files in the folder for temporary ones. Throws a Failure.
BenchTable MeasureRendering(const BenchPlan& plan);

}  // namespace tervan::host
