// An index of tuples of cells: rows of a table, keys. Engines that meet the same tuples again and again find them here.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "frame/text/fold_case.h"
#include "table/cell_hash.h"
#include "table/compare.h"

namespace quillmere {

// `Tuples` tells of a list of tuples, numbered from 0 by their places:
//   std::int32_t Count()
//   std::size_t Parts()                                                cells of a tuple
//   const XLOPER12* CellAt(std::int32_t place, std::size_t part)
//   std::ptrdiff_t Stride()                                            from a cell to that of the next tuple
//   const XLOPER12& Meaning(const XLOPER12& cell)                      what a cell stands for

/// In place of a group: none.
constexpr std::int32_t kNoGroup = -1;

/// Tuples are hashed so many at a time.
constexpr std::int32_t kTupleBatch = 256;

// How many cells ahead memory is asked for: the cells themselves, and the texts of those that are then there.
constexpr std::int32_t kCellsAhead = 128;
constexpr std::int32_t kTextsAhead = 24;

/// What a cell of a tuple stands for.
template <class Tuples>
const XLOPER12& ValueAt(const Tuples& tuples, std::int32_t place, std::size_t part) {
  return tuples.Meaning(*tuples.CellAt(place, part));
}

/// Whether CompareOpers, with the case of texts as asked, gives 0 for two single cells. A number that is none equals
/// nothing here: HashBatch tells of it.
template <TextCase textCase>
inline bool CellsEqual(const XLOPER12& a, const XLOPER12& b) {
  if (IsNumberCell(a)) return IsNumberCell(b) && a.val.num == b.val.num;
  if (IsTextCell(a)) {
    constexpr auto kEqual = textCase == TextCase::kIgnored ? EqualFolded : EqualExact;
    return IsTextCell(b) && kEqual(TextOf(a), TextOf(b));
  }
  return CompareOpers(&a, &b) == 0;
}

/// Asks for the text of a cell, which lies elsewhere.
inline void PrefetchText(const XLOPER12& cell) {
  if (IsTextCell(cell)) __builtin_prefetch(cell.val.str);
}

/// The hashes of one batch of tuples.
template <TextCase textCase, class Tuples>
class HashBatch {
 public:
  explicit HashBatch(const Tuples& tuples) noexcept : tuples_(tuples) {}

  /// Hashes the batch that starts at `first`; false when a number that is none is among its cells.
  bool Fill(std::int32_t first) {
    count_ = std::min(kTupleBatch, tuples_.Count() - first);
    bool ordinary = true;
    for (std::size_t part = 0; part < tuples_.Parts(); ++part) {
      const XLOPER12* at = tuples_.CellAt(first, part);
      const std::ptrdiff_t stride = tuples_.Stride();
      const std::int32_t left = tuples_.Count() - first;
      for (std::int32_t i = 0; i < count_; ++i, at += stride) {
        if (i + kCellsAhead < left) __builtin_prefetch(at + kCellsAhead * stride);
        if (i + kTextsAhead < left) PrefetchText(at[kTextsAhead * stride]);
        const XLOPER12& cell = tuples_.Meaning(*at);
        ordinary &= !IsNumberCell(cell) || cell.val.num == cell.val.num;
        const std::uint64_t hash = HashCell<textCase>(cell);
        hashes_[i] = part == 0 ? hash : MixHash(hashes_[i], hash);
      }
    }
    return ordinary;
  }

  std::int32_t Count() const noexcept { return count_; }
  std::uint64_t operator[](std::int32_t i) const noexcept { return hashes_[i]; }

 private:
  const Tuples& tuples_;
  std::int32_t count_ = 0;
  std::uint64_t hashes_[kTupleBatch];
};

/// Distinct tuples. Equal tuples are one group, named by the place of its first.
template <TextCase textCase, class Tuples>
class TupleIndex {
 public:
  explicit TupleIndex(const Tuples& tuples)
      : tuples_(tuples), placeBits_(std::bit_width(static_cast<std::uint32_t>(tuples.Count()))) {
    const std::uint32_t slots = std::bit_ceil(static_cast<std::uint32_t>(tuples.Count()) * 2 + 2);
    slotMask_ = slots - 1;
    slots_ = std::make_unique<std::uint32_t[]>(slots);
    filterMask_ = slots * 8 - 1;
    filter_ = std::make_unique<std::uint64_t[]>(slots / 8 + std::size_t{1});
  }

