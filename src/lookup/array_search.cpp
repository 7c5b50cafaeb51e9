#include "lookup/array_search.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "lookup/array_bisection.h"
#include "lookup/array_index.h"
#include "lookup/array_rows.h"
#include "lookup/match_walk.h"
#include "text/wildcard_pattern.h"

namespace quillmere {
namespace {

bool HasPattern(const PreparedLookupValue& part) { return part.isText && HasWildcards(part.text); }

bool HasPattern(Key key) {
  return std::any_of(key.begin(), key.end(), [](const PreparedLookupValue& part) { return HasPattern(part); });
}

/// Scans for a key without wildcards.
class PlainScan {
 public:
  PlainScan(const RowTuples& rows, Key key) noexcept : rows_(rows), key_(key) {}

  std::int32_t Next(std::int32_t from) const {
    return IsNumberCell(key_[0].value) ? NextNumber(from, key_[0].value.val.num) : NextOfAnyKind(from);
  }

  std::int32_t Last() const {
    std::int32_t row = rows_.Count() - 1;
    while (row >= 0 && !EqualsRow(rows_, row, key_)) --row;
    return row;
  }

 private:
  /// The loop of the most common case, with nothing in it but the cell's kind and number.
  std::int32_t NextNumber(std::int32_t from, double wanted) const {
    for (std::int32_t row = from; row < rows_.Count(); ++row) {
      const XLOPER12& cell = rows_.At(row, 0);
      // Neither below nor above: so a number that is none equals all, as everywhere.
      if (IsNumberCell(cell) && !(cell.val.num < wanted) && !(cell.val.num > wanted) && EqualsRow(rows_, row, key_, 1))
        return row;
    }
    return kNoRow;
  }

  std::int32_t NextOfAnyKind(std::int32_t from) const {
    for (std::int32_t row = from; row < rows_.Count(); ++row)
      if (EqualsRow(rows_, row, key_)) return row;
    return kNoRow;
  }

  const RowTuples& rows_;
  Key key_;
};

/// Scans for a key some of whose parts are patterns.
class PatternScan {
 public:
  PatternScan(const RowTuples& rows, Key key, bool caseSensitive) : rows_(rows), key_(key) {
    patterns_.reserve(key.size());
    for (const PreparedLookupValue& part : key) {
      patterns_.emplace_back();
      if (HasPattern(part)) patterns_.back() = std::make_unique<WildcardPattern>(part.text, caseSensitive);
    }
  }

  std::int32_t Next(std::int32_t from) const {
    for (std::int32_t row = from; row < rows_.Count(); ++row)
      if (Matches(row)) return row;
    return kNoRow;
  }

  std::int32_t Last() const {
    std::int32_t row = rows_.Count() - 1;
    while (row >= 0 && !Matches(row)) --row;
    return row;
  }

 private:
  bool Matches(std::int32_t row) const {
    for (std::size_t part = 0; part < key_.size(); ++part) {
      const XLOPER12& cell = rows_.At(row, part);
      const TextMatcher* const pattern = patterns_[part].get();
      if (!(pattern ? IsTextCell(cell) && pattern->Matches(TextOf(cell)) : EqualsLookupValue(cell, key_[part])))
        return false;
    }
    return true;
  }

  const RowTuples& rows_;
  Key key_;
  std::vector<std::unique_ptr<const TextMatcher>> patterns_;
};

void SearchUnsorted(const RowTuples& rows, const LookupKeys& keys, std::int32_t position, FoundRows& found) {
  std::optional<ArrayIndex> index;
  if (ArrayIndex::Pays(rows.Count(), keys.Count())) index.emplace(rows, keys, position);
  const bool hasIndex = index && index->IsUsable();
  KeyRoom room;
  for (std::int32_t i = 0; i < keys.Count(); ++i) {
    if (hasIndex && !keys.AnyWildcards()) {
      index->Record(i, found);
      continue;
    }
    const Key key = room.Prepare(keys, i);
    if (keys.AnyWildcards() && HasPattern(key))
      WalkMatches(PatternScan(rows, key, keys.CaseSensitive()), position, found);
    else if (hasIndex)
      index->Record(i, found);
    else
      WalkMatches(PlainScan(rows, key), position, found);
  }
}

}  // namespace

FoundRows SearchArray(const LookupPlan& plan, const LookupKeys& keys, const MatchRules& rules) {
  const RowTuples rows(plan.data.Cells(), plan.lookupColumns);
  FoundRows found;
  found.reserve(static_cast<std::size_t>(keys.Count()));
  if (rules.order == SortOrder::kUnsorted || keys.AnyWildcards())
    SearchUnsorted(rows, keys, plan.position, found);
  else
    BisectArray(rows, keys, rules, plan.position, found);
  return found;
}

}  // namespace quillmere
