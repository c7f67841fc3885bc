// Counts what the calling thread allocates with new, for tests of code that must not. Linking allocation_counter.cpp
// replaces the operator for the whole test program.
#pragma once

#include <cstddef>

namespace tervan::testing {

std::size_t AllocationsOfThisThread() noexcept;

}  // namespace tervan::testing
