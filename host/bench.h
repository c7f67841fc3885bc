// The bench command: how fast the module is on this machine.
#pragma once

#include "host/options.h"

namespace tervan::host {

// Prints the figures, table by table as they are measured, or all together as JSON. Throws a UsageError or Failure.
void Bench(const Options& options);

}  // namespace tervan::host
