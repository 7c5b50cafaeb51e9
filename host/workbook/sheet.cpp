#include "host/workbook/sheet.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "host/formulas/reference_text.h"
#include "host/workbook/workbooks.h"

namespace qcalc {

namespace {

// A formula takes many times the memory of a value: these take a gigabyte too.
constexpr std::int64_t kMostFormulas = std::int64_t{1} << 22;

void CheckFillable(const Area& area, std::int64_t mostCells) {
  if (const std::int64_t cells = std::int64_t{area.Rows()} * area.Columns(); cells > mostCells)
    throw std::length_error(AreaToText(area) + " is more than can be filled: " + std::to_string(cells) +
                            " cells, of at most " + std::to_string(mostCells));
}

}  // namespace

XString Sheet::FullName() const { return FullSheetName(book_.Name(), name_); }

ArrayPtr Sheet::ReadArray(const Area& area) const {
  ArrayBuilder builder(area.Rows(), area.Columns());
  builder.Share(cells_.SharedPool());
  CellView* next = builder.Cells().data();
  cells_.VisitRowMajor(area, [&next](const CellView& cell) { *next++ = cell; });
  return builder.Finish();
}

Value Sheet::Read(const Area& area) const {
  return area.IsOneCell() ? Value::OfCell(Get(area.firstRow, area.firstColumn)) : Value::OfArray(ReadArray(area));
}

void Sheet::Write(const Area& area, const Value& value) {
  if (!value.IsArray()) {
    const CellView cell = value.AsCell();
    if (cell.IsEmpty()) return cells_.Clear(area);
    if (area.IsOneCell()) return cells_.Set(area.firstRow, area.firstColumn, cell);
    const CellView stored = cell.IsText() ? CellView::Text(cells_.Pool().Add(cell.AsText())) : cell;
    for (std::int32_t row = area.firstRow; row <= area.lastRow; ++row)
      for (std::int32_t column = area.firstColumn; column <= area.lastColumn; ++column)
        cells_.SetPooled(row, column, stored);
    return;
  }
  const Array& array = *value.AsArray();
  for (std::int32_t row = 0; row < array.Rows(); ++row)
    for (std::int32_t column = 0; column < array.Columns(); ++column)
      cells_.Set(area.firstRow + row, area.firstColumn + column, array.At(row, column));
}

void Sheet::Set(const Area& area, const Value& value) {
  const Area target = value.IsArray() ? Area::OfSize(area.firstRow, area.firstColumn, value.AsArray()->Rows(),
                                                     value.AsArray()->Columns())
                                      : area;
  if (!target.IsOnSheet())
    throw std::length_error("the array of " + std::to_string(target.Rows()) + " x " + std::to_string(target.Columns()) +
                            " cells does not fit on the sheet from " +
                            AreaToText(Area::OfCell(area.firstRow, area.firstColumn)) + " on");
  if (!value.IsEmpty() && !value.IsMissing()) CheckFillable(target, kMaxArrayCells);
  RemoveFormulas(target);
  Write(target, value);
  NoteChange(target);
}

void Sheet::Fill(const Area& area, const Value& value) {
  if (!value.IsArray()) return Write(area, Value::OfCell(EmptyAsZero(value.AsCell())));
  const Array& array = *value.AsArray();
  const auto at = [](std::int32_t index, std::int32_t size) { return size == 1 ? 0 : index < size ? index : -1; };
  for (std::int32_t row = 0; row < area.Rows(); ++row)
    for (std::int32_t column = 0; column < area.Columns(); ++column) {
      const std::int32_t r = at(row, array.Rows()), c = at(column, array.Columns());
      cells_.Set(area.firstRow + row, area.firstColumn + column,
                 r < 0 || c < 0 ? CellView::Error(xlerrNA) : EmptyAsZero(array.At(r, c)));
    }
}

void Sheet::WriteResult(const Area& callingCells, const Value& value) {
  CheckFillable(callingCells, kMaxArrayCells);
  TakeBackSpills(callingCells);
  Fill(callingCells, value);
  NoteChange(callingCells);
}

void Sheet::SetFormula(const Area& area, const Formula& formula) {
  CheckFillable(area, kMostFormulas);
  RemoveFormulas(area);
  Write(area, Value::Number(0));
  for (std::int32_t row = area.firstRow; row <= area.lastRow; ++row)
    for (std::int32_t column = area.firstColumn; column <= area.lastColumn; ++column) {
      formulas_[{row, column}].formula = formula;
      dirty_.Set(Area::OfCell(row, column), true);
    }
  NoteChange(area);
}

void Sheet::PutFormula(CellPosition position, Formula formula, FormulaForm form, const Area& fills) {
  const auto own = Area::OfCell(position.row, position.column);
  // No two formulas fill one cell, whatever a file says.
  for (const CellPosition& anchor : SpillsIn(fills)) ForgetSpill(anchor);
  FormulaCell& cell = formulas_.emplace_hint(formulas_.end(), position, FormulaCell{})->second;
  cell.formula = std::move(formula);
  cell.form = form;
  if (form == FormulaForm::kArray || fills != own) SetSpill(position, fills);
  if (Get(position.row, position.column).IsEmpty()) cells_.Set(position.row, position.column, CellView::Number(0));
  MarkDirty(position, true);
}

void Sheet::Clear(const Area& area) { Set(area, Value::Empty()); }

bool Sheet::IsRowFiltered(std::int32_t row) const {
  return IsRowHidden(row) && std::any_of(filters_.begin(), filters_.end(), [row](const Area& area) {
           return row > area.firstRow && row <= area.lastRow;
         });
}

void Sheet::Hide(std::set<std::int32_t>& lines, std::int32_t first, std::int32_t last, bool hidden) {
  if (!hidden) {
    lines.erase(lines.lower_bound(first), lines.upper_bound(last));
    return;
  }
  for (std::int32_t line = first; line <= last; ++line) lines.insert(line);
}

const FormulaCell* Sheet::FindFormula(CellPosition position) const {
  const auto found = formulas_.find(position);
  return found == formulas_.end() ? nullptr : &found->second;
}

std::optional<CellPosition> Sheet::WriterOf(CellPosition position) const {
  if (formulas_.contains(position)) return position;
  const auto above = spilled_.upper_bound({position.column, position.row});
  if (above == spilled_.begin()) return std::nullopt;
  const auto& [place, anchor] = *std::prev(above);
  const bool reaches =
      place.first == position.column && formulas_.at(anchor).spill->Contains(position.row, position.column);
  return reaches ? std::optional(anchor) : std::nullopt;
}

void Sheet::NoteChange(const Area& area) {
  // Beyond this many, what lies around them all is taken for changed: a calculation too many does no harm.
  constexpr std::size_t kMostChanges = 1000;
  if (!changes_.empty() && changes_.back() == area) return;
  changes_.push_back(area);
  if (changes_.size() < kMostChanges) return;
  Area around = area;
  for (const Area& change : changes_) around = around.Around(change);
  changes_ = {around};
}

void Sheet::MarkDirty(CellPosition position, bool dirty) {
  const std::optional<Area>& spill = formulas_.at(position).spill;
  dirty_.Set(spill.value_or(Area::OfCell(position.row, position.column)), dirty);
}

void Sheet::SetSpill(CellPosition anchor, const Area& spill) {
  formulas_.at(anchor).spill = spill;
  for (std::int32_t column = spill.firstColumn; column <= spill.lastColumn; ++column)
    spilled_[{column, spill.firstRow}] = anchor;
}

Area Sheet::ForgetSpill(CellPosition anchor) {
  const bool isDirty = IsDirty(anchor);
  const Area spill = *std::exchange(formulas_.at(anchor).spill, std::nullopt);
  dirty_.Set(spill, false);
  if (isDirty) MarkDirty(anchor, true);
  for (std::int32_t column = spill.firstColumn; column <= spill.lastColumn; ++column)
    spilled_.erase({column, spill.firstRow});
  return spill;
}

void Sheet::TakeBackSpill(CellPosition anchor) {
  if (!formulas_.at(anchor).spill) return;
  const Area spill = ForgetSpill(anchor);
  for (std::int32_t row = spill.firstRow; row <= spill.lastRow; ++row)
    for (std::int32_t column = spill.firstColumn; column <= spill.lastColumn; ++column)
      if (CellPosition{row, column} != anchor) cells_.SetPooled(row, column, {});
}

std::set<CellPosition> Sheet::SpillsIn(const Area& area) const {
  std::set<CellPosition> anchors;
  if (spilled_.empty()) return anchors;
  for (std::int32_t column = area.firstColumn; column <= area.lastColumn; ++column) {
    auto next = spilled_.upper_bound({column, area.firstRow});
    if (next != spilled_.begin()) --next;
    for (; next != spilled_.end() && next->first <= std::pair(column, area.lastRow); ++next)
      if (formulas_.at(next->second).spill->Intersects(area)) anchors.insert(next->second);
  }
  return anchors;
}

void Sheet::TakeBackSpills(const Area& area) {
  for (const CellPosition& anchor : SpillsIn(area)) {
    NoteChange(*formulas_.at(anchor).spill);
    TakeBackSpill(anchor);
    MarkDirty(anchor, true);
  }
}

void Sheet::RemoveFormulas(const Area& area) {
  if (formulas_.empty()) return;
  TakeBackSpills(area);
  for (auto cell = formulas_.lower_bound({area.firstRow, 0});
       cell != formulas_.end() && cell->first.row <= area.lastRow;) {
    if (!area.Contains(cell->first.row, cell->first.column)) {
      ++cell;
      continue;
    }
    dirty_.Set(Area::OfCell(cell->first.row, cell->first.column), false);
    cell = formulas_.erase(cell);
  }
}

}  // namespace qcalc
