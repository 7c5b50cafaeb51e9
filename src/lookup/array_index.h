// Finding the rows of many keys in an array by one index and one pass.
#pragma once

#include <cstdint>
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

  /// False when a number that is none stands among the keys or rows looked at: such a number equals all others, so
  /// that only a scan can find what there is to find.
  bool IsUsable() const noexcept { return usable_; }

  /// Adds the wanted rows of a key.
  void Record(std::int32_t key, FoundRows& found) const;

 private:
  struct Search;

  bool usable_ = true;
  bool wantsAll_;
  std::vector<std::int32_t> groupOfKey_;  ///< equal tuples are one group; kNoGroup where no row is equal
  std::vector<std::int32_t> rowOfGroup_;  ///< the wanted row; with wantsAll_ the groups' first places in allRows_
  std::vector<std::int32_t> allRows_;
};

}  // namespace quillmere::lookup
