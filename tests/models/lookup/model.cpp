#include "tests/models/lookup/model.h"

#include <algorithm>
#include <cmath>

#include "host/values/conversion.h"
#include "tests/models/lookup/model_matching.h"
#include "tests/models/text/plain_regex.h"

namespace qcalc::lookup {
namespace {

enum : std::int32_t { kDefault = 0, kFirst = -1, kLast = -2, kAll = -3 };

/// A key's row is not found.
constexpr std::int32_t kNowhere = -1;

struct Sizes {
  std::int32_t rows = 0;
  std::int32_t columns = 0;
};

Sizes SizesOf(const Value& value) {
  if (value.IsMissing()) return {};
  return value.IsArray() ? Sizes{value.AsArray()->Rows(), value.AsArray()->Columns()} : Sizes{1, 1};
}

CellView At(const Value& value, std::int32_t row, std::int32_t column) {
  return value.IsArray() ? value.AsArray()->At(row, column) : value.AsCell();
}

/// The rules for a call's arguments: what of them counts, or that they are no good.
struct Question {
  std::int32_t order = 0;  ///< 1 ascending, -1 descending, 0 unsorted
  bool isExact = true;
  CellView notFound = CellView::Error(xlerrNA);
  std::int32_t position = kDefault;
  int memoryType = 0;
  XString memoryName;
  std::vector<std::int32_t> answerColumns;  ///< zero-based
  std::vector<std::int32_t> lookupColumns;  ///< zero-based
  bool hasHeader = false;
  bool hasWildcards = false;
};

std::int32_t ReadOrder(const Value& sorted) {
  if (sorted.IsNumber()) {
    const double whole = std::trunc(sorted.AsNumber());
    return whole > 0 ? 1 : whole < 0 ? -1 : 0;
  }
  if (sorted.IsBoolean()) return sorted.AsBoolean() ? 1 : 0;
  if (!sorted.IsText() || sorted.AsText().size() < 3) return 0;
  const XStringView start = XStringView(sorted.AsText()).substr(0, 3);
  for (const XStringView word : {XTEXT("asc"), XTEXT("tru"), XTEXT("yes")})
    if (EqualLabels(start, word)) return 1;
  return EqualLabels(start, XTEXT("des")) ? -1 : 0;
}

/// What goes for keys without a match: any value, but no error. All expressions must be some.
bool ReadExpressions(const LookupCall& call, Question& question) {
  const bool isGiven = call.function->wanted != Wanted::kAll && !call.exactMatch.IsMissing();
  if (isGiven) question.notFound = At(call.exactMatch, 0, 0);
  if (isGiven && question.notFound.IsError()) question.notFound = CellView::Error(xlerrValue);
  for (std::int32_t row = 0; row < SizesOf(call.keys).rows; ++row)
    for (std::int32_t column = 0; column < SizesOf(call.keys).columns; ++column) {
      const CellView key = At(call.keys, row, column);
      if (key.IsText() && !text::Compile(key.AsText(), call.caseSensitive)) return false;
    }
  return true;
}

/// False for an error value.
bool ReadExactMatch(const Value& exactMatch, Question& question) {
  if (exactMatch.IsError()) return false;
  if (exactMatch.IsBoolean()) question.isExact = exactMatch.AsBoolean() || question.order == 0;
  if (exactMatch.IsNumber() || exactMatch.IsText()) question.notFound = exactMatch.AsCell();
  return true;
}

bool ReadMemory(const Value& memory, Question& question) {
  question.memoryType = 2;
  if (memory.IsMissing()) return true;
  if (memory.IsText()) {
    if (memory.AsText().empty()) return true;
    question.memoryType = 4;
    question.memoryName = memory.AsText();
    return true;
  }
  if (!memory.IsNumber() || memory.AsNumber() < 0 || memory.AsNumber() > 3) return false;
  question.memoryType = static_cast<int>(memory.AsNumber());
  return true;
}

/// The zero-based column; -1 for a label that is not there.
std::int32_t FindLabel(const CellView& label, const LookupCall& call) {
  for (std::int32_t column = 0; column < call.table->Columns(); ++column) {
    const CellView& cell = call.table->At(0, column);
    const bool isFound =
        call.isReference ? ExcelMatches(cell, label) : cell.IsText() && EqualLabels(cell.AsText(), label.AsText());
    if (isFound) return column;
  }
  return -1;
}

/// False when an entry names no column.
bool ReadColumns(const Value& selector, const LookupCall& call, Question& question,
                 std::vector<std::int32_t>& columns) {
  for (std::int32_t i = 0; i < SizesOf(selector).columns; ++i) {
    const CellView entry = At(selector, 0, i);
    if (!entry.IsNumber() && !entry.IsText()) return false;
    question.hasHeader |= entry.IsText();
    const std::int32_t column =
        entry.IsText() ? FindLabel(entry, call) : static_cast<std::int32_t>(std::trunc(entry.AsNumber())) - 1;
    if (column < 0 || column >= call.table->Columns()) return false;
    columns.push_back(column);
  }
  return true;
}

/// Nothing when the call's answer is #VALUE!.
std::optional<Question> ReadQuestion(const LookupCall& call) {
  Question question;
  const Sizes keys = SizesOf(call.keys);
  const Sizes answers = SizesOf(call.answerColumns);
  const Sizes lookups = SizesOf(call.lookupColumns);
  if (call.keys.IsMissing() || call.keys.IsEmpty()) return std::nullopt;
  if (call.function->returnsValues && answers.rows != 1) return std::nullopt;
  if (lookups.rows > 1 || (lookups.rows == 1 && lookups.columns != keys.columns)) return std::nullopt;
  if (call.function->wanted == Wanted::kAll) question.position = kAll;
  if (call.function->wanted == Wanted::kNth) question.position = call.position.value_or(kDefault);
  if (question.position < kAll || (!call.byExpression && call.sorted.IsError())) return std::nullopt;
  question.order = call.byExpression ? 0 : ReadOrder(call.sorted);
  if (call.function->wanted == Wanted::kFirst && !ReadMemory(call.memory, question)) return std::nullopt;
  if (!(call.byExpression ? ReadExpressions(call, question) : ReadExactMatch(call.exactMatch, question)))
    return std::nullopt;
  if (call.function->returnsValues && !ReadColumns(call.answerColumns, call, question, question.answerColumns))
    return std::nullopt;
  if (!ReadColumns(call.lookupColumns, call, question, question.lookupColumns)) return std::nullopt;
  if (lookups.rows == 0)
    for (std::int32_t column = 0; column < keys.columns; ++column) question.lookupColumns.push_back(column);
  if (lookups.rows == 0 && keys.columns > call.table->Columns()) return std::nullopt;
  for (std::int32_t row = 0; row < keys.rows; ++row)
    for (std::int32_t column = 0; column < keys.columns; ++column)
      question.hasWildcards = question.hasWildcards || HasWildcards(At(call.keys, row, column));
  return question;
}

/// Finds the rows of one call, key by key. Rows are those below the header, from 1.
class Finder {
 public:
  Finder(const LookupCall& call, const Question& question)
      : call_(call), question_(question), rows_(call.table->Rows() - (question.hasHeader ? 1 : 0)) {}

