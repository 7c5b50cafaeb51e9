// The latest blocks of memory that the add-in took.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace qcalc {

/// Blocks by their addresses, each at one place: a later one may drive it out, so that the cost of a block is that of a
/// few words written. Known to the thread that took it alone: what another takes at its address is no business of its
/// own. Forgotten on any thread: a block may be freed on another one, and its address be given to somebody else.
class RecentBlocks {
 public:
  /// `thread` is never 0.
  void Add(const void* block, std::size_t bytes, std::uintptr_t thread) noexcept {
    if (!block) return;
    Entry& entry = entries_[PlaceOf(block)];
    entry.thread.store(0, std::memory_order_release);
    entry.block.store(block, std::memory_order_release);
    entry.bytes.store(bytes, std::memory_order_release);
    entry.thread.store(thread, std::memory_order_release);
  }

  /// Whether it was known to some thread.
  bool Forget(const void* block) noexcept {
    if (!block) return false;
    std::atomic<const void*>& known = entries_[PlaceOf(block)].block;
    // Most are not: natively every block of the process comes by here, and to look costs less than to lock.
    if (known.load(std::memory_order_relaxed) != block) return false;
    return known.compare_exchange_strong(block, nullptr, std::memory_order_acq_rel);
  }

  /// Forgets all: with the library that took them the meter has gone that would see them freed.
  void Clear() noexcept {
    for (Entry& entry : entries_) entry.block.store(nullptr, std::memory_order_relaxed);
  }

  /// Of a block that the thread took and nobody has freed since; nothing where that is not known.
  std::optional<std::size_t> BytesOf(const void* block, std::uintptr_t thread) const noexcept {
    const Entry& entry = entries_[PlaceOf(block)];
    const auto isKnown = [&] {
      return block && entry.thread.load(std::memory_order_acquire) == thread &&
             entry.block.load(std::memory_order_acquire) == block;
    };
    if (!isKnown()) return std::nullopt;
    const std::size_t bytes = entry.bytes.load(std::memory_order_acquire);
    // Unless another block has taken the place meanwhile.
    return isKnown() ? std::optional(bytes) : std::nullopt;
  }

 private:
  static constexpr int kBits = 12;

  struct Entry {
    std::atomic<const void*> block{nullptr};
    std::atomic<std::size_t> bytes{0};
    std::atomic<std::uintptr_t> thread{0};
  };

  static std::size_t PlaceOf(const void* block) noexcept {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;
    return (reinterpret_cast<std::uintptr_t>(block) >> 4) * kMultiplier >> (64 - kBits);
  }

  std::array<Entry, std::size_t{1} << kBits> entries_;
};

}  // namespace qcalc
