#include "host/bench_timing.h"

#include "host/console.h"

namespace tervan::host {

void TakeTurns(std::span<CaseTrials> cases, int passes) {
  for (int pass = 0; pass < passes; ++pass) {
    ThrowIfInterrupted();
    for (CaseTrials& one : cases) {
      for (Trial& trial : one.trials) trial.least_s = std::min(trial.least_s, trial.pass());
    }
  }
}

}  // namespace tervan::host
