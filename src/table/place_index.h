// Finding by their hashes the places of things that stand in a list.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace quillmere {

/// In place of a place: none.
constexpr std::int32_t kNoEntry = -1;

/// Places in a list, 2^30 at most, by the hashes of what stands there, whose comparison is the caller's. A bit filter
/// before the table tells most hashes that are not in it without a jump, and stays in the cache with many more of them.
class PlaceIndex {
 public:
  /// For so many entries, with places below that number.
  explicit PlaceIndex(std::int32_t entries)
      : entries_(static_cast<std::uint32_t>(entries)), placeBits_(std::bit_width(entries_)) {
    const std::uint32_t slots = std::bit_ceil(entries_ * 2 + 2);
    slotMask_ = slots - 1;
    slots_ = std::make_unique<std::uint32_t[]>(slots);
    filterMask_ = slots * 8 - 1;
    filter_ = std::make_unique<std::uint64_t[]>(slots / 8 + std::size_t{1});
  }

  /// False only when no entry has that hash.
  bool MayHold(std::uint64_t hash) const noexcept {
    const std::uint32_t bit = FilterBit(hash);
    return (filter_[bit / 64] >> bit % 64 & 1) != 0;
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

  /// Puts in a place whose like is not there.
  void PutNew(std::uint64_t hash, std::int32_t place) noexcept {
    std::uint32_t slot = static_cast<std::uint32_t>(hash) & slotMask_;
    while (slots_[slot] != 0) slot = (slot + 1) & slotMask_;
    Put(hash, slot, place);
  }

  /// Puts a place in, at the slot that Find told.
  void Put(std::uint64_t hash, std::uint32_t slot, std::int32_t place) noexcept {
    slots_[slot] = Tag(hash) | (static_cast<std::uint32_t>(place) + 1);
    const std::uint32_t bit = FilterBit(hash);
    filter_[bit / 64] |= std::uint64_t{1} << bit % 64;
  }

 private:
  /// The upper bits of a slot: those of the hash that its place does not show. The lower bits are the place, from 1.
  std::uint32_t Tag(std::uint64_t hash) const noexcept {
    return static_cast<std::uint32_t>(hash >> 32) >> placeBits_ << placeBits_;
  }
  /// The place that a slot holds; some number beyond all places when it is empty or has another tag.
  static std::uint32_t PlaceIn(std::uint32_t slot, std::uint32_t tag) noexcept { return slot - tag - 1; }
  std::uint32_t FilterBit(std::uint64_t hash) const noexcept {
    return static_cast<std::uint32_t>(hash >> 20) & filterMask_;
  }

  std::uint32_t entries_;
  int placeBits_;
  std::uint32_t slotMask_;
  std::uint32_t filterMask_;
  std::unique_ptr<std::uint32_t[]> slots_;
  std::unique_ptr<std::uint64_t[]> filter_;
};

}  // namespace quillmere
