#include "lookup/reference_search.h"

#include <algorithm>

#include "frame/callbacks/callbacks.h"
#include "lookup/bisection.h"
#include "lookup/match_walk.h"
#include "text/wildcard_pattern.h"

namespace quillmere {
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

  /// Whether the row equals the key in the parts from `part` on.
  bool Equals(std::int32_t row, std::size_t part) const {
    for (; part < key_.size(); ++part)
      if (!EqualsLookupValue(ReadPart(row, part).Raw(), key_[part])) return false;
    return true;
  }

  /// The row that Excel's MATCH finds for the first part in rows `from` on, or kNoRow.
  std::int32_t AskExcel(std::int32_t from, std::int32_t rows, int matchType) const {
    const CXlOper cells = plan_.data.Part(from, plan_.lookupColumns[0], rows, 1);
    const CXlOper place = CallExcelOrValueError(xlfMatch, key_[0].value, cells, CXlOper::Integer(matchType));
    if (!place.IsNumber() && !place.IsInteger()) return kNoRow;
    const double position = place.AsNumber();
    return position >= 1 && position <= rows ? from + static_cast<std::int32_t>(position) - 1 : kNoRow;
  }

 protected:
  const LookupPlan& plan_;
  Key key_;
  const MatchRules& rules_;
};

/// Rows found by Excel's MATCH and verified.
class MatchSearch : public CellSearch {
 public:
  using CellSearch::CellSearch;

  std::int32_t Next(std::int32_t from) const {
    while (from < Rows()) {
      const std::int32_t row = AskExcel(from, Rows() - from, 0);
      if (row == kNoRow || IsVerified(row)) return row;
      from = row + 1;
    }
    return kNoRow;
  }

  std::int32_t Last() const {
    std::int32_t last = kNoRow;
    for (std::int32_t row = Next(0); row != kNoRow; row = Next(row + 1)) last = row;
    return last;
  }

  /// Whether a remembered row still matches. MATCH finds no error, so that none is to be remembered either.
  bool StillMatches(std::int32_t row) const {
    if (IsErrorCell(key_[0].value)) return false;
    if (rules_.caseSensitive || !IsExcelPattern(key_[0])) return Equals(row, 0);
    return AskExcel(row, 1, 0) == row && Equals(row, 1);
  }

 private:
  /// MATCH disregards case, so that its word on the first part is enough only where case does not count.
  bool IsVerified(std::int32_t row) const { return Equals(row, rules_.caseSensitive ? 0 : 1); }
};

/// Rows read one by one, for a first part that is too long for Excel.
class LongTextSearch : public CellSearch {
 public:
  LongTextSearch(const LookupPlan& plan, Key key, const MatchRules& rules)
      : CellSearch(plan, key, rules), pattern_(key[0].text, rules.caseSensitive) {}

  std::int32_t Next(std::int32_t from) const {
    for (std::int32_t row = from; row < Rows(); ++row)
      if (Matches(row)) return row;
    return kNoRow;
  }

  std::int32_t Last() const {
    std::int32_t row = Rows() - 1;
    while (row >= 0 && !Matches(row)) --row;
    return row;
  }

  bool StillMatches(std::int32_t row) const { return Matches(row); }

 private:
  bool Matches(std::int32_t row) const {
    if (rules_.caseSensitive || !HasWildcards(key_[0].text)) return Equals(row, 0);
    const CXlOper cell = ReadPart(row, 0);
    return cell.IsText() && pattern_.Matches(cell.AsText()) && Equals(row, 1);
  }

  WildcardPattern pattern_;
};

class SortedSearch : public CellSearch {
 public:
  using CellSearch::CellSearch;

  SortedRun FindRun(std::int32_t position) const {
    const RunEnds ends = NeededEnds(rules_.order, position);
    if (IsExcelsOwn(position)) return AskExcelForRun();
    return rules_.order == SortOrder::kAscending ? Bisect<SortOrder::kAscending>(ends)
                                                 : Bisect<SortOrder::kDescending>(ends);
  }

 private:
  /// Whether Excel's sorted MATCH ends at the wanted one of equal rows: the last of ascending, the first of descending.
  bool IsExcelsOwn(std::int32_t position) const {
    const std::int32_t alike = rules_.order == SortOrder::kAscending ? wanted_match::kLast : wanted_match::kFirst;
    return !rules_.caseSensitive && key_.size() == 1 && CanExcelSearch(key_[0].value) &&
           (position == wanted_match::kDefault || position == alike);
  }

  SortedRun AskExcelForRun() const {
    const std::int32_t row = AskExcel(0, Rows(), static_cast<int>(rules_.order));
    return row == kNoRow ? SortedRun{} : SortedRun{row, row, Equals(row, 0)};
  }

  template <SortOrder order>
  SortedRun Bisect(RunEnds ends) const {
    SortedRun run;
    if (ends != RunEnds::kLast) {
      const Bisection bisection = Bisect<order, RunEnd::kFirst>();
      run.first = run.last = bisection.Row<RunEnd::kFirst>();
      run.equal = bisection.equal;
      if (ends == RunEnds::kFirst || !run.equal) return run;
    }
    const Bisection bisection = Bisect<order, RunEnd::kLast>();
    run.last = bisection.Row<RunEnd::kLast>();
    if (ends == RunEnds::kLast) {
      run.first = run.last;
      run.equal = bisection.equal;
    }
    return run;
  }

  template <SortOrder order, RunEnd end>
  Bisection Bisect() const {
    Bisection bisection(Rows());
    while (!bisection.IsDone()) {
      const std::int32_t row = bisection.Middle();
      const CXlOper first = ReadPart(row, 0);
      if (first.IsEmpty()) {
        bisection.StepOverEmpty();
        continue;
      }
      int comparison = CompareLookupCell(first.Raw(), key_[0]);
      for (std::size_t part = 1; part < key_.size() && comparison == 0; ++part)
        comparison = CompareLookupCell(ReadPart(row, part).Raw(), key_[part]);
      const bool before = comparison < 0;
      const bool after = comparison > 0;
      bisection.Step<order, end>(before, after);
    }
    return bisection;
  }
};

/// The unsorted search of one key, a remembered row first.
template <class Search>
void SearchUnsorted(const Search& search, std::int32_t key, std::int32_t position, LookupMemory& memory,
                    FoundRows& found) {
  const bool remembers = position == wanted_match::kDefault && memory.IsInUse();
  if (remembers) {
    const std::optional<std::int32_t> remembered = memory.Recall(key);
    if (remembered && *remembered >= 1 && *remembered <= search.Rows() && search.StillMatches(*remembered - 1)) {
      AddFoundRow(found, *remembered - 1);
      return;
    }
  }
  WalkMatches(search, position, found);
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
  const bool isUnsorted = rules.order == SortOrder::kUnsorted || keys.AnyWildcards();
  for (std::int32_t i = 0; i < keys.Count(); ++i) {
    const Key key = room.Prepare(keys, i);
    if (plan.data.Rows() == 0)
      AddFoundRow(found, kNoRow);
    else if (!isUnsorted)
      RecordRun(SortedSearch(plan, key, rules).FindRun(plan.position), plan.position, rules.exact, found);
    else if (CanExcelSearch(key[0].value))
      SearchUnsorted(MatchSearch(plan, key, rules), i, plan.position, memory, found);
    else
      SearchUnsorted(LongTextSearch(plan, key, rules), i, plan.position, memory, found);
  }
  return found;
}

}  // namespace quillmere
