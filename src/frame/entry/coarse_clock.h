// A clock that may be read in every call.
#pragma once

#include <cstdint>

namespace quillmere {

/// Milliseconds from a fixed point in the past, a few dozen apart.
std::uint64_t CoarseTime() noexcept;

}  // namespace quillmere
