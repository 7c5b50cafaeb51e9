#include "host/workbook/sheet.h"

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

void Sheet::WriteResult(const Area& callingCells, const Value& value) {
  CheckFillable(callingCells, kMaxArrayCells);
  TakeBackSpills(callingCells);
  if (value.IsArray()) {
    const Array& array = *value.AsArray();
    const auto at = [](std::int32_t index, std::int32_t size) { return size == 1 ? 0 : index < size ? index : -1; };
    for (std::int32_t row = 0; row < callingCells.Rows(); ++row)
      for (std::int32_t column = 0; column < callingCells.Columns(); ++column) {
        const std::int32_t r = at(row, array.Rows()), c = at(column, array.Columns());
        cells_.Set(callingCells.firstRow + row, callingCells.firstColumn + column,
                   r < 0 || c < 0 ? CellView::Error(xlerrNA) : EmptyAsZero(array.At(r, c)));
      }
  } else {
    Write(callingCells, Value::OfCell(EmptyAsZero(value.AsCell())));
  }
  NoteChange(callingCells);
}

void Sheet::SetFormula(const Area& area, const Formula& formula) {
  CheckFillable(area, kMostFormulas);
  RemoveFormulas(area);
  Write(area, Value::Number(0));
  for (std::int32_t row = area.firstRow; row <= area.lastRow; ++row)
    for (std::int32_t column = area.firstColumn; column <= area.lastColumn; ++column) {
      formulas_[{row, column}].formula = formula;
      dirty_.insert({row, column});
    }
  NoteChange(area);
}

void Sheet::Clear(const Area& area) { Set(area, Value::Empty()); }

void Sheet::HideRows(std::int32_t first, std::int32_t last, bool hidden) {
  if (!hidden) {
    hiddenRows_.erase(hiddenRows_.lower_bound(first), hiddenRows_.upper_bound(last));
    return;
  }
  for (std::int32_t row = first; row <= last; ++row) hiddenRows_.insert(row);
}

bool Sheet::IsRowHidden(std::int32_t row) const { return hiddenRows_.contains(row); }

const FormulaCell* Sheet::FindFormula(CellPosition position) const {
  const auto found = formulas_.find(position);
  return found == formulas_.end() ? nullptr : &found->second;
}

std::optional<CellPosition> Sheet::FirstUncalculated(const Area& area) const {
  for (auto cell = dirty_.lower_bound({area.firstRow, area.firstColumn}); cell != dirty_.end(); ++cell) {
    if (cell->row > area.lastRow) break;
    if (area.Contains(cell->row, cell->column)) return *cell;
  }
  return std::nullopt;
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
  formulas_.at(position).isDirty = dirty;
  if (dirty)
    dirty_.insert(position);
  else
    dirty_.erase(position);
}

void Sheet::SetSpill(CellPosition anchor, const Area& spill) {
  formulas_.at(anchor).spill = spill;
  spilling_.insert(anchor);
}

void Sheet::TakeBackSpill(CellPosition anchor) {
  FormulaCell& cell = formulas_.at(anchor);
  if (!cell.spill) return;
  spilling_.erase(anchor);
  const Area spill = *std::exchange(cell.spill, std::nullopt);
  for (std::int32_t row = spill.firstRow; row <= spill.lastRow; ++row)
    for (std::int32_t column = spill.firstColumn; column <= spill.lastColumn; ++column)
      if (CellPosition{row, column} != anchor) cells_.SetPooled(row, column, {});
}

void Sheet::TakeBackSpills(const Area& area) {
  for (auto next = spilling_.begin(); next != spilling_.end();) {
    const CellPosition anchor = *next++;
    const Area spill = *formulas_.at(anchor).spill;
    if (!spill.Intersects(area)) continue;
    NoteChange(spill);
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
    dirty_.erase(cell->first);
    cell = formulas_.erase(cell);
  }
}

}  // namespace qcalc
