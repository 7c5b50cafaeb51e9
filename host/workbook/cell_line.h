// A row or a column to be searched: of a sheet, without a copy, or of an array.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "host/workbook/sheet.h"

namespace qcalc {

/// Places count from 0. What it views outlives it and does not change meanwhile.
class CellLine {
 public:
  /// `area` has one row or one column.
  CellLine(const Sheet& sheet, const Area& area)
      : sheet_(&sheet), area_(area), size_(std::max(area.Rows(), area.Columns())) {}
  /// One value as a line of one place.
  explicit CellLine(const CellView& cell) : cells_(&cell), size_(1) {}
  static CellLine RowOf(const Array& array, std::int32_t row) { return {&array.At(row, 0), 1, array.Columns()}; }
  static CellLine ColumnOf(const Array& array, std::int32_t column) {
    return {&array.At(0, column), array.Columns(), array.Rows()};
  }

  std::int32_t Size() const { return size_; }
  const CellView& At(std::int32_t place) const {
    if (!sheet_) return cells_[static_cast<std::ptrdiff_t>(place) * stride_];
    return IsSheetColumn() ? sheet_->Get(area_.firstRow + place, area_.firstColumn)
                           : sheet_->Get(area_.firstRow, area_.firstColumn + place);
  }

  /// The sheet whose column (not: row) this views part of, from row FirstRow() on; else null.
  const Sheet* ColumnSheet() const { return IsSheetColumn() ? sheet_ : nullptr; }
  std::int32_t SheetColumn() const { return area_.firstColumn; }
  std::int32_t FirstRow() const { return area_.firstRow; }

  /// The first place from `first` to `last` whose cell is of that kind (not empty) and one that
  /// `accept(const CellView&)` takes; nothing when there is none. On a sheet what is empty costs next to nothing.
  template <typename Accept>
  std::optional<std::int32_t> Find(std::int32_t first, std::int32_t last, CellKind kind, Accept&& accept) const {
    if (IsSheetColumn()) {
      const auto row =
          sheet_->Cells().FindRow(area_.firstColumn, area_.firstRow + first, area_.firstRow + last, kind, accept);
      return row ? std::optional(*row - area_.firstRow) : std::nullopt;
    }
    if (sheet_) last = std::min(last, sheet_->Cells().ColumnsReached() - 1 - area_.firstColumn);
    for (std::int32_t place = first; place <= last; ++place)
      if (const CellView& cell = At(place); cell.Kind() == kind && accept(cell)) return place;
    return std::nullopt;
  }

 private:
  CellLine(const CellView* cells, std::ptrdiff_t stride, std::int32_t size)
      : cells_(cells), stride_(stride), size_(size) {}
  bool IsSheetColumn() const { return sheet_ && area_.firstColumn == area_.lastColumn; }

  const Sheet* sheet_ = nullptr;
  Area area_;
  const CellView* cells_ = nullptr;
  std::ptrdiff_t stride_ = 1;
  std::int32_t size_;
};

}  // namespace qcalc
