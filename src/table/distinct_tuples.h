// Numbering the distinct ones of a list of tuples of cells, in one pass.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

#include "frame/values/scratch_list.h"
#include "table/near_tuples.h"
#include "table/tuple_hash.h"
#include "table/tuple_numbers.h"

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
    const std::int32_t end = AddNear(isWanted, take);
    if (end < tuples_.Count()) AddFar(end, isWanted, take);
  }

  // When all are added:

  std::int32_t Count() const noexcept { return static_cast<std::int32_t>(firstPlaces_.size()); }
  /// Where each distinct tuple occurs first, by their numbers.
  std::span<const std::int32_t> FirstPlaces() const noexcept { return firstPlaces_.Values(); }
  ScratchList<std::int32_t> TakeFirstPlaces() && noexcept { return std::move(firstPlaces_); }

 private:
  /// Up to so many distinct tuples lie in the cache with what finds them, and are not asked for ahead.
  static constexpr std::int32_t kCachedTuples = 2'000;

  /// The tuples of a batch that are wanted.
  class Batch {
   public:
    template <class IsWanted>
    Batch(std::int32_t first, std::int32_t end, const IsWanted& isWanted) {
      for (std::int32_t place = first; place < end; ++place) {
        places_[count_] = place;
        count_ += isWanted(place) ? 1 : 0;
      }
    }

    std::int32_t Count() const noexcept { return count_; }
    std::span<const std::int32_t> Places() const noexcept { return {places_, static_cast<std::size_t>(count_)}; }

   private:
    std::int32_t count_ = 0;
    std::int32_t places_[kTupleBatch];
  };

  /// Where the batch ends that starts at a place.
  std::int32_t EndOf(std::int32_t first) const noexcept {
    const std::int32_t end = tuples_.RunEnd(first);
    return end - first < kTupleBatch ? end : first + kTupleBatch;
  }

  /// Adds tuples as long as their parts have few distinct cells each; the place up to which it came.
  template <class IsWanted, class Take>
  std::int32_t AddNear(const IsWanted& isWanted, const Take& take) {
    using Near = NearTuples<textCase, Tuples>;
    if (tuples_.Parts() > Near::kMostParts) return 0;
    Near near(tuples_);
    std::int32_t numbers[kTupleBatch];
    std::int32_t first = 0;
    for (; first < tuples_.Count(); first = EndOf(first)) {
      const Batch batch(first, EndOf(first), [&](std::int32_t place) {
        AskAhead(place);
        return isWanted(place);
      });
      if (!near.MakeRoomFor(batch.Count())) break;
      near.Add(batch.Places(), numbers);
      for (std::size_t i = 0; i < batch.Places().size(); ++i) take(batch.Places()[i], numbers[i]);
    }
    firstPlaces_ = std::move(near).TakeFirstPlaces();
    return first;
  }

  /// Asks for cells and texts some way behind a tuple.
  void AskAhead(std::int32_t place) const {
    if (place >= tuples_.Count() - kCellsAhead) return;
    for (std::size_t part = 0; part < tuples_.Parts(); ++part) {
      PrefetchFarNeighbour(tuples_.CellAt(place + kCellsAhead, part));
      PrefetchText(*tuples_.CellAt(place + kTextsAhead, part));
    }
  }

  /// Adds the tuples from one on, behind those found before.
  template <class IsWanted, class Take>
  void AddFar(std::int32_t first, const IsWanted& isWanted, const Take& take) {
    const HashKey key = HashKey::OfProcess();
    TupleNumbers<textCase, Tuples> numbers(tuples_);
    numbers.MakeRoomFor(Count());
    for (const std::int32_t place : firstPlaces_) numbers.Add(place, HashTuple<textCase>(tuples_, place, key));
    HashBatch<textCase, Tuples> hashes(tuples_);
    std::uint64_t chosen[kTupleBatch];
    for (; first < tuples_.Count(); first = EndOf(first)) {
      hashes.Fill(first);
      const Batch batch(first, EndOf(first), isWanted);
      const std::span<const std::int32_t> places = batch.Places();
      for (std::size_t i = 0; i < places.size(); ++i) {
        const std::int32_t place = places[i];
        const bool isOdd = !hashes.AreOrdinary() && hashes.IsOdd(place - first);
        chosen[i] = isOdd ? HashOfOdd(place, key) : hashes[place - first];
      }
      numbers.MakeRoomFor(batch.Count());
      if (numbers.Count() > kCachedTuples) numbers.Prefetch({chosen, places.size()});
      for (std::size_t i = 0; i < places.size(); ++i) take(places[i], numbers.Add(places[i], chosen[i]));
    }
    firstPlaces_ = std::move(numbers).TakeFirstPlaces();
  }

  const Tuples& tuples_;
  ScratchList<std::int32_t> firstPlaces_;
};

}  // namespace quillmere