  /// The key's rows in the order in which they are returned; kNowhere alone when there is none.
  std::vector<std::int32_t> Find(std::int32_t keyRow, MemoryModel& memory) {
    key_.clear(), expressions_.clear();
    for (std::int32_t part = 0; part < SizesOf(call_.keys).columns; ++part) {
      const CellView cell = At(call_.keys, keyRow, part);
      key_.push_back(cell.IsEmpty() ? CellView::Number(0) : cell);
      expressions_.emplace_back();
      if (call_.byExpression && cell.IsText()) expressions_.back() = text::Compile(cell.AsText(), call_.caseSensitive);
    }
    const bool isSearched = question_.order == 0 || question_.hasWildcards;
    std::vector<std::int32_t> found = isSearched ? FindSearching(keyRow, memory) : FindSorted();
    if (found.empty()) found.push_back(kNowhere);
    return found;
  }

  /// The answer of Excel's VLOOKUP, when the call is handed to it.
  std::optional<Value> AskVlookup() {
    const bool isOneCell = SizesOf(call_.keys).rows == 1 && SizesOf(call_.keys).columns == 1 &&
                           question_.answerColumns.size() == 1 && question_.lookupColumns[0] == 0;
    if (call_.byExpression || !call_.isReference || !call_.function->returnsValues || call_.caseSensitive ||
        !isOneCell || rows_ == 0)
      return std::nullopt;
    const bool isApproximate =
        question_.order > 0 && !question_.isExact && (question_.position == kDefault || question_.position == kLast);
    const bool isPlain = question_.order == 0 && question_.memoryType == 0 && question_.position == kDefault;
    if (!isApproximate && !isPlain) return std::nullopt;
    const CellView cell = At(call_.keys, 0, 0);
    key_ = {cell.IsEmpty() ? CellView::Number(0) : cell};
    if (!AsksExcel()) return std::nullopt;
    if (key_[0].IsError()) return Value::OfCell(key_[0]);
    for (std::int32_t row = isApproximate ? NearestByExcel() : 1; row >= 1 && row <= rows_; ++row)
      if (isApproximate || ExcelMatches(Cell(row, 0), key_[0]))
        return Value::OfCell(Cell(row, question_.answerColumns[0]));
    return Value::Error(xlerrNA);
  }

