#include "tests/models/criteria/model.h"

#include <algorithm>
#include <cmath>

#include "tests/models/lookup/model_matching.h"

namespace qcalc::criteria {
namespace {

constexpr XStringView kNoReturn = XTEXT("#Return_ColName_Num not a DataRange Column Name or Number"),
                      kReturnNotFound = XTEXT("#Return_ColName_Num not Found in DataRange"),
                      kColumnNotFound = XTEXT("#Criteria Column Name not Found"),
                      kCalculated = XTEXT("Sorted Calculated Column not currently allowed here!!!");

/// A column that is not among the data's.
constexpr std::int32_t kNowhere = -1;

Value Told(XStringView text) { return Value::Text(XString(text)); }

std::vector<CellView> CellsOf(const Value& value) {
  if (!value.IsArray()) return {value.AsCell()};
  return {value.AsArray()->Cells().begin(), value.AsArray()->Cells().end()};
}

/// A number or a label; zero-based.
std::int32_t FindColumn(const FilterCall& call, const CellView& name) {
  const auto number = name.IsNumber() ? static_cast<std::int32_t>(std::trunc(name.AsNumber())) - 1 : kNowhere;
  if (number >= 0 && number < call.columns) return number;
  for (std::int32_t column = 0; name.IsText() && column < call.columns; ++column) {
    const CellView& label = call.cells->At(0, column);
    const bool isFound = call.isReference ? lookup::ExcelMatches(label, name)
                                          : label.IsText() && lookup::EqualLabels(label.AsText(), name.AsText());
    if (isFound) return column;
  }
  return kNowhere;
}

/// The cells that the pair brings itself.
std::vector<CellView> OwnCells(const FilterCall& call, const Pair& pair) {
  if (!pair.beside) return CellsOf(pair.column);
  std::vector<CellView> cells;
  for (std::int32_t row = 0; row < pair.beside->rows; ++row)
    cells.push_back(call.cells->At(pair.beside->row + row, pair.beside->column));
  return cells;
}

bool IsMark(const CellView& cell) {
  return cell.IsText() &&
         (lookup::EqualLabels(cell.AsText(), XTEXT("#OR#")) || lookup::EqualLabels(cell.AsText(), XTEXT("#OR")));
}

/// The number or text that the pair's column is given by; nothing when the pair brings its own cells.
std::optional<CellView> NameOf(const FilterCall& call, const Pair& pair) {
  const std::vector<CellView> own = OwnCells(call, pair);
  const bool isScalar = !pair.beside && !pair.column.IsArray();
  if (isScalar || (own.size() == 1 && call.cells->Rows() > 1)) return own[0];
  return std::nullopt;
}

/// The pair's cells beside the data rows; false when its column has another height.
bool ReadColumn(const FilterCall& call, const Pair& pair, bool hasHeader, Condition& condition) {
  const std::int32_t first = hasHeader ? 1 : 0;
  if (const std::optional<CellView> name = NameOf(call, pair)) {
    for (std::int32_t row = first; row < call.cells->Rows(); ++row)
      condition.cells.push_back(call.cells->At(row, FindColumn(call, *name)));
    return true;
  }
  condition.isCalculated = !pair.beside;
  condition.cells = OwnCells(call, pair);
  const auto height = static_cast<std::int32_t>(condition.cells.size());
  if (height == call.cells->Rows()) condition.cells.erase(condition.cells.begin(), condition.cells.begin() + first);
  return height == call.cells->Rows() || height == call.cells->Rows() - first;
}

/// The number of sorted criteria; none when that is no number.
std::optional<std::int32_t> SortedCount(const Value& value) {
  const CellView only = CellsOf(value)[0];
  if (!only.IsNumber()) return std::nullopt;
  return std::abs(static_cast<std::int32_t>(std::trunc(only.AsNumber())));
}

bool SortsCalculated(const Question& question) {
  std::int32_t sorted = question.sorted;
  for (const Condition& condition : question.conditions) {
    if (condition.isMark)
      sorted = condition.sorted;
    else if (sorted-- > 0 && condition.isCalculated)
      return true;
  }
  return false;
}

std::vector<std::int32_t> SelectRows(const FilterCall& call, const Question& question) {
  std::vector<std::int32_t> selected;
  for (std::int32_t row = 0; row < call.cells->Rows() - (question.hasHeader ? 1 : 0); ++row) {
    bool isSelected = question.conditions.empty();
    bool isGroupMet = true, isGroupEmpty = true;
    for (const Condition& condition : question.conditions) {
      if (condition.isMark) {
        isSelected = isSelected || (isGroupMet && !isGroupEmpty);
        isGroupMet = isGroupEmpty = true;
        continue;
      }
      isGroupEmpty = false;
      const CellView& cell = condition.cells[static_cast<std::size_t>(row)];
      isGroupMet = isGroupMet && Meets(cell, condition.criteria, condition.cells[0]);
    }
    if (isSelected || (isGroupMet && !isGroupEmpty)) selected.push_back(row);
  }
  return selected;
}

/// SUM or COUNTA of cells.
CellView Total(Mode mode, const std::vector<CellView>& cells) {
  double total = 0;
  for (const CellView& cell : cells) {
    if (mode == Mode::kSum && cell.IsError()) return cell;
    if (mode == Mode::kSum && cell.IsNumber()) total += cell.AsNumber();
    if (mode == Mode::kCount && !cell.IsEmpty()) ++total;
  }
  return CellView::Number(total);
}

/// The result as rows of cells.
std::vector<std::vector<CellView>> Shape(const FilterCall& call, const Question& question,
                                         const std::vector<std::int32_t>& columns,
                                         const std::vector<std::int32_t>& selected) {
  std::vector<std::vector<CellView>> rows;
  const Mode mode = call.function->mode;
  if (mode == Mode::kRuns) {
    for (std::size_t i = 0; i < selected.size(); ++i) {
      const bool isNext = i > 0 && selected[i] == selected[i - 1] + 1;
      if (!isNext) rows.push_back({CellView::Number(selected[i] + 1), CellView::Number(0)});
      rows.back()[1] = CellView::Number(rows.back()[1].AsNumber() + 1);
    }
    return rows;
  }
  rows.resize(mode == Mode::kRows ? selected.size() : 1);
  for (const std::int32_t column : columns) {
    std::vector<CellView> cells;
    for (const std::int32_t row : selected) cells.push_back(call.cells->At(row + (question.hasHeader ? 1 : 0), column));
    if (mode != Mode::kRows) cells = {Total(mode, cells)};
    for (std::size_t i = 0; i < cells.size(); ++i) rows[i].push_back(cells[i]);
  }
  return rows;
}

/// The columns to be returned; none when one is not found.
std::vector<std::int32_t> ReturnedColumns(const FilterCall& call) {
  std::vector<std::int32_t> columns;
  const std::vector<CellView> names = CellsOf(call.returned);
  if (names.size() == 1 && names[0].IsNumber() && std::trunc(names[0].AsNumber()) == 0)
    for (std::int32_t column = 0; column < call.columns; ++column) columns.push_back(column);
  else
    for (const CellView& name : names) columns.push_back(FindColumn(call, name));
  if (std::count(columns.begin(), columns.end(), kNowhere)) columns.clear();
  return columns;
}

}  // namespace

Question ReadQuestion(const FilterCall& call) {
  Question question;
  const auto fail = [&](Value failure) {
    question.failure = std::move(failure);
    return question;
  };
  const std::optional<std::int32_t> sorted = call.function->isSorted ? 1 : SortedCount(call.sortedCount);
  if (!sorted || !call.hasRange) return fail(Value::Error(xlerrValue));
  question.sorted = *sorted;
  for (const CellView& name : CellsOf(call.returned)) {
    if (!name.IsNumber() && !name.IsText()) return fail(Told(kNoReturn));
    question.hasHeader = question.hasHeader || name.IsText();
  }
  std::vector<const Pair*> used;
  for (const Pair& pair : call.pairs)
    if (pair.beside || !pair.column.IsMissing()) used.push_back(&pair);
  for (const Pair* pair : used) {
    const std::optional<CellView> name = NameOf(call, *pair);
    if (!name || IsMark(*name)) continue;
    question.hasHeader = question.hasHeader || name->IsText();
    if (FindColumn(call, *name) == kNowhere) return fail(Told(kColumnNotFound));
  }
  for (const Pair* pair : used) {
    Condition& condition = question.conditions.emplace_back();
    const std::optional<CellView> name = NameOf(call, *pair);
    condition.isMark = name && IsMark(*name);
    if (condition.isMark) condition.sorted = *SortedCount(pair->criterion);
    if (condition.isMark) continue;
    if (!ReadColumn(call, *pair, question.hasHeader, condition)) return fail(Value::Error(xlerrValue));
    condition.criteria = ReadCriteria(pair->criterion);
  }
  return question;
}

Value Expected(const FilterCall& call) {
  const Question question = ReadQuestion(call);
  if (question.failure) return *question.failure;
  if (SortsCalculated(question)) return Told(kCalculated);
  const std::vector<std::int32_t> columns = ReturnedColumns(call);
  if (columns.empty()) return Told(kReturnNotFound);
  const std::vector<std::int32_t> selected = SelectRows(call, question);
  if (selected.empty()) return Value::Number(0);
  const auto rows = Shape(call, question, columns, selected);
  ArrayBuilder result(static_cast<std::int32_t>(rows.size()), static_cast<std::int32_t>(rows[0].size()));
  for (std::size_t row = 0; row < rows.size(); ++row)
    for (std::size_t column = 0; column < rows[row].size(); ++column)
      result.Set(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column), rows[row][column]);
  ArrayPtr array = result.Finish();
  return array->Size() == 1 ? Value::OfCell(array->At(0, 0)) : Value::OfArray(std::move(array));
}

}  // namespace qcalc::criteria
