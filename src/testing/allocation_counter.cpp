#include "testing/allocation_counter.h"

#include <cstdlib>
#include <new>

namespace {
thread_local std::size_t allocations = 0;
}  // namespace

namespace tervan::testing {

std::size_t AllocationsOfThisThread() noexcept { return allocations; }

}  // namespace tervan::testing

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TERVAN_SANITIZER_ALLOCATES
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TERVAN_SANITIZER_ALLOCATES
#endif

#ifdef TERVAN_SANITIZER_ALLOCATES
// The sanitizers bring operators of their own, which check more than ours would; they tell of each allocation.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*allocated)(const volatile void*, std::size_t),
                                                         void (*freed)(const volatile void*));
namespace {
[[maybe_unused]] const int hooks_installed = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, std::size_t) { ++allocations; }, [](const volatile void*) {});
}  // namespace
#else
// The array and nothrow forms of the library call these.
void* operator new(std::size_t bytes) {
  ++allocations;
  if (void* const memory = std::malloc(bytes == 0 ? 1 : bytes)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
#endif
