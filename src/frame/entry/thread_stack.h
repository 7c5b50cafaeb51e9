// The room that is left on a thread's stack.
#pragma once

#include <cstddef>

namespace quillmere {

/// Bytes between the caller's frame and the end of the calling thread's stack. std::bad_alloc where the system takes
/// memory to tell and has none.
std::size_t StackLeft();

}  // namespace quillmere
