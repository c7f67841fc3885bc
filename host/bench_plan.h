// What all figures of a benchmark have in common.
#pragma once

#include <windows.h>

#include <span>

#include "host/bench_cases.h"
#include "host/module_loader.h"

namespace tervan::host {

struct BenchPlan {
  const Module& module;
  std::span<const BenchCase> cases;
  HWND meter_window;  // null for none
  int passes;
  int graph_runs;
  size_t file_seconds;  // of a file that is rendered
};

}  // namespace tervan::host
