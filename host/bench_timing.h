// How the benchmark takes times: in turns, and the least counts. What else the machine does can only make a pass
// longer.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>
#include <span>
#include <vector>

#include "host/bench_cases.h"

namespace tervan::host {

template <class Work>
double SecondsOf(const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// One thing whose time is wanted.
struct Trial {
  std::function<double()> pass;  // does it once and gives the seconds that it took
  double least_s = std::numeric_limits<double>::infinity();
};

// The trials of a case are compared with each other.
struct CaseTrials {
  BenchCase bench_case;
  std::vector<Trial> trials = {};
};

// Pass by pass, all trials of all cases take turns: those of one case meet the same machine, and a machine that is slow
// for a while has been quick for all of them before or will be. Throws a Failure when interrupted.
void TakeTurns(std::span<CaseTrials> cases, int passes);

}  // namespace tervan::host
