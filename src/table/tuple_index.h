// An index of tuples of cells: rows of a table, keys. Engines that meet the same tuples again and again find them here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "table/place_index.h"
#include "table/tuple_compare.h"
#include "table/tuple_hash.h"

namespace quillmere {

/// In place of a group: none.
constexpr std::int32_t kNoGroup = kNoEntry;
/// And that of a tuple with a number that is none. Such a number equals every number, so that the tuple is in no group,
/// and whoever looks for what equals it must look at all.
constexpr std::int32_t kOddTuple = -2;

/// Distinct tuples, fewer than 2^30. Equal tuples are one group, named by the place of its first. The tuples that are
/// indexed are looked at again and must outlive the index. Tuples that count for nothing, such as keys with an empty
/// part, are passed over by their groups, since equal ones count alike.
template <TextCase textCase, CellTuples Tuples>
class TupleIndex {
 public:
  explicit TupleIndex(const Tuples& tuples) : tuples_(tuples), places_(tuples.Count()) {}

  /// Puts all tuples in, once; `groups`, of as many, gets the group of each, or kOddTuple.
  void AddAll(std::span<std::int32_t> groups) {
    std::int32_t* group = groups.data();
    HashBatch<textCase, Tuples> hashes(tuples_);
    for (std::int32_t first = 0; first < tuples_.Count(); first += hashes.Count()) {
      hashes.Fill(first);
      for (std::int32_t i = 0; i < hashes.Count(); ++i) places_.PrefetchSlot(hashes[i]);
      for (std::int32_t i = 0; i < hashes.Count(); ++i) PrefetchTuple(tuples_, places_.LikelyPlace(hashes[i]));
      for (std::int32_t i = 0; i < hashes.Count(); ++i) PrefetchTexts(tuples_, places_.LikelyPlace(hashes[i]));
      for (std::int32_t i = 0; i < hashes.Count(); ++i)
        *group++ = hashes.AreOrdinary() || !hashes.IsOdd(i) ? Add(first + i, hashes[i]) : kOddTuple;
    }
  }

  std::int32_t Groups() const noexcept { return groups_; }

  /// Calls `take(place, group)` for those of other tuples, of as many parts, that equal tuples in the index, until it
  /// returns false; and `takeOdd(place)` for all odd ones before the place where it does.
  template <CellTuples Others, class Take, class TakeOdd>
  void FindAll(const Others& others, const Take& take, const TakeOdd& takeOdd) const {
    HashBatch<textCase, Others> hashes(others);
    std::int32_t candidates[kTupleBatch];
    for (std::int32_t first = 0; first < others.Count(); first += hashes.Count()) {
      hashes.Fill(first);
      for (std::int32_t i = 0; !hashes.AreOrdinary() && i < hashes.Count(); ++i)
        if (hashes.IsOdd(i)) takeOdd(first + i);
      std::int32_t count = 0;
      for (std::int32_t i = 0; i < hashes.Count(); ++i) {
        candidates[count] = i;
        count += places_.MayHold(hashes[i]) ? 1 : 0;
      }
      const std::span chosen(candidates, static_cast<std::size_t>(count));
      for (const std::int32_t i : chosen) places_.PrefetchSlot(hashes[i]);
      for (const std::int32_t i : chosen) PrefetchTuple(tuples_, places_.LikelyPlace(hashes[i]));
      for (const std::int32_t i : chosen) PrefetchTexts(tuples_, places_.LikelyPlace(hashes[i]));
      for (const std::int32_t i : chosen) {
        std::uint32_t slot = 0;
        const std::int32_t group = Find(others, first + i, hashes[i], slot);
        if (group != kNoGroup && !take(first + i, group)) return;
      }
    }
  }

 private:
  /// The group of the tuple at `place`, a new one if no tuple added before equals it.
  std::int32_t Add(std::int32_t place, std::uint64_t hash) {
    std::uint32_t slot = 0;
    if (const std::int32_t group = Find(tuples_, place, hash, slot); group != kNoGroup) return group;
    places_.Put(hash, slot, place);
    ++groups_;
    return place;
  }

  /// The group whose tuples equal the one at `place` of others, or kNoGroup; the slot where that was seen.
  template <CellTuples Others>
  std::int32_t Find(const Others& others, std::int32_t place, std::uint64_t hash, std::uint32_t& slot) const {
    return places_.Find(hash, slot,
                        [&](std::int32_t first) { return TuplesEqual<textCase>(tuples_, first, others, place); });
  }

  const Tuples& tuples_;
  PlaceIndex places_;
  std::int32_t groups_ = 0;
};

}  // namespace quillmere
