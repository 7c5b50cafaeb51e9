#include <windows.h>

#include "frame/entry/thread_clock.h"

namespace quillmere {

std::uint64_t ThreadTime() noexcept {
  FILETIME begun, ended, inSystem{}, inProcess{};
  GetThreadTimes(GetCurrentThread(), &begun, &ended, &inSystem, &inProcess);
  const auto ticks = [](const FILETIME& time) { return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime; };
  constexpr std::uint64_t kTicksPerMicrosecond = 10;
  return (ticks(inSystem) + ticks(inProcess)) / kTicksPerMicrosecond;
}

}  // namespace quillmere
