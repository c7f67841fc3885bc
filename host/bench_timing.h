// How the benchmark takes times: in turns, and the least counts.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>
#include <span>

namespace tervan::host {

template <class Work>
double SecondsOf(const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// One thing whose time is wanted. What else the machine does can only make a pass longer.
struct Trial {
  std::function<double()> pass;  // does it once and gives the seconds that it took
  double least_s = std::numeric_limits<double>::infinity();
};

// Trials that are compared take turns, so that they meet the same machine. Throws a Failure when interrupted.
void TakeTurns(std::span<Trial> trials, int passes);

}  // namespace tervan::host