  const CellView& Cell(std::int32_t row, std::int32_t column) const {
    return call_.table->At(row - (question_.hasHeader ? 0 : 1), column);
  }

 private:
  /// Whether the first part of the key is something that Excel is asked for.
  bool AsksExcel() const {
    return call_.isReference && !call_.byExpression &&
           !(key_[0].IsText() && key_[0].AsText().size() > kExcelMatchUnits);
  }

  /// Whether the row is what an unsorted search looks for.
  bool Matches(std::int32_t row) const {
    for (std::size_t part = 0; part < key_.size(); ++part) {
      const CellView& cell = Cell(row, question_.lookupColumns[part]);
      const bool isEqual = Compare(cell, key_[part], call_.caseSensitive) == 0;
      if (expressions_[part]) {
        const bool hasText = !cell.IsError() && !cell.IsEmpty();
        if (!hasText || !boost::regex_search(ToText(cell, {}).AsText(), *expressions_[part])) return false;
      } else if (part == 0 && AsksExcel()) {
        if (!ExcelMatches(cell, key_[part]) || (call_.caseSensitive && !isEqual)) return false;
      } else if (!call_.isReference && !call_.byExpression) {
        const bool isPattern = HasWildcards(key_[part]);
        if (isPattern ? !FitsPattern(cell, key_[part], call_.caseSensitive) : !isEqual) return false;
      } else if (!isEqual) {
        return false;
      }
    }
    return true;
  }

  /// Whether a remembered row is taken: all parts are equal as they stand, but for a first one with wildcards; a first
  /// one that is an error never is.
  bool StillMatches(std::int32_t row) const {
    if (call_.byExpression) return Matches(row);
    if (key_[0].IsError()) return false;
    const bool isPattern =
        !call_.caseSensitive && key_[0].IsText() && key_[0].AsText().find_first_of(XTEXT("*?~")) != XStringView::npos;
    return isPattern ? Matches(row) : CompareRow(row) == 0;
  }

  std::vector<std::int32_t> FindSearching(std::int32_t keyRow, MemoryModel& memory) {
    const bool remembers = call_.isReference && question_.memoryType != 0 && question_.position == kDefault;
    const std::string place = remembers ? Place(keyRow) : "";
    if (remembers) {
      const std::optional<std::int32_t> row = memory.Find(place);
      if (row && *row <= rows_ && StillMatches(*row)) return {*row};
    }
    std::vector<std::int32_t> matches;
    for (std::int32_t row = 1; row <= rows_; ++row)
      if (Matches(row)) matches.push_back(row);
    const std::vector<std::int32_t> found = Choose(matches, kFirst);
    if (remembers && !found.empty()) memory.Remember(place, found[0]);
    return found;
  }

  /// Of the rows that match those that the position asks for.
  std::vector<std::int32_t> Choose(const std::vector<std::int32_t>& matches, std::int32_t defaultPosition) const {
    const std::int32_t position = question_.position == kDefault ? defaultPosition : question_.position;
    if (matches.empty() || position == kAll) return matches;
    if (position == kFirst) return {matches.front()};
    if (position == kLast) return {matches.back()};
    if (position > static_cast<std::int32_t>(matches.size())) return {};
    return {matches[static_cast<std::size_t>(position) - 1]};
  }

  std::vector<std::int32_t> FindSorted() const {
    const std::int32_t defaultPosition = question_.order > 0 ? kLast : kFirst;
    const bool isSingle = question_.position == kDefault || question_.position == defaultPosition;
    const bool asksExcel = AsksExcel() && !call_.caseSensitive && key_.size() == 1 && isSingle;
    if (asksExcel && key_[0].IsError()) return {};
    std::vector<std::int32_t> equal;
    for (std::int32_t row = 1; row <= rows_; ++row)
      if (!IsBlank(row) && CompareRow(row) == 0) equal.push_back(row);
    if (!equal.empty() || question_.isExact) return Choose(equal, defaultPosition);
    const std::int32_t nearest = asksExcel ? NearestByExcel() : Nearest();
    if (nearest == 0 || question_.position >= 2) return {};
    return {nearest};
  }

  /// The last row before the key's place in the table's order; 0 when there is none.
  std::int32_t Nearest() const {
    std::int32_t nearest = 0;
    for (std::int32_t row = 1; row <= rows_; ++row)
      if (!IsBlank(row) && CompareRow(row) * question_.order < 0) nearest = row;
    return nearest;
  }

