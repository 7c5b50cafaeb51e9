// The room that is left on a thread's stack.
#pragma once

#include <cstddef>

namespace quillmere {

/// Bytes between the caller's frame and the end of the calling thread's stack; 0 where the system does not tell.
std::size_t StackLeft() noexcept;

}  // namespace quillmere
