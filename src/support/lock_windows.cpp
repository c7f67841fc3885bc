#include <windows.h>

#include "support/lock.h"

namespace tervan {
namespace {

SRWLOCK* Slim(void** storage) { return reinterpret_cast<SRWLOCK*>(storage); }

}  // namespace

static_assert(sizeof(SRWLOCK) == sizeof(void*));

void Lock::lock() noexcept { AcquireSRWLockExclusive(Slim(&slim_lock_)); }
void Lock::unlock() noexcept { ReleaseSRWLockExclusive(Slim(&slim_lock_)); }

}  // namespace tervan