  /// The last row not behind the key's place among those of the key's type, which are all that Excel looks at; 0 when
  /// there is none.
  std::int32_t NearestByExcel() const {
    std::int32_t nearest = 0;
    for (std::int32_t row = 1; row <= rows_; ++row) {
      const CellView& cell = Cell(row, question_.lookupColumns[0]);
      if (cell.Kind() == key_[0].Kind() && CompareRow(row) * question_.order <= 0) nearest = row;
    }
    return nearest;
  }

  bool IsBlank(std::int32_t row) const { return Cell(row, question_.lookupColumns[0]).IsEmpty(); }

  int CompareRow(std::int32_t row) const {
    for (std::size_t part = 0; part < key_.size(); ++part) {
      const CellView& cell = Cell(row, question_.lookupColumns[part]);
      if (const int side = Compare(cell, key_[part], call_.caseSensitive)) return side;
    }
    return 0;
  }

  /// Whose memory it is.
  std::string Place(std::int32_t keyRow) const {
    const models::CallingPlace& caller = call_.caller;
    const std::string row = std::to_string(caller.row + (caller.rows > 1 ? keyRow : 0));
    const std::string sheet = std::to_string(reinterpret_cast<std::uintptr_t>(caller.sheet));
    if (question_.memoryType == 1) return "cell " + sheet + " " + row + " " + std::to_string(caller.column);
    if (question_.memoryType == 2) return "row " + sheet + " " + row;
    if (question_.memoryType == 3) return "number " + row;
    return "name " + caller.book + " " + row + " " +
           std::string(question_.memoryName.begin(), question_.memoryName.end());
  }

  const LookupCall& call_;
  const Question& question_;
  std::int32_t rows_;
  std::vector<CellView> key_;
  std::vector<std::optional<text::PlainRegex>> expressions_;  ///< of its parts
};

/// Numbers, booleans, errors, empty cells, texts.
int Rank(CellKind kind) {
  constexpr CellKind kOrder[] = {CellKind::kNumber, CellKind::kBoolean, CellKind::kError, CellKind::kEmpty,
                                 CellKind::kText};
  return static_cast<int>(std::find(std::begin(kOrder), std::end(kOrder), kind) - kOrder);
}

template <typename Number>
int Side(Number a, Number b) {
  return (a > b) - (a < b);
}

}  // namespace

int Compare(const CellView& cell, const CellView& key, bool caseSensitive) {
  if (cell.Kind() != key.Kind()) return Side(Rank(cell.Kind()), Rank(key.Kind()));
  if (key.IsNumber()) return Side(cell.AsNumber(), key.AsNumber());
  if (key.IsBoolean()) return Side<int>(cell.AsBoolean(), key.AsBoolean());
  if (key.IsError()) return Side(cell.AsError(), key.AsError());
  if (key.IsEmpty()) return 0;
  const XStringView a = cell.AsText(), b = key.AsText();
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    const int side = caseSensitive ? Side<int>(a[i], b[i]) : Side<int>(FoldLatin(a[i]), FoldLatin(b[i]));
    if (side != 0) return side;
  }
  return Side(a.size(), b.size());
}

std::optional<std::int32_t> MemoryModel::Find(const std::string& place) const {
  const auto found = rows_.find(place);
  return found == rows_.end() ? std::nullopt : std::optional(found->second);
}

Value Expected(const LookupCall& call, MemoryModel& memory) {
  const std::optional<Question> question = ReadQuestion(call);
  if (!question) return Value::Error(xlerrValue);
  Finder finder(call, *question);
  if (std::optional<Value> answer = finder.AskVlookup()) return *answer;

  std::vector<std::int32_t> found;
  for (std::int32_t keyRow = 0; keyRow < SizesOf(call.keys).rows; ++keyRow)
    for (const std::int32_t row : finder.Find(keyRow, memory)) found.push_back(row);

  const std::size_t columns = call.function->returnsValues ? question->answerColumns.size() : 1;
  ArrayBuilder result(static_cast<std::int32_t>(found.size()), static_cast<std::int32_t>(columns));
  for (std::size_t i = 0; i < found.size(); ++i)
    for (std::size_t column = 0; column < columns; ++column) {
      CellView cell = question->notFound;
      if (found[i] != kNowhere)
        cell = call.function->returnsValues ? finder.Cell(found[i], question->answerColumns[column])
                                            : CellView::Number(found[i]);
      result.Set(static_cast<std::int32_t>(i), static_cast<std::int32_t>(column), cell);
    }
  ArrayPtr array = result.Finish();
  return array->Size() == 1 ? Value::OfCell(array->At(0, 0)) : Value::OfArray(std::move(array));
}

}  // namespace qcalc::lookup
