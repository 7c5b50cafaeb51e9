// Finding the rows of many keys in an array by one index and one pass.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lookup/found_rows.h"
#include "lookup/lookup_keys.h"
#include "table/cell_tuples.h"

namespace quillmere::lookup {

/// The wanted rows of every key of a call. The rows found are those that a scan for each key would find; the cost grows
/// with rows plus keys. The index holds the fewer of both, the others are passed by it once.
class ArrayIndex {
 public:
  /// Whether an index costs less than scanning for each of so many keys.
  static bool Pays(std::int64_t rows, std::int64_t keys) noexcept { return rows * keys > 2 * (rows + keys); }

  /// Searches. What it is given must outlive it.
  ArrayIndex(const RowTuples& rows, const LookupKeys& keys, std::int32_t position);

  /// Adds the wanted rows of a key. False, with nothing added, where numbers that are none have a say in them: such a
  /// number equals every number.
  bool Record(std::int32_t key, FoundRows& found) const;

  /// Whether such a number is part of a key, so that only a scan finds what there is to find.
  bool IsOddKey(std::int32_t key) const noexcept;
  /// The rows that have one, in order. Whether they match a key must be looked at.
  std::span<const std::int32_t> OddRows() const noexcept { return oddRows_; }
  /// Of the other rows those that are equal to a key that is not odd, in order: all of them where all or the n-th are
  /// wanted and there are odd rows; else the wanted one alone, if any.
  std::span<const std::int32_t> RowsOf(std::int32_t key) const noexcept;

 private:
  struct Search;

  bool wantsAll_;
  std::vector<std::int32_t> groupOfKey_;  ///< kNoGroup where no row is equal; kOddTuple
  std::vector<std::int32_t> rowOfGroup_;  ///< the wanted row; with wantsAll_ the groups' first places in allRows_
  std::vector<std::int32_t> allRows_;
  std::vector<std::int32_t> oddRows_;
};

}  // namespace quillmere::lookup
