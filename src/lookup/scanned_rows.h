// Finding the rows of keys by looking at every row, for many keys at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "lookup/found_rows.h"
#include "lookup/lookup_arguments.h"
#include "lookup/lookup_keys.h"
#include "table/table_view.h"

namespace quillmere::lookup {

/// The wanted rows of those keys of a call that no index and no callback finds. Keys and rows are counted from 0. Equal
/// keys are scanned for once. What it is given must outlive it.
class ScannedRows {
 public:
  /// So many keys are best scanned for at a time: reading cells of a sheet then costs little beside testing them, and
  /// the keys made ready do not take much memory.
  static constexpr std::int32_t kKeysAtOnce = 256;

  /// What can be a pattern is one in the first `patternParts` parts of a key.
  ScannedRows(const LookupPlan& plan, const LookupKeys& keys, std::size_t patternParts);

  /// A key made ready. It is good until another one is asked for after a scan. CXlBadRegexException for an expression
  /// that does not compile.
  Key Prepare(std::int32_t key);

  bool IsScanned(std::int32_t key) const noexcept { return Rows(key).first != kNotScanned; }
  /// Finds the rows of keys, of which some may be equal or scanned. Cells of a sheet are read by blocks, as far as any
  /// key still wants rows. More rows than a result can have are CXlArrayTooLargeException.
  void Scan(std::span<const std::int32_t> keys);
  /// Adds the wanted rows of a key that was scanned, kNoRow when there is none.
  void Record(std::int32_t key, FoundRows& found) const;

 private:
  static constexpr std::size_t kNotScanned = static_cast<std::size_t>(-1);

  struct RowRange {
    std::size_t first = kNotScanned;
    std::size_t count = 0;
  };

  std::size_t GroupOf(std::int32_t key) const noexcept;
  const RowRange& Rows(std::int32_t key) const noexcept { return ranges_[GroupOf(key)]; }

  const LookupPlan& plan_;
  const LookupKeys& keys_;
  std::size_t patternParts_;
  std::optional<TableView> data_;     ///< without rows that a sheet does not use, once they were asked for
  std::vector<std::int32_t> groups_;  ///< of each key, unless there is only one
  std::vector<RowRange> ranges_;      ///< of each group, in rows_
  std::vector<std::int32_t> rows_;
  std::deque<KeyRoom> rooms_;
  std::unordered_map<std::size_t, Key> prepared_;  ///< of groups
  bool preparedAreOver_ = false;                   ///< since they were scanned for
};

}  // namespace quillmere::lookup
