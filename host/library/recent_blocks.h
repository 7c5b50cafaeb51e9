// The latest blocks of memory that the add-in took on one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace qcalc {

/// Blocks by their addresses, each at one place: a later one may drive it out, so that the cost of a block is that of a
/// few words written. Other threads may use them, but not this record.
class RecentBlocks {
 public:
  void Add(const void* block, std::size_t bytes) noexcept {
    if (block) PlaceOf(block) = {block, bytes};
  }

  /// Whether it was known.
  bool Forget(const void* block) noexcept {
    Entry& entry = PlaceOf(block);
    if (!block || entry.block != block) return false;
    entry = {};
    return true;
  }

  std::optional<std::size_t> BytesOf(const void* block) noexcept {
    const Entry& entry = PlaceOf(block);
    return block && entry.block == block ? std::optional(entry.bytes) : std::nullopt;
  }

 private:
  static constexpr int kBits = 8;

  struct Entry {
    const void* block;
    std::size_t bytes;
  };

  Entry& PlaceOf(const void* block) noexcept {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;
    return entries_[(reinterpret_cast<std::uintptr_t>(block) >> 4) * kMultiplier >> (64 - kBits)];
  }

  Entry entries_[std::size_t{1} << kBits];
};

}  // namespace qcalc
