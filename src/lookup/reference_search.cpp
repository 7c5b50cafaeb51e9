#include "lookup/reference_search.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "frame/callbacks/callbacks.h"
#include "lookup/match_walk.h"
#include "lookup/scanned_rows.h"
#include "lookup/sorted_run.h"

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

bool Remembers(const LookupPlan& plan, const LookupMemory& memory) {
  return plan.position == wanted_match::kDefault && memory.IsInUse();
}

/// The row remembered for a key, if it is one of the data and passes `matches(row)`; else kNoRow.
template <class Matches>
std::int32_t RememberedRow(const LookupPlan& plan, LookupMemory& memory, std::int32_t key, const Matches& matches) {
  if (!Remembers(plan, memory)) return kNoRow;
  const std::optional<std::int32_t> position = memory.Recall(key);
  if (!position || *position < 1 || *position > plan.data.Rows() || !matches(*position - 1)) return kNoRow;
  return *position - 1;
}

/// The unsorted search of a key, a remembered row first, by Excel's MATCH.
void SearchByMatch(const MatchSearch& search, const LookupPlan& plan, std::int32_t key, LookupMemory& memory,
                   FoundRows& found) {
  const auto matches = [&search](std::int32_t row) { return search.Matches(row); };
  const std::int32_t remembered = RememberedRow(plan, memory, key, matches);
  if (remembered != kNoRow) return AddFoundRow(found, remembered);
  WalkMatches(search, plan.position, found);
  if (Remembers(plan, memory) && found.back() != kNoRow) memory.Remember(key, found.back() + 1);
}

/// Whether Excel cannot look for a key.
bool MustBeRead(const LookupKeys& keys, std::int32_t key) {
  return keys.AreExpressions() || !CanExcelSearch(keys.At(key, 0));
}

/// The unsorted search of such keys: many at a time, a remembered row of each first.
class ReadingSearch {
 public:
  ReadingSearch(const LookupPlan& plan, const LookupKeys& keys, const MatchRules& rules, LookupMemory& memory)
      : plan_(plan),
        keys_(keys),
        rules_(rules),
        memory_(memory),
        // What Excel has no say in is matched as it would match it: the first part by its pattern unless case counts.
        scanned_(plan, keys,
                 keys.AreExpressions() ? keys.Parts()
                 : rules.caseSensitive ? 0
                                       : 1) {}

  void Search(std::int32_t key, FoundRows& found) {
    const std::int32_t remembered = Remembered(key);
    if (remembered != kNoRow) return AddFoundRow(found, remembered);
    if (!scanned_.IsScanned(key)) ScanFrom(key);
    scanned_.Record(key, found);
    if (Remembers(plan_, memory_) && found.back() != kNoRow) memory_.Remember(key, found.back() + 1);
  }

 private:
  /// The row last remembered for a key, and whether it matches.
  struct TestedRow {
    std::int32_t row = kNoRow;
    bool matches = false;
  };

  std::int32_t Remembered(std::int32_t key) {
    return RememberedRow(plan_, memory_, key, [&](std::int32_t row) {
      tested_.resize(static_cast<std::size_t>(keys_.Count()));
      TestedRow& tested = tested_[static_cast<std::size_t>(key)];
      if (tested.row != row) tested = {row, CellSearch(plan_, scanned_.Prepare(key), rules_).MatchesParts(row, 0)};
      return tested.matches;
    });
  }

  /// Scans for a key, and along with it for others that will be asked for. What is remembered for those may be another
  /// row by then.
  void ScanFrom(std::int32_t key) {
    std::vector<std::int32_t> next{key};
    const std::int32_t end = key + std::min(ScannedRows::kKeysAtOnce, keys_.Count() - key);
    for (std::int32_t i = key + 1; i < end; ++i)
      if (MustBeRead(keys_, i) && Remembered(i) == kNoRow) next.push_back(i);
    scanned_.Scan(next);
  }

  const LookupPlan& plan_;
  const LookupKeys& keys_;
  const MatchRules& rules_;
  LookupMemory& memory_;
  ScannedRows scanned_;
  std::vector<TestedRow> tested_;  ///< of each key
};

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
  std::optional<ReadingSearch> reading;
  KeyRoom room;
  const bool isUnsorted = rules.order == SortOrder::kUnsorted || keys.AnyPatterns();
  for (std::int32_t i = 0; i < keys.Count(); ++i) {
    if (isUnsorted && MustBeRead(keys, i)) {
      if (!reading) reading.emplace(plan, keys, rules, memory);
      reading->Search(i, found);
      continue;
    }
    const Key key = room.Prepare(keys, i);
    if (plan.data.Rows() == 0)
      AddFoundRow(found, kNoRow);
    else if (isUnsorted)
      SearchByMatch(MatchSearch(plan, key, rules), plan, i, memory, found);
    else
      RecordRun(SortedSearch(plan, key, rules).FindRun(plan.position), plan.position, rules.exact, found);
  }
  return found;
}

}  // namespace quillmere::lookup
