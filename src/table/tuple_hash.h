// Hashing tuples of cells, many at a time: equal tuples have equal hashes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "table/cell_hash.h"
#include "table/cell_tuples.h"

namespace quillmere {

/// Tuples are hashed so many at a time.
constexpr std::int32_t kTupleBatch = 256;

// How many tuples ahead memory is asked for: the cells themselves, and the texts of those that are then there.
constexpr std::int32_t kCellsAhead = 128;
constexpr std::int32_t kTextsAhead = 24;

/// All parts of so many tuples are hashed before those of the next.
constexpr std::int32_t kTuplesAtOnce = 64;

/// Whether a cell is a number that is none. It equals every number, so that no hash finds what it equals.
inline bool IsOddCell(const XLOPER12& cell) { return IsNumberCell(cell) && cell.val.num != cell.val.num; }

/// The hash of a tuple that equals nothing: one of its own, so that many of them do not stand in each other's way.
inline std::uint64_t HashOfOdd(std::int32_t place, const HashKey& key) noexcept {
  return key.Of(static_cast<std::uint64_t>(place));
}

/// The hashes of one batch of tuples.
template <TextCase textCase, CellTuples Tuples>
class HashBatch {
 public:
  explicit HashBatch(const Tuples& tuples) noexcept : tuples_(tuples) {}

  /// Hashes the batch that starts at `first`; it ends where the tuples' run does.
  void Fill(std::int32_t first) {
    first_ = first;
    left_ = tuples_.RunEnd(first) - first;
    count_ = std::min(kTupleBatch, left_);
    bool ordinary = true;
    // The parts of a tuple may lie in the same pages of memory.
    for (std::int32_t at = 0; at < count_; at += kTuplesAtOnce)
      for (std::size_t part = 0; part < tuples_.Parts(); ++part)
        ordinary &= FillPart(at, std::min(at + kTuplesAtOnce, count_), part);
    areOrdinary_ = ordinary;
  }

  std::int32_t Count() const noexcept { return count_; }
  std::uint64_t operator[](std::int32_t i) const noexcept { return hashes_[i]; }

  /// Whether all tuples of the batch are found by their hashes; and whether one of them is not, since a number that is
  /// none is among its cells: that equals every number.
  bool AreOrdinary() const noexcept { return areOrdinary_; }
  bool IsOdd(std::int32_t i) const {
    for (std::size_t part = 0; part < tuples_.Parts(); ++part)
      if (IsOddCell(*tuples_.CellAt(first_ + i, part))) return true;
    return false;
  }

 private:
  /// Takes a part of some tuples into their hashes; false when it is a number that is none in one of them.
  bool FillPart(std::int32_t begin, std::int32_t end, std::size_t part) {
    bool ordinary = true;
    const XLOPER12* at = tuples_.CellAt(first_ + begin, part);
    const std::ptrdiff_t stride = tuples_.Stride();
    const std::int32_t left = left_;
    for (std::int32_t i = begin; i < end; ++i, at += stride) {
      if (i + kCellsAhead < left) PrefetchFarCell(at + kCellsAhead * stride);
      if (i + kTextsAhead < left) PrefetchText(at[kTextsAhead * stride]);
      const XLOPER12& cell = tuples_.Meaning(*at);
      ordinary &= !IsOddCell(cell);
      const std::uint64_t hash = HashCell<textCase>(cell, key_);
      hashes_[i] = part == 0 ? hash : key_.Joined(hashes_[i], hash);
    }
    return ordinary;
  }

  const Tuples& tuples_;
  const HashKey key_ = HashKey::OfProcess();
  std::int32_t first_ = 0;
  std::int32_t left_ = 0;  ///< from there to the end of the run
  std::int32_t count_ = 0;
  bool areOrdinary_ = true;
  std::uint64_t hashes_[kTupleBatch];
};

}  // namespace quillmere
