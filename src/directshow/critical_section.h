// The platform's recursive lock with the standard library's names, so that std::lock_guard owns it.
#pragma once
#include <windows.h>

#include <mutex>

namespace tervan::directshow {

class CriticalSection {
 public:
  CriticalSection() noexcept { InitializeCriticalSection(&section_); }
  ~CriticalSection() { DeleteCriticalSection(&section_); }
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;

  void lock() noexcept { EnterCriticalSection(&section_); }
  void unlock() noexcept { LeaveCriticalSection(&section_); }

 private:
  CRITICAL_SECTION section_;
};

using LockGuard = std::lock_guard<CriticalSection>;

}  // namespace tervan::directshow
