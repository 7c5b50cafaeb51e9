#include "frame/values/kept_blocks.h"

#include <atomic>
#include <new>
#include <thread>

#include "frame/entry/coarse_clock.h"
#include "frame/entry/host_entry.h"
#include "frame/entry/process_end.h"

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#endif

namespace quillmere {
namespace {

struct KeptBlock {
  MemoryBlock block;
  std::uint64_t number;  ///< the higher, the later it was given back
};

constexpr std::size_t kMostKeptBlocks = kMostKeptBytes / kLeastKeptBytes;

// Constant-initialized, and never destroyed: threads may end, and give results back, after the library's own objects.
constinit std::atomic_flag busy;
constinit KeptBlock kept[kMostKeptBlocks] = {};
constinit std::atomic<std::size_t> keptCount{0};
constinit std::size_t keptBytes = 0;
constinit std::uint64_t lastNumber = 0;
constinit std::atomic<std::uint64_t> lastUse{0};
constinit std::atomic<bool> keepsBlocks{true};

/// Holds the one lock, for a few loads and stores. Nothing is called meanwhile: an overflow of the stack there would
/// leave the lock held for ever.
class Lock {
 public:
  Lock() noexcept {
    while (busy.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
  }
  ~Lock() { busy.clear(std::memory_order_release); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
};

// Under AddressSanitizer a write into a result that was given back is seen as if its block had been freed.

inline void Hide([[maybe_unused]] const MemoryBlock& block) noexcept {
#ifdef __SANITIZE_ADDRESS__
  ASAN_POISON_MEMORY_REGION(block.memory, block.bytes);
#endif
}

inline void Show([[maybe_unused]] const MemoryBlock& block, [[maybe_unused]] std::size_t bytes) noexcept {
#ifdef __SANITIZE_ADDRESS__
  ASAN_UNPOISON_MEMORY_REGION(block.memory, bytes);
#endif
}

/// Takes a kept block out; the lock is held.
inline MemoryBlock Remove(std::size_t place) noexcept {
  const MemoryBlock block = kept[place].block;
  const std::size_t last = keptCount.load(std::memory_order_relaxed) - 1;
  kept[place] = kept[last];
  keptCount.store(last, std::memory_order_relaxed);
  keptBytes -= block.bytes;
  return block;
}

MemoryBlock TakeKept(std::size_t bytes) noexcept {
  const Lock lock;
  const std::size_t count = keptCount.load(std::memory_order_relaxed);
  std::size_t best = count;
  for (std::size_t at = 0; at < count; ++at) {
    const std::size_t size = kept[at].block.bytes;
    if (size >= bytes && size / 2 <= bytes && (best == count || size < kept[best].block.bytes)) best = at;
  }
  return best == count ? MemoryBlock{} : Remove(best);
}

/// The block that was given back longest ago, of those that are no larger, if the kept ones and one of `bytes` are too
/// much together; else an empty one. A large block is worth more than a small one in its place.
MemoryBlock TakeExcess(std::size_t bytes) noexcept {
  const Lock lock;
  const std::size_t count = keptCount.load(std::memory_order_relaxed);
  if (count == 0 || keptBytes + bytes <= kMostKeptBytes) return {};
  std::size_t oldest = count;
  for (std::size_t at = 0; at < count; ++at)
    if (kept[at].block.bytes <= bytes && (oldest == count || kept[at].number < kept[oldest].number)) oldest = at;
  return oldest == count ? MemoryBlock{} : Remove(oldest);
}

/// Whether there was room.
bool Keep(const MemoryBlock& block) noexcept {
  const Lock lock;
  if (keptBytes + block.bytes > kMostKeptBytes) return false;
  const std::size_t count = keptCount.load(std::memory_order_relaxed);
  kept[count] = {block, ++lastNumber};
  keptBytes += block.bytes;
  keptCount.store(count + 1, std::memory_order_relaxed);
  return true;
}

/// Gives kept blocks back until one of `bytes` could be kept beside the others; whether there were any to give back.
bool MakeRoom(std::size_t bytes) noexcept {
  bool any = false;
  while (void* const memory = TakeExcess(bytes).memory) {
    ::operator delete(memory);
    any = true;
  }
  return any;
}

/// What operator new calls when there is no memory: it tries again if this returns.
void OnNoMemory() {
  if (!ReleaseKeptBlocks()) throw std::bad_alloc();
}

class NoMemoryHandler {
 public:
  NoMemoryHandler() noexcept : previous_(std::set_new_handler(&OnNoMemory)) {}
  ~NoMemoryHandler() {
    if (std::get_new_handler() == &OnNoMemory) std::set_new_handler(previous_);
    StopKeepingBlocks();
  }
  NoMemoryHandler(const NoMemoryHandler&) = delete;
  NoMemoryHandler& operator=(const NoMemoryHandler&) = delete;

 private:
  const std::new_handler previous_;
};
CUntilUnloaded<NoMemoryHandler> noMemoryHandler;

}  // namespace

MemoryBlock TakeBlock(std::size_t bytes) {
  if (bytes >= kLeastKeptBytes && keptCount.load(std::memory_order_relaxed) != 0) {
    lastUse = CoarseTime();
    if (HostWatchesMemory()) {
      ReleaseKeptBlocks();
    } else if (const MemoryBlock block = TakeKept(bytes); block.memory) {
      Show(block, bytes);
      return block;
    }
  }
  return {::operator new(bytes), bytes};
}

void GiveBlock(MemoryBlock block) noexcept {
  if (block.bytes >= kLeastKeptBytes && block.bytes <= kMostKeptBytes && keepsBlocks && !HostWatchesMemory()) {
    lastUse = CoarseTime();
    MakeRoom(block.bytes);
    Hide(block);
    if (Keep(block)) return;
    Show(block, block.bytes);
  }
  ::operator delete(block.memory);
}

bool ReleaseKeptBlocks() noexcept { return MakeRoom(kMostKeptBytes); }

void ReleaseIdleBlocks() noexcept {
  if (keptCount.load(std::memory_order_relaxed) != 0) ReleaseIdleBlocks(CoarseTime());
}

void ReleaseIdleBlocks(std::uint64_t now) noexcept {
  if (now > lastUse + kMostIdleTime) ReleaseKeptBlocks();
}

void StopKeepingBlocks() noexcept {
  keepsBlocks = false;
  ReleaseKeptBlocks();
}

}  // namespace quillmere
