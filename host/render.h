// The render command: checks everything that can be checked, then renders one input after the other.
#pragma once

#include "host/options.h"

namespace tervan::host {

// Prints the results on stdout and a sentence for every file that failed on stderr; the others are rendered all the
// same. Throws a UsageError or Failure for what concerns all files, before any output is touched.
// Gives the exit code.
int Render(const Options& options);

}  // namespace tervan::host
