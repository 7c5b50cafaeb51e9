#include "lookup/array_search.h"

#include <algorithm>
#include <optional>
#include <ranges>
#include <span>
#include <vector>

#include "lookup/array_bisection.h"
#include "lookup/array_index.h"
#include "lookup/array_rows.h"
#include "lookup/match_walk.h"
#include "lookup/scanned_rows.h"

namespace quillmere::lookup {
namespace {

/// Walks the rows whose first cell passes `firstMatches` and whose others match the key.
template <class FirstTest>
void WalkRows(const RowTuples& rows, Key key, const FirstTest& firstMatches, std::int32_t position, FoundRows& found) {
  // Held by value, so that the loop has them in registers.
  const auto matches = [=, &rows, first = rows.CellAt(0, 0), stride = rows.Stride()](std::int32_t row) {
    return firstMatches(first[row * stride]) && (key.size() == 1 || MatchesRow(rows, row, key, 1));
  };
  WalkMatches(RowScan(rows.Count(), matches), position, found);
}

void ScanRows(const RowTuples& rows, Key key, std::int32_t position, FoundRows& found) {
  const KeyPart& first = key[0];
  if (IsNumberCell(first.value.value)) {
    // The most common case, with nothing in the loop but the cell's kind and number. Neither below nor above: so a
    // number that is none equals all, as everywhere.
    const auto isEqual = [wanted = first.value.value.val.num](const XLOPER12& cell) {
      return IsNumberCell(cell) && !(cell.val.num < wanted) && !(cell.val.num > wanted);
    };
    WalkRows(rows, key, isEqual, position, found);
  } else {
    const auto matches = [&first](const XLOPER12& cell) { return first.Matches(cell); };
    WalkRows(rows, key, matches, position, found);
  }
}

/// The rows that an index knows for a key, and those of its odd rows that match: a Search as WalkMatches wants it.
class IndexedRows {
 public:
  IndexedRows(const ArrayIndex& index, std::int32_t place, const RowTuples& rows, Key key)
      : known_(index.RowsOf(place)), odd_(index.OddRows()), rows_(rows), key_(key) {
    // With one part, what one of them matches they all match.
    if (key.size() == 1 && !MatchesRow(rows, odd_.front(), key)) odd_ = {};
  }

  std::int32_t FindUnsorted(std::int32_t start) const {
    const auto known = std::ranges::lower_bound(known_, start);
    const std::int32_t end = known == known_.end() ? rows_.Count() : *known;
    for (auto odd = std::ranges::lower_bound(odd_, start); odd != odd_.end() && *odd < end; ++odd)
      if (MatchesRow(rows_, *odd, key_)) return *odd;
    return known == known_.end() ? kNoRow : end;
  }
  std::int32_t FindLastUnsorted() const {
    const std::int32_t known = known_.empty() ? kNoRow : known_.back();
    for (auto odd = odd_.rbegin(); odd != odd_.rend() && *odd > known; ++odd)
      if (MatchesRow(rows_, *odd, key_)) return *odd;
    return known;
  }

 private:
  std::span<const std::int32_t> known_;
  std::span<const std::int32_t> odd_;
  const RowTuples& rows_;
  Key key_;
};

/// The keys from `first` on that can be patterns and are not scanned for yet, as many as should be at a time.
std::vector<std::int32_t> NextPatternKeys(const LookupKeys& keys, std::int32_t first, const ScannedRows& scanned) {
  std::vector<std::int32_t> next;
  for (std::int32_t i = first; i < keys.Count() && std::ssize(next) < ScannedRows::kKeysAtOnce; ++i)
    if (keys.HasPattern(i) && !scanned.IsScanned(i)) next.push_back(i);
  return next;
}

void SearchUnsorted(const LookupPlan& plan, const RowTuples& rows, const LookupKeys& keys, FoundRows& found) {
  std::optional<ScannedRows> scanned;
  if (keys.AnyPatterns()) scanned.emplace(plan, keys, keys.Parts());
  const auto isCompared = [&keys](std::int32_t key) { return !keys.HasPattern(key); };
  const auto compared = std::ranges::count_if(std::views::iota(0, keys.Count()), isCompared);
  std::optional<ArrayIndex> index;
  if (ArrayIndex::Pays(rows.Count(), compared)) index.emplace(rows, keys, plan.position);
  KeyRoom room;
  for (std::int32_t i = 0; i < keys.Count(); ++i) {
    if (keys.HasPattern(i)) {
      if (!scanned->IsScanned(i)) scanned->Scan(NextPatternKeys(keys, i, *scanned));
      scanned->Record(i, found);
      continue;
    }
    if (index && index->Record(i, found)) continue;
    const Key key = room.Prepare(keys, i);
    if (index && !index->IsOddKey(i))
      WalkMatches(IndexedRows(*index, i, rows, key), plan.position, found);
    else
      ScanRows(rows, key, plan.position, found);
  }
}

}  // namespace

FoundRows SearchArray(const LookupPlan& plan, const LookupKeys& keys, const MatchRules& rules) {
  const RowTuples rows(plan.data.Cells(), plan.lookupColumns);
  FoundRows found;
  found.reserve(static_cast<std::size_t>(keys.Count()));
  if (rules.order == SortOrder::kUnsorted || keys.AnyPatterns())
    SearchUnsorted(plan, rows, keys, found);
  else
    BisectArray(rows, keys, rules, plan.position, found);
  return found;
}

}  // namespace quillmere::lookup
