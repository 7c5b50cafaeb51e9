// Numbering distinct tuples of cells one by one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

#include "frame/values/scratch_list.h"
#include "table/number_index.h"
#include "table/tuple_compare.h"
#include "table/tuple_hash.h"

namespace quillmere {

/// The hash that HashBatch gives a tuple, or HashOfOdd.
template <TextCase textCase, CellTuples Tuples>
inline std::uint64_t HashTuple(const Tuples& tuples, std::int32_t place, const HashKey& key) {
  std::uint64_t hash = 0;
  for (std::size_t part = 0; part < tuples.Parts(); ++part) {
    const XLOPER12& cell = tuples.Meaning(*tuples.CellAt(place, part));
    if (IsOddCell(cell)) return HashOfOdd(place, key);
    const std::uint64_t ofCell = HashCell<textCase>(cell, key);
    hash = part == 0 ? ofCell : key.Joined(hash, ofCell);
  }
  return hash;
}

/// The numbers of distinct tuples, in the order in which they were added. The tuples are looked at again and must
/// outlive it.
template <TextCase textCase, CellTuples Tuples>
class TupleNumbers {
 public:
  explicit TupleNumbers(const Tuples& tuples) : tuples_(tuples) {}

  std::int32_t Count() const noexcept { return index_.Count(); }
  /// The places that were added first, by their numbers.
  ScratchList<std::int32_t> TakeFirstPlaces() && noexcept { return std::move(firstPlaces_); }

  void MakeRoomFor(std::int32_t more) {
    index_.MakeRoomFor(more, [this](std::int32_t number) { return hashes_[static_cast<std::size_t>(number)]; });
  }

  /// Asks for what Add will read of so many tuples.
  void Prefetch(std::span<const std::uint64_t> hashes) const {
    for (const std::uint64_t hash : hashes) index_.PrefetchSlot(hash);
    for (const std::uint64_t hash : hashes) PrefetchTuple(tuples_, LikelyPlace(hash));
    for (const std::uint64_t hash : hashes) PrefetchTexts(tuples_, LikelyPlace(hash));
  }

  /// The number of the tuple at `place`, by the hash of HashTuple. There must be room.
  std::int32_t Add(std::int32_t place, std::uint64_t hash) {
    const std::int32_t number = index_.Add(
        hash, [&](std::int32_t known) { return TuplesEqual<textCase>(tuples_, FirstPlace(known), tuples_, place); });
    if (static_cast<std::size_t>(number) == firstPlaces_.size()) {
      firstPlaces_.Append(place);
      hashes_.Append(hash);
    }
    return number;
  }

 private:
  std::int32_t FirstPlace(std::int32_t number) const noexcept { return firstPlaces_[static_cast<std::size_t>(number)]; }
  std::int32_t LikelyPlace(std::uint64_t hash) const noexcept {
    const std::int32_t number = index_.LikelyNumber(hash);
    return number == kNoEntry ? kNoEntry : FirstPlace(number);
  }

  const Tuples& tuples_;
  NumberIndex index_;
  ScratchList<std::int32_t> firstPlaces_;
  ScratchList<std::uint64_t> hashes_;  ///< so that growing looks at no cells
};

}  // namespace quillmere
