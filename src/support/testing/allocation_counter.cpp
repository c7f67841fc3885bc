#include "support/testing/allocation_counter.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocations = 0;

void* Allocate(std::size_t bytes) {
  ++allocations;
  if (void* const memory = std::malloc(bytes == 0 ? 1 : bytes)) return memory;
  throw std::bad_alloc();
}

}  // namespace

namespace tervan::testing {

std::size_t AllocationsOfThisThread() noexcept { return allocations; }

}  // namespace tervan::testing

// The array and nothrow forms of the library call these.
void* operator new(std::size_t bytes) { return Allocate(bytes); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
