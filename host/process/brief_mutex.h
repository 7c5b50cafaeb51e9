// A mutex for what takes a moment.
#pragma once

#include <immintrin.h>

#include <mutex>

namespace qcalc {

/// Who finds it locked looks again for about a microsecond before the thread is sent to sleep, which costs both threads
/// several: for locks that every call of every thread takes, and none holds for longer.
class BriefMutex {
 public:
  void lock() {
    constexpr int kTries = 40;
    for (int i = 0; i < kTries; ++i) {
      if (mutex_.try_lock()) return;
      _mm_pause();
    }
    mutex_.lock();
  }
  void unlock() { mutex_.unlock(); }

 private:
  std::mutex mutex_;
};

}  // namespace qcalc
