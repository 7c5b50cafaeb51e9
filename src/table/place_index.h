// Finding by their hashes the places of things that stand in a list.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "frame/values/scratch_array.h"

namespace quillmere {

/// In place of a place: none.
constexpr std::int32_t kNoEntry = -1;

/// Places in a list, fewer than 2^30, by the hashes of what stands there, whose comparison is the caller's.
class PlaceTable {
 public:
  /// For so many entries, with places below that number.
  explicit PlaceTable(std::int32_t entries)
      : entries_(static_cast<std::uint32_t>(entries)), placeBits_(std::bit_width(entries_)) {
    const std::uint32_t slots = std::bit_ceil(entries_ * 2 + 2);
    slotMask_ = slots - 1;
    slots_ = ScratchArray<std::uint32_t>(slots);
    std::ranges::fill(slots_, 0);
  }

  /// Asks for the memory that Find will read first.
  void PrefetchSlot(std::uint64_t hash) const noexcept {
    __builtin_prefetch(&slots_[static_cast<std::uint32_t>(hash) & slotMask_]);
  }
  /// The place that Find will compare first, where that is the likely one; kNoEntry elsewhere.
  std::int32_t LikelyPlace(std::uint64_t hash) const noexcept {
    const std::uint32_t place = PlaceIn(slots_[static_cast<std::uint32_t>(hash) & slotMask_], Tag(hash));
    return place < entries_ ? static_cast<std::int32_t>(place) : kNoEntry;
  }

  /// The first place put in with that hash for which `isSame(place)` is true; where there is none, kNoEntry, and `slot`
  /// is where such a one is to be put.
  template <class IsSame>
  std::int32_t Find(std::uint64_t hash, std::uint32_t& slot, const IsSame& isSame) const {
    const std::uint32_t tag = Tag(hash);
    for (slot = static_cast<std::uint32_t>(hash) & slotMask_; slots_[slot] != 0; slot = (slot + 1) & slotMask_) {
      const std::uint32_t place = PlaceIn(slots_[slot], tag);
      if (place < entries_ && isSame(static_cast<std::int32_t>(place))) return static_cast<std::int32_t>(place);
    }
    return kNoEntry;
  }

  /// Puts a place in, at the slot that Find told.
  void Put(std::uint64_t hash, std::uint32_t slot, std::int32_t place) noexcept {
    slots_[slot] = Tag(hash) | (static_cast<std::uint32_t>(place) + 1);
  }

  std::uint32_t Slots() const noexcept { return slotMask_ + 1; }

 private:
  /// The upper bits of a slot: those of the hash that its place does not show. The lower bits are the place, from 1.
  std::uint32_t Tag(std::uint64_t hash) const noexcept {
    return static_cast<std::uint32_t>(hash >> 32) >> placeBits_ << placeBits_;
  }
  /// The place that a slot holds; some number beyond all places when it is empty or has another tag.
  static std::uint32_t PlaceIn(std::uint32_t slot, std::uint32_t tag) noexcept { return slot - tag - 1; }

  std::uint32_t entries_;
  int placeBits_;
  std::uint32_t slotMask_;
  ScratchArray<std::uint32_t> slots_;
};

/// The same with a bit filter before the table. It tells most hashes that are not in it without a jump, and stays in
/// the cache with many more of them.
class PlaceIndex : public PlaceTable {
 public:
  explicit PlaceIndex(std::int32_t entries) : PlaceTable(entries) {
    filterMask_ = Slots() * 8 - 1;
    filter_ = ScratchArray<std::uint64_t>(Slots() / 8 + std::size_t{1});
    std::ranges::fill(filter_, 0);
  }

  /// False only when no entry has that hash.
  bool MayHold(std::uint64_t hash) const noexcept {
    const std::uint32_t bit = FilterBit(hash);
    return (filter_[bit / 64] >> bit % 64 & 1) != 0;
  }

  void Put(std::uint64_t hash, std::uint32_t slot, std::int32_t place) noexcept {
    PlaceTable::Put(hash, slot, place);
    const std::uint32_t bit = FilterBit(hash);
    filter_[bit / 64] |= std::uint64_t{1} << bit % 64;
  }

 private:
  std::uint32_t FilterBit(std::uint64_t hash) const noexcept {
    return static_cast<std::uint32_t>(hash >> 20) & filterMask_;
  }

  std::uint32_t filterMask_;
  ScratchArray<std::uint64_t> filter_;
};

}  // namespace quillmere
