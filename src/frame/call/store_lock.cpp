#include "frame/call/store_lock.h"

#include <immintrin.h>

#include <algorithm>
#include <boost/thread/lock_types.hpp>

#include "frame/call/thread_record.h"

namespace quillmere {
namespace {

/// The guard's place that holds `mutex`, null when there is no guard or no such place.
CStoreMutex** PlaceInGuard(CStoreMutex* mutex) noexcept {
  ThreadRecord* const record = ExistingThreadRecord();
  if (!record || !record->guard) return nullptr;
  CStoreMutex** const begin = record->guard->heldLocks;
  CStoreMutex** const end = begin + kMaxHeldLocks;
  CStoreMutex** const place = std::find(begin, end, mutex);
  return place == end ? nullptr : place;
}

/// Looks again for about a microsecond. A store is locked for less, and a thread that is sent to sleep costs both
/// threads several.
bool TakenBriefly(boost::timed_mutex& mutex) {
  constexpr int kTries = 40;
  for (int i = 0; i < kTries; ++i) {
    if (mutex.try_lock()) return true;
    _mm_pause();
  }
  return false;
}

}  // namespace

CStoreLock::CStoreLock(CStoreMutex& mutex) : mutex_(&mutex) {
  if (!TakenBriefly(mutex.mutex_)) mutex.mutex_.lock();
  NoteInGuard();
}

CStoreLock::CStoreLock(CStoreMutex& mutex, std::chrono::milliseconds wait) : mutex_(nullptr) {
  if (!TakenBriefly(mutex.mutex_) && !mutex.mutex_.try_lock_for(boost::chrono::milliseconds(wait.count()))) return;
  mutex_ = &mutex;
  NoteInGuard();
}

CStoreLock::~CStoreLock() {
  if (!mutex_) return;
  if (CStoreMutex** const place = PlaceInGuard(mutex_)) *place = nullptr;
  mutex_->mutex_.unlock();
}

void CStoreLock::NoteInGuard() noexcept {
  if (CStoreMutex** const freePlace = PlaceInGuard(nullptr)) *freePlace = mutex_;
}

void ReleaseHeldLocks(FaultGuard& guard) noexcept {
  for (CStoreMutex*& held : guard.heldLocks) {
    if (held) held->mutex_.unlock();
    held = nullptr;
  }
}

}  // namespace quillmere
