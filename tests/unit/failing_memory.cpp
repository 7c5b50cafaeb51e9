#include "failing_memory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::int64_t> liveBlocks{0};
/// Allocations until one fails; negative: none does.
std::atomic<int> untilFailure{-1};

void* Allocate(std::size_t bytes) noexcept {
  if (untilFailure.load() >= 0 && untilFailure.fetch_sub(1) == 0) return nullptr;
  void* const block = std::malloc(bytes == 0 ? 1 : bytes);
  if (block != nullptr) ++liveBlocks;
  return block;
}

void Free(void* block) noexcept {
  if (block != nullptr) --liveBlocks;
  std::free(block);
}

}  // namespace

void* operator new(std::size_t bytes) {
  if (void* const block = Allocate(bytes)) return block;
  throw std::bad_alloc();
}
void* operator new[](std::size_t bytes) { return operator new(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes); }
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes); }
void operator delete(void* block) noexcept { Free(block); }
void operator delete[](void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }
void operator delete[](void* block, std::size_t) noexcept { Free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { Free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { Free(block); }

namespace quillmere::testing {

std::int64_t LiveBlocks() noexcept { return liveBlocks.load(); }

int FailEachAllocation(const std::function<void()>& work) {
  for (int failing = 0;; ++failing) {
    const std::int64_t before = LiveBlocks();
    bool finished = false;
    untilFailure = failing;
    try {
      work();
      finished = true;
    } catch (const std::bad_alloc&) {
      untilFailure = -1;
    } catch (...) {
      untilFailure = -1;
      ADD_FAILURE() << "allocation " << failing << " ended in something else than std::bad_alloc";
    }
    const bool failed = untilFailure.exchange(-1) < 0;
    EXPECT_EQ(LiveBlocks(), before) << "allocation " << failing << " leaked";
    EXPECT_TRUE(finished || failed);
    if (finished) return failing;
  }
}

}  // namespace quillmere::testing
