#include <windows.h>

#include "frame/entry/thread_stack.h"

namespace quillmere {

std::size_t StackLeft() {
  ULONG_PTR lowest = 0, highest = 0;
  GetCurrentThreadStackLimits(&lowest, &highest);
  return reinterpret_cast<ULONG_PTR>(__builtin_frame_address(0)) - lowest;
}

}  // namespace quillmere
