// Numbering distinct things by their hashes.
#pragma once

#include <cstdint>

#include "table/place_index.h"

namespace quillmere {

/// The numbers, from 0, of less than 2^30 distinct things in the order in which they came. It grows with them, so that
/// few of them are found in the processor's nearest memory.
class NumberIndex {
 public:
  std::int32_t Count() const noexcept { return count_; }

  /// Makes room for so many more; `hashOf(number)` is the hash of a thing that is there.
  template <class HashOf>
  void MakeRoomFor(std::int32_t more, const HashOf& hashOf) {
    if (more <= capacity_ - count_) return;
    while (more > capacity_ - count_) capacity_ = capacity_ * 2 + 1;
    table_ = PlaceTable(0);  // before there is another
    table_ = PlaceTable(capacity_ <= kFew ? capacity_ * kSparsely : capacity_);
    for (std::int32_t number = 0; number < count_; ++number) {
      const std::uint64_t hash = hashOf(number);
      std::uint32_t slot = 0;
      table_.Find(hash, slot, [](std::int32_t) { return false; });
      table_.Put(hash, slot, number);
    }
  }

  /// Asks for the memory that Add will read first.
  void PrefetchSlot(std::uint64_t hash) const noexcept { table_.PrefetchSlot(hash); }
  /// The number that Add will likely compare; kNoEntry where there is none.
  std::int32_t LikelyNumber(std::uint64_t hash) const noexcept { return table_.LikelyPlace(hash); }

  /// The number for which `isSame(number)` is true, a new one if there is none. There must be room.
  template <class IsSame>
  std::int32_t Add(std::uint64_t hash, const IsSame& isSame) {
    std::uint32_t slot = 0;
    if (const std::int32_t number = table_.Find(hash, slot, isSame); number != kNoEntry) return number;
    table_.Put(hash, slot, count_);
    return count_++;
  }

 private:
  /// Up to so many are spread more thinly than the table does by itself: a processor cannot foresee which of them
  /// stands in the way of another.
  static constexpr std::int32_t kFew = 4095;
  static constexpr std::int32_t kSparsely = 4;

  std::int32_t count_ = 0;
  std::int32_t capacity_ = 0;
  PlaceTable table_{0};
};

}  // namespace quillmere
