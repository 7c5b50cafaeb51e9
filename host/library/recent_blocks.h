// The latest blocks of memory that the add-in took.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace qcalc {

/// Blocks by their addresses, each at one place: a later one may drive it out, so that the cost of a block is that of a
/// few words written. One record for all threads, since a block may be freed on another thread than it was taken on,
/// and its address be given to somebody else.
class RecentBlocks {
 public:
  void Add(const void* block, std::size_t bytes) noexcept {
    if (!block) return;
    Entry& entry = PlaceOf(block);
    entry.block.store(nullptr, std::memory_order_relaxed);
    entry.bytes.store(bytes, std::memory_order_release);
    entry.block.store(block, std::memory_order_release);
  }

  /// Whether it was known.
  bool Forget(const void* block) noexcept {
    return block && PlaceOf(block).block.compare_exchange_strong(block, nullptr, std::memory_order_acq_rel);
  }

  /// Forgets all: with the library that took them the meter has gone that would see them freed.
  void Clear() noexcept {
    for (Entry& entry : entries_) entry.block.store(nullptr, std::memory_order_relaxed);
  }

  std::optional<std::size_t> BytesOf(const void* block) const noexcept {
    const Entry& entry = entries_[PlaceNumber(block)];
    if (!block || entry.block.load(std::memory_order_acquire) != block) return std::nullopt;
    const std::size_t bytes = entry.bytes.load(std::memory_order_acquire);
    // Unless another block has taken the place meanwhile.
    return entry.block.load(std::memory_order_relaxed) == block ? std::optional(bytes) : std::nullopt;
  }

 private:
  static constexpr int kBits = 12;

  struct Entry {
    std::atomic<const void*> block{nullptr};
    std::atomic<std::size_t> bytes{0};
  };

  static std::size_t PlaceNumber(const void* block) noexcept {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;
    return (reinterpret_cast<std::uintptr_t>(block) >> 4) * kMultiplier >> (64 - kBits);
  }
  Entry& PlaceOf(const void* block) noexcept { return entries_[PlaceNumber(block)]; }

  std::array<Entry, std::size_t{1} << kBits> entries_;
};

}  // namespace qcalc
