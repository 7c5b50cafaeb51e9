#include <ctime>

#include "frame/entry/thread_clock.h"

namespace quillmere {

std::uint64_t ThreadTime() noexcept {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<std::uint64_t>(time.tv_sec) * 1'000'000 + static_cast<std::uint64_t>(time.tv_nsec) / 1'000;
}

}  // namespace quillmere
