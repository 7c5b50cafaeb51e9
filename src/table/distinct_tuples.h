// Numbering the distinct ones of a list of tuples of cells, in one pass.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "table/place_index.h"
#include "table/tuple_compare.h"
#include "table/tuple_hash.h"

namespace quillmere {

/// The distinct ones of less than 2^30 tuples, numbered from 0 in the order in which they first occur. What it keeps
/// grows with them alone, so that a few among very many are found in the processor's nearest memory. The tuples are
/// looked at again and must outlive it. One with a number that is none equals nothing, itself included.
template <TextCase textCase, CellTuples Tuples>
class DistinctTuples {
 public:
  explicit DistinctTuples(const Tuples& tuples) : tuples_(tuples) {}

  /// Goes through all tuples, once. Those for whose places `isWanted` is false are passed over; `take(place, number)`
  /// gets the others in their order, each with the number of the distinct tuple that it equals.
  template <class IsWanted, class Take>
  void AddAll(const IsWanted& isWanted, const Take& take) {
    HashBatch<textCase, Tuples> hashes(tuples_);
    std::int32_t wanted[kTupleBatch];
    for (std::int32_t first = 0; first < tuples_.Count(); first += kTupleBatch) {
      hashes.Fill(first);
      std::int32_t count = 0;
      for (std::int32_t i = 0; i < hashes.Count(); ++i) {
        wanted[count] = i;
        count += isWanted(first + i) ? 1 : 0;
      }
      MakeRoomFor(count);
      const std::span chosen(wanted, static_cast<std::size_t>(count));
      if (Count() > kNearTuples) Prefetch(hashes, chosen);
      for (const std::int32_t i : chosen) take(first + i, Add(first + i, HashOf(hashes, first, i)));
    }
  }

  std::int32_t Count() const noexcept { return static_cast<std::int32_t>(firstPlaces_.size()); }
  /// Where each distinct tuple occurs first, by their numbers.
  std::span<const std::int32_t> FirstPlaces() const noexcept { return firstPlaces_; }
  std::vector<std::int32_t> TakeFirstPlaces() && noexcept { return std::move(firstPlaces_); }

 private:
  /// Up to so many distinct tuples lie in the cache with what finds them, and are not asked for ahead.
  static constexpr std::int32_t kNearTuples = 2'000;

  /// Makes the index large enough for so many more.
  void MakeRoomFor(std::int32_t more) {
    if (more <= capacity_ - Count()) return;
    while (more > capacity_ - Count()) capacity_ = capacity_ * 2 + 1;
    index_ = PlaceIndex(capacity_);
    for (std::int32_t number = 0; number < Count(); ++number)
      index_.PutNew(hashes_[static_cast<std::size_t>(number)], number);
  }

  void Prefetch(const HashBatch<textCase, Tuples>& hashes, std::span<const std::int32_t> chosen) const {
    for (const std::int32_t i : chosen) index_.PrefetchSlot(hashes[i]);
    for (const std::int32_t i : chosen) PrefetchTuple(tuples_, LikelyPlace(hashes[i]));
    for (const std::int32_t i : chosen) PrefetchTexts(tuples_, LikelyPlace(hashes[i]));
  }

  std::int32_t LikelyPlace(std::uint64_t hash) const noexcept {
    const std::int32_t number = index_.LikelyPlace(hash);
    return number == kNoEntry ? kNoEntry : FirstPlace(number);
  }
  std::int32_t FirstPlace(std::int32_t number) const noexcept { return firstPlaces_[static_cast<std::size_t>(number)]; }

  /// Tuples that equal nothing have hashes of their own, so that many of them do not stand in each other's way.
  static std::uint64_t HashOf(const HashBatch<textCase, Tuples>& hashes, std::int32_t first, std::int32_t i) {
    if (hashes.AreOrdinary() || !hashes.IsOdd(i)) return hashes[i];
    return HashKey::OfProcess().Of(static_cast<std::uint64_t>(first + i));
  }

  /// The number of the tuple at `place`, a new one if none before equals it.
  std::int32_t Add(std::int32_t place, std::uint64_t hash) {
    std::uint32_t slot = 0;
    const std::int32_t number = index_.Find(hash, slot, [&](std::int32_t known) {
      return TuplesEqual<textCase>(tuples_, FirstPlace(known), tuples_, place);
    });
    if (number != kNoEntry) return number;
    index_.Put(hash, slot, Count());
    firstPlaces_.push_back(place);
    hashes_.push_back(hash);
    return Count() - 1;
  }

  const Tuples& tuples_;
  std::int32_t capacity_ = 0;
  PlaceIndex index_{0};  ///< of the numbers
  std::vector<std::int32_t> firstPlaces_;
  std::vector<std::uint64_t> hashes_;  ///< so that growing looks at no cells
};

}  // namespace quillmere
