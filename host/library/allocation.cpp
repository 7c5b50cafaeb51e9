#include "host/library/allocation.h"

#include <algorithm>
#include <utility>

#include "host/library/block_table.h"

namespace qcalc {
namespace {

constinit BlockTable blocks;
constinit BlockTable owed;

}  // namespace

// Constant-initialized, as the blocks are: the stand-ins run before any constructor.
constinit AllocationMeter addinAllocationMeter;
constinit RecentBlocks addinBlocks;

void AllocationMeter::Start(bool counts) {
  count_ = 0;
  failed_ = 0;
  isRunning_ = counts || nth_ > 0;
}

void AllocationMeter::Stop() {
  isRunning_ = false;
  if (nth_ > 0) unmet_ = failed_ > 0 ? 0 : nth_;
  nth_ = 0;
}

std::string AllocationMeter::TakeUnmet() {
  const std::int64_t nth = std::exchange(unmet_, 0);
  return nth ? "allocation " + std::to_string(nth) + ": there were " + std::to_string(count_) + " allocations" : "";
}

void AllocationMeter::Fail(std::int64_t nth, AllocationFailure failure) {
  nth_ = nth;
  failure_ = failure;
}

void AllocationMeter::TrackBlocks() { isTracking_ = true; }

std::int64_t AllocationMeter::LiveBlocks() const { return static_cast<std::int64_t>(blocks.Size()); }

std::vector<LiveBlock> AllocationMeter::LiveBlocksAfter(std::uint64_t number) const {
  std::vector<LiveBlock> found;
  found.reserve(blocks.Size());
  blocks.Visit([&](const LiveBlock& block) {
    if (block.number > number && found.size() < found.capacity()) found.push_back(block);
  });
  std::sort(found.begin(), found.end(), [](const LiveBlock& a, const LiveBlock& b) { return a.number < b.number; });
  return found;
}

bool AllocationMeter::MustFail() noexcept {
  if (!isRunning_.load(std::memory_order_relaxed)) return false;
  const std::int64_t number = ++count_;
  const bool isDue = nth_ > 0 && (failure_ == AllocationFailure::kOnce ? number == nth_ : number >= nth_);
  if (isDue) ++failed_;
  return isDue;
}

void AllocationMeter::NoteTaken(const void* block, std::size_t bytes) noexcept {
  if (block && IsTracking()) blocks.Add(block, {bytes, ++number_});
}

void AllocationMeter::NoteOwed(const void* block) noexcept {
  if (IsOwed(block)) return;
  owed.Add(block, {});
  ++owedCount_;
}

bool AllocationMeter::IsOwed(const void* block) const noexcept { return owed.Holds(block); }

void AllocationMeter::ForgiveOwed() noexcept {
  owed.Clear();
  owedCount_ = 0;
}

bool AllocationMeter::NoteFreed(const void* block) noexcept {
  LiveBlock gone;
  if (owedCount_.load(std::memory_order_relaxed) > 0 && owed.Remove(block, gone)) --owedCount_;
  return block && IsTracking() && blocks.Remove(block, gone);
}

}  // namespace qcalc
