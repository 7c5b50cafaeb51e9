#include "lookup/reference_search.h"

#include <algorithm>

#include "frame/callbacks/callbacks.h"
#include "lookup/bisection.h"
#include "lookup/match_walk.h"

namespace quillmere::lookup {
namespace {

bool CanExcelSearch(const XLOPER12& part) { return !IsTextCell(part) || TextOf(part).size() <= kXlMaxSearchedText; }

/// Whether Excel reads a text as more than itself: its wildcards, and the mark that takes their meaning away.
bool IsExcelPattern(const PreparedLookupValue& part) {
  constexpr XStringView kSpecial = XTEXT("*?~");
  return part.isText && part.text.find_first_of(kSpecial) != XStringView::npos;
}

/// One key being looked for in cells of a sheet.
class CellSearch {
 public:
  CellSearch(const LookupPlan& plan, Key key, const MatchRules& rules) noexcept
      : plan_(plan), key_(key), rules_(rules) {}

  std::int32_t Rows() const noexcept { return plan_.data.Rows(); }

  CXlOper ReadPart(std::int32_t row, std::size_t part) const {
    return plan_.data.CoerceCell(row, plan_.lookupColumns[part]);
  }

  /// Whether the row matches the key in the parts from `part` on.
  bool MatchesParts(std::int32_t row, std::size_t part) const {
    for (; part < key_.size(); ++part)
      if (!key_[part].Matches(ReadPart(row, part).Raw())) return false;
    return true;
  }

  /// The row that Excel's MATCH finds for the first part in rows `from` on, or kNoRow.
  std::int32_t AskExcel(std::int32_t from, std::int32_t rows, int matchType) const {
    const CXlOper cells = plan_.data.Part(from, plan_.lookupColumns[0], rows, 1);
    const CXlOper place = CallExcelOrValueError(xlfMatch, FirstPart().value, cells, CXlOper::Integer(matchType));
    if (!place.IsNumber() && !place.IsInteger()) return kNoRow;
    const double position = place.AsNumber();
    return position >= 1 && position <= rows ? from + static_cast<std::int32_t>(position) - 1 : kNoRow;
  }

 protected:
  const PreparedLookupValue& FirstPart() const noexcept { return key_[0].value; }

  const LookupPlan& plan_;
  Key key_;
  const MatchRules& rules_;
};

/// Rows found by Excel's MATCH and verified.
class MatchSearch : public CellSearch {
 public:
  using CellSearch::CellSearch;

  std::int32_t FindUnsorted(std::int32_t start) const {
    while (start < Rows()) {
      const std::int32_t row = AskExcel(start, Rows() - start, 0);
      if (row == kNoRow || IsVerified(row)) return row;
      start = row + 1;
    }
    return kNoRow;
  }

  std::int32_t FindLastUnsorted() const {
    std::int32_t last = kNoRow;
    for (std::int32_t row = FindUnsorted(0); row != kNoRow; row = FindUnsorted(row + 1)) last = row;
    return last;
  }

  /// Whether a row is one of those found. MATCH finds no error.
  bool Matches(std::int32_t row) const {
    if (IsErrorCell(FirstPart().value)) return false;
    if (rules_.caseSensitive || !IsExcelPattern(FirstPart())) return MatchesParts(row, 0);
    return AskExcel(row, 1, 0) == row && MatchesParts(row, 1);
  }

 private:
  /// MATCH disregards case, so that its word on the first part is enough only where case does not count.
  bool IsVerified(std::int32_t row) const { return MatchesParts(row, rules_.caseSensitive ? 0 : 1); }
};

class SortedSearch : public CellSearch {
 public:
  using CellSearch::CellSearch;

  SortedRun FindRun(std::int32_t position) const {
    const RunEnds ends = NeededEnds(rules_.order, position);
    if (IsExcelsOwn(position)) return AskExcelForRun();
    return rules_.order == SortOrder::kAscending ? FindEnds<SortOrder::kAscending>(ends)
                                                 : FindEnds<SortOrder::kDescending>(ends);
  }

 private:
  /// Whether Excel's sorted MATCH ends at the wanted one of equal rows: the last of ascending, the first of descending.
  bool IsExcelsOwn(std::int32_t position) const {
    const std::int32_t alike = rules_.order == SortOrder::kAscending ? wanted_match::kLast : wanted_match::kFirst;
    return !rules_.caseSensitive && key_.size() == 1 && CanExcelSearch(FirstPart().value) &&
           (position == wanted_match::kDefault || position == alike);
  }

  SortedRun AskExcelForRun() const {
    const std::int32_t row = AskExcel(0, Rows(), static_cast<int>(rules_.order));
    return row == kNoRow ? SortedRun{} : SortedRun{row, row, MatchesParts(row, 0)};
  }

