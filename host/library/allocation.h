// The add-in's heap: its allocations counted and made to fail, its live blocks known, all from outside.
//
// On Windows the allocator's entries in the add-in's import table are patched. Natively the program's own malloc, free,
// operator new and the rest stand before the system's for the whole process, and count while the calling thread is in
// the add-in.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/library/block_table.h"
#include "host/library/recent_blocks.h"

namespace qcalc {

class Library;

enum class AllocationFailure {
  kOnce,        ///< one allocation
  kFromThenOn,  ///< it and all later ones
};

/// Counting may happen on any thread; arming and reading happen between evaluations.
class AllocationMeter {
 public:
  /// Begins an evaluation: the counts are 0, and what was asked of Fail since the last Stop holds until then. With
  /// `counts` false, which costs the add-in no time, the counts stay 0 unless an allocation is to fail.
  void Start(bool counts = true);

  /// Ends an evaluation: nothing fails any more; the counts stay to be read.
  void Stop();

  /// How an allocation was to fail in the last evaluation for which that was asked, and none came; else empty.
  std::string TakeUnmet();

  /// During the next evaluation the add-in's `nth` allocation (1-based, on whichever thread) fails.
  void Fail(std::int64_t nth, AllocationFailure failure);

  /// Allocations that the add-in asked for during the last evaluation, failed ones included.
  std::int64_t Count() const { return count_.load(); }

  /// How many of them were made to fail.
  std::int64_t Failed() const { return failed_.load(); }

  /// From now on, until the process ends, the add-in's blocks are known by their addresses, wherever they are freed.
  /// What is older stays unknown. Costs some time for each block, natively for each block of the host too.
  void TrackBlocks();

  /// Whether blocks are known by their addresses, or one is to fail.
  bool WatchesBlocks() const noexcept { return IsTracking() || nth_ > 0; }

  /// How many known blocks there are.
  std::int64_t LiveBlocks() const;

  /// The number of the latest allocation of a known block.
  std::uint64_t LatestNumber() const { return number_.load(); }

  /// The known blocks that came after the allocation of that number, in their order.
  std::vector<LiveBlock> LiveBlocksAfter(std::uint64_t number) const;

  /// A block that the add-in was to free and has not yet; until it does, it counts as owed.
  void NoteOwed(const void* block) noexcept;
  bool IsOwed(const void* block) const noexcept;
  /// No block is owed any more.
  void ForgiveOwed() noexcept;

  /// For the allocator's stand-ins: counts one allocation. Whether it has to fail.
  bool MustFail() noexcept;
  /// For the allocator's stand-ins: a block has been given out, or is about to be taken back; null is ignored. Whether
  /// the freed one was known.
  void NoteTaken(const void* block, std::size_t bytes) noexcept;
  bool NoteFreed(const void* block) noexcept;
  bool IsTracking() const noexcept { return isTracking_.load(std::memory_order_relaxed); }
  /// Whether it matters at all which blocks are freed.
  bool WantsFreed() const noexcept { return IsTracking() || owedCount_.load(std::memory_order_relaxed) > 0; }

 private:
  std::atomic<bool> isRunning_{false};
  std::atomic<bool> isTracking_{false};
  std::atomic<std::int64_t> count_{0};
  std::atomic<std::int64_t> failed_{0};
  std::atomic<std::uint64_t> number_{0};
  std::atomic<int> owedCount_{0};
  std::int64_t nth_ = 0;    // 0: none fails
  std::int64_t unmet_ = 0;  // the number of one that was to fail and did not come
  AllocationFailure failure_ = AllocationFailure::kOnce;
};

extern AllocationMeter addinAllocationMeter;

/// The meter of this process: there is one add-in in it.
inline AllocationMeter& AddinAllocations() noexcept { return addinAllocationMeter; }

extern RecentBlocks addinBlocks;

/// The latest blocks that the add-in took and has not freed since.
inline RecentBlocks& AddinBlocks() noexcept { return addinBlocks; }

/// The bytes of the block that begins at that address, when it is one of the latest that the add-in took on this thread
/// and has not freed since; else nothing.
std::optional<std::size_t> RecentBlockBytes(const void* address) noexcept;

/// Brings the library's allocations before the meter. To be called when it has been loaded.
void MeterAllocations(const Library& library);

/// Says whether the code that this thread runs is the add-in's, for as long as the object lives: so around every call
/// into it, and the other way round in what it calls back.
class RunningCode {
 public:
  enum class Owner { kHost, kAddin };
  explicit RunningCode(Owner owner) noexcept : before_(Exchange(owner)) {}
  ~RunningCode() { Exchange(before_); }
  RunningCode(const RunningCode&) = delete;
  RunningCode& operator=(const RunningCode&) = delete;

 private:
  /// Without effect on Windows, where the import table tells the add-in's allocations from the host's.
  static Owner Exchange(Owner owner) noexcept;

  const Owner before_;
};

}  // namespace qcalc
