// The number format that the user chose in the system's settings.
#pragma once

#include "support/number_text.h"

namespace tervan {

// Asks the system anew each time, so that a change of the settings shows with the next text.
NumberFormat UserNumberFormat();

}  // namespace tervan
