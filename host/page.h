// The command "page": an effect's property page in the platform's frame.
#pragma once

#include "host/options.h"

namespace tervan::host {

// Needs a single-threaded apartment. Gives an exit code; throws as all commands do.
int ShowPage(const Options& options);

}  // namespace tervan::host
