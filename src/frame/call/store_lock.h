// The lock of the process-wide stores: a timed mutex whose holder is known to the fault guard of the call, so that a
// call that ends by escape leaves no store locked.
//
// While a store is locked nothing is read from the host's memory: what can fault is done before.
#pragma once

#include <boost/thread/mutex.hpp>
#include <chrono>

#include "frame/call/fault_guard.h"

namespace quillmere {

/// How long a store's lock is waited for by what must not hold up a calculation.
constexpr std::chrono::milliseconds kStoreWait{100};
/// How long emptying a store waits.
constexpr std::chrono::milliseconds kDestroyWait{1000};

/// A timed mutex, not recursive; taken through CStoreLock.
class CStoreMutex {
 private:
  friend class CStoreLock;
  friend void ReleaseHeldLocks(FaultGuard& guard) noexcept;

  boost::timed_mutex mutex_;
};

/// Holds the mutex while it lives, or not at all if the wait was in vain.
class CStoreLock {
 public:
  /// Waits as long as it takes.
  explicit CStoreLock(CStoreMutex& mutex);
  /// Waits `wait` at most; HoldsLock tells whether that sufficed.
  CStoreLock(CStoreMutex& mutex, std::chrono::milliseconds wait);
  CStoreLock(const CStoreLock&) = delete;
  CStoreLock& operator=(const CStoreLock&) = delete;
  ~CStoreLock();

  bool HoldsLock() const noexcept { return mutex_ != nullptr; }

 private:
  void NoteInGuard() noexcept;

  CStoreMutex* mutex_;
};

/// Gives back the locks that a call noted in its guard and, having escaped, left locked.
void ReleaseHeldLocks(FaultGuard& guard) noexcept;

}  // namespace quillmere