  template <SortOrder order>
  SortedRun FindEnds(RunEnds ends) const {
    if (ends == RunEnds::kLast) return FindLastSorted<order>();
    SortedRun run = FindFirstSorted<order>();
    if (ends == RunEnds::kBoth && run.equal) run.last = FindLastSorted<order>().last;
    return run;
  }

  template <SortOrder order>
  SortedRun FindFirstSorted() const {
    return Bisect<order, RunEnd::kFirst>();
  }

  template <SortOrder order>
  SortedRun FindLastSorted() const {
    return Bisect<order, RunEnd::kLast>();
  }

  template <SortOrder order, RunEnd end>
  SortedRun Bisect() const {
    Bisection bisection(Rows());
    while (!bisection.IsDone()) {
      const std::int32_t row = bisection.Middle();
      const CXlOper first = ReadPart(row, 0);
      if (first.IsEmpty()) {
        bisection.StepOverEmpty();
        continue;
      }
      int comparison = CompareLookupCell(first.Raw(), FirstPart());
      for (std::size_t part = 1; part < key_.size() && comparison == 0; ++part)
        comparison = CompareLookupCell(ReadPart(row, part).Raw(), key_[part].value);
      const bool before = comparison < 0;
      const bool after = comparison > 0;
      bisection.Step<order, end>(before, after);
    }
    return RunOf<end>(bisection);
  }
};

/// The unsorted search of one key, a remembered row first.
template <class Search>
void SearchUnsorted(const Search& search, const LookupPlan& plan, std::int32_t key, LookupMemory& memory,
                    FoundRows& found) {
  const bool remembers = plan.position == wanted_match::kDefault && memory.IsInUse();
  if (remembers) {
    const std::optional<std::int32_t> remembered = memory.Recall(key);
    if (remembered && *remembered >= 1 && *remembered <= plan.data.Rows() && search.Matches(*remembered - 1)) {
      AddFoundRow(found, *remembered - 1);
      return;
    }
  }
  WalkMatches(search, plan.position, found);
  if (remembers && found.back() != kNoRow) memory.Remember(key, found.back() + 1);
}

}  // namespace

bool IsPlainVlookup(const LookupPlan& plan, const LookupKeys& keys, const MatchRules& rules) {
  if (plan.answerColumns.size() != 1 || keys.Count() != 1 || keys.Parts() != 1 || plan.lookupColumns[0] != 0 ||
      rules.caseSensitive || plan.data.Rows() == 0 || !CanExcelSearch(keys.At(0, 0)))
    return false;
  if (rules.order == SortOrder::kUnsorted)
    return plan.memory.type == MemoryType::kNone && plan.position == wanted_match::kDefault;
  return rules.order == SortOrder::kAscending && !rules.exact &&
         (plan.position == wanted_match::kDefault || plan.position == wanted_match::kLast);
}

CXlOper CallVlookup(const LookupPlan& plan, const LookupKeys& keys, const MatchRules& rules) {
  const TableView& data = plan.data;
  return CallExcelOrValueError(xlfVlookup, keys.At(0, 0), data.Part(0, 0, data.Rows(), data.Columns()),
                               CXlOper::Number(plan.answerColumns[0] + 1.0),
                               CXlOper::Boolean(rules.order == SortOrder::kAscending));
}

FoundRows SearchReference(const LookupPlan& plan, const LookupKeys& keys, const MatchRules& rules) {
  FoundRows found;
  found.reserve(static_cast<std::size_t>(keys.Count()));
  LookupMemory memory(plan.memory);
  KeyRoom room;
  const bool isUnsorted = rules.order == SortOrder::kUnsorted || keys.AnyPatterns();
  for (std::int32_t i = 0; i < keys.Count(); ++i) {
    const bool canExcelSearch = CanExcelSearch(keys.At(i, 0));
    // What Excel has no say in is matched as it would match it: the first part by its pattern unless case counts.
    const std::size_t patternParts = canExcelSearch || rules.caseSensitive ? 0 : 1;
    const Key key = room.Prepare(keys, i, patternParts);
    if (plan.data.Rows() == 0) {
      AddFoundRow(found, kNoRow);
    } else if (!isUnsorted) {
      RecordRun(SortedSearch(plan, key, rules).FindRun(plan.position), plan.position, rules.exact, found);
    } else if (canExcelSearch) {
      SearchUnsorted(MatchSearch(plan, key, rules), plan, i, memory, found);
    } else {
      const CellSearch cells(plan, key, rules);
      const auto matches = [&cells](std::int32_t row) { return cells.MatchesParts(row, 0); };
      SearchUnsorted(RowScan(plan.data.Rows(), matches), plan, i, memory, found);
    }
  }
  return found;
}

}  // namespace quillmere::lookup
