#include <ctime>

#include "frame/entry/coarse_clock.h"

namespace quillmere {

std::uint64_t CoarseTime() noexcept {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
  return static_cast<std::uint64_t>(time.tv_sec) * 1'000 + static_cast<std::uint64_t>(time.tv_nsec) / 1'000'000;
}

}  // namespace quillmere