  /// The group of the tuple at `place`, a new one if no tuple added before equals it.
  std::int32_t Add(std::int32_t place, std::uint64_t hash) {
    std::uint32_t slot = 0;
    if (const std::int32_t group = Find(tuples_, place, hash, slot); group != kNoGroup) return group;
    slots_[slot] = Tag(hash) | (static_cast<std::uint32_t>(place) + 1);
    const std::uint32_t bit = FilterBit(hash);
    filter_[bit / 64] |= std::uint64_t{1} << bit % 64;
    ++groups_;
    return place;
  }

  std::int32_t Groups() const noexcept { return groups_; }

  /// False only when no tuple added has that hash. Most tuples of a table are told apart by this, without a jump.
  bool MayHold(std::uint64_t hash) const noexcept {
    const std::uint32_t bit = FilterBit(hash);
    return (filter_[bit / 64] >> bit % 64 & 1) != 0;
  }

  /// Asks for the memory that Find will read first.
  void PrefetchSlot(std::uint64_t hash) const noexcept {
    __builtin_prefetch(&slots_[static_cast<std::uint32_t>(hash) & slotMask_]);
  }
  /// And for the tuple that it will read then, where that is the likely one.
  void PrefetchTuple(std::uint64_t hash) const noexcept {
    const std::int32_t place = LikelyPlace(hash);
    for (std::size_t part = 0; place != kNoGroup && part < tuples_.Parts(); ++part)
      PrefetchCell(tuples_.CellAt(place, part));
  }
  /// And for the tuple's texts.
  void PrefetchTexts(std::uint64_t hash) const {
    const std::int32_t place = LikelyPlace(hash);
    for (std::size_t part = 0; place != kNoGroup && part < tuples_.Parts(); ++part)
      PrefetchText(*tuples_.CellAt(place, part));
  }

  /// The group whose tuples equal the one at `place` of others, or kNoGroup.
  template <class Others>
  std::int32_t Find(const Others& others, std::int32_t place, std::uint64_t hash) const {
    std::uint32_t slot = 0;
    return Find(others, place, hash, slot);
  }

 private:
  std::int32_t LikelyPlace(std::uint64_t hash) const noexcept {
    const std::uint32_t place = PlaceIn(slots_[static_cast<std::uint32_t>(hash) & slotMask_], Tag(hash));
    return place < static_cast<std::uint32_t>(tuples_.Count()) ? static_cast<std::int32_t>(place) : kNoGroup;
  }

  /// The upper bits of a slot: those of the hash that its place does not show. The lower bits are the group's name,
  /// from 1.
  std::uint32_t Tag(std::uint64_t hash) const noexcept {
    return static_cast<std::uint32_t>(hash >> 32) >> placeBits_ << placeBits_;
  }
  /// The place that a slot holds; some number beyond all places when it is empty or has another tag.
  static std::uint32_t PlaceIn(std::uint32_t slot, std::uint32_t tag) noexcept { return slot - tag - 1; }
  std::uint32_t FilterBit(std::uint64_t hash) const noexcept {
    return static_cast<std::uint32_t>(hash >> 20) & filterMask_;
  }

  template <class Others>
  std::int32_t Find(const Others& others, std::int32_t place, std::uint64_t hash, std::uint32_t& slot) const {
    const std::uint32_t tag = Tag(hash);
    for (slot = static_cast<std::uint32_t>(hash) & slotMask_; slots_[slot] != 0; slot = (slot + 1) & slotMask_) {
      const std::uint32_t first = PlaceIn(slots_[slot], tag);
      if (first < static_cast<std::uint32_t>(tuples_.Count()) && Equal(static_cast<std::int32_t>(first), others, place))
        return static_cast<std::int32_t>(first);
    }
    return kNoGroup;
  }

  template <class Others>
  bool Equal(std::int32_t first, const Others& others, std::int32_t place) const {
    for (std::size_t part = 0; part < tuples_.Parts(); ++part)
      if (!CellsEqual<textCase>(ValueAt(tuples_, first, part), ValueAt(others, place, part))) return false;
    return true;
  }

  const Tuples& tuples_;
  int placeBits_;
  std::int32_t groups_ = 0;
  std::uint32_t slotMask_;
  std::uint32_t filterMask_;
  std::unique_ptr<std::uint32_t[]> slots_;
  std::unique_ptr<std::uint64_t[]> filter_;
};

}  // namespace quillmere
