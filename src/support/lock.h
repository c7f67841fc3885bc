// A short, non-recursive lock. Taking it neither allocates nor, when it is free, enters the kernel.
#pragma once

#ifndef _WIN32
#include <mutex>
#endif

namespace tervan {

#ifdef _WIN32
// A slim reader-writer lock of the platform, held exclusively. (The standard mutex of this toolchain allocates at its
// first use and leaks at its end.)
class Lock {
 public:
  Lock() = default;
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

  void lock() noexcept;
  void unlock() noexcept;

 private:
  void* slim_lock_ = nullptr;  // an SRWLOCK; null is its unlocked state
};
#else
using Lock = std::mutex;
#endif

class [[nodiscard]] LockGuard {
 public:
  explicit LockGuard(Lock& lock) : lock_(lock) { lock_.lock(); }
  ~LockGuard() { lock_.unlock(); }
  LockGuard(const LockGuard&) = delete;
  LockGuard& operator=(const LockGuard&) = delete;

 private:
  Lock& lock_;
};

}  // namespace tervan
