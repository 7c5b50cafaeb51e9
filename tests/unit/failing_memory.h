// Running code with every allocation failing in turn.
#pragma once

#include <cstdint>
#include <functional>

namespace quillmere::testing {

/// Blocks that operator new has given out and operator delete has not taken back.
std::int64_t LiveBlocks() noexcept;

/// Calls `work` with its first allocation failing, then its second, and so on until it needs no more. Each run must end
/// in std::bad_alloc and leave no block behind; what else it raises fails the test. Returns how many allocations
/// failed.
int FailEachAllocation(const std::function<void()>& work);

}  // namespace quillmere::testing
