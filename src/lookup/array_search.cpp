#include "lookup/array_search.h"

#include <optional>

#include "lookup/array_bisection.h"
#include "lookup/array_index.h"
#include "lookup/array_rows.h"
#include "lookup/match_walk.h"

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

void SearchUnsorted(const RowTuples& rows, const LookupKeys& keys, std::int32_t position, FoundRows& found) {
  std::optional<ArrayIndex> index;
  if (ArrayIndex::Pays(rows.Count(), keys.Count())) index.emplace(rows, keys, position);
  const bool hasIndex = index && index->IsUsable();
  KeyRoom room;
  for (std::int32_t i = 0; i < keys.Count(); ++i) {
    if (hasIndex && !keys.HasPattern(i))
      index->Record(i, found);
    else
      ScanRows(rows, room.Prepare(keys, i, keys.Parts()), position, found);
  }
}

}  // namespace

FoundRows SearchArray(const LookupPlan& plan, const LookupKeys& keys, const MatchRules& rules) {
  const RowTuples rows(plan.data.Cells(), plan.lookupColumns);
  FoundRows found;
  found.reserve(static_cast<std::size_t>(keys.Count()));
  if (rules.order == SortOrder::kUnsorted || keys.AnyPatterns())
    SearchUnsorted(rows, keys, plan.position, found);
  else
    BisectArray(rows, keys, rules, plan.position, found);
  return found;
}

}  // namespace quillmere::lookup
