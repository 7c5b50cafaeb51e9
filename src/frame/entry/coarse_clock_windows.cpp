#include <windows.h>

#include "frame/entry/coarse_clock.h"

namespace quillmere {

std::uint64_t CoarseTime() noexcept { return GetTickCount64(); }

}  // namespace quillmere
