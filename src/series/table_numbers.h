// The numbers in the cells of a table.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "frame/values/scratch_array.h"
#include "table/row_blocks.h"
#include "table/table_view.h"

namespace quillmere::series {

/// NumberIn, for what is not simply a number.
double OtherNumberIn(const XLOPER12& cell, XStringView argument);

/// The number of a cell of an argument, read as elements of vectors and matrices are: "Expected number for" it, where
/// it is none.
inline double NumberIn(const XLOPER12& cell, XStringView argument) {
  if (IsNumberCell(cell) && std::isfinite(cell.val.num)) [[likely]]
    return cell.val.num;
  return OtherNumberIn(cell, argument);
}

/// In two steps: not a number (std::isnan) for a cell that is none, which is refused when the number is asked for.
double NumberOrNone(const XLOPER12& cell);
[[noreturn]] void RefuseCell(XStringView argument);
inline double CheckedNumber(double number, XStringView argument) {
  if (std::isnan(number)) [[unlikely]]
    RefuseCell(argument);
  return number;
}

/// Places that follow each other, from 0.
struct PlaceRange {
  std::int32_t first;
  std::int32_t last;

  std::int32_t Count() const noexcept { return last - first + 1; }
  bool Contains(const PlaceRange& other) const noexcept { return first <= other.first && other.last <= last; }
};

/// The cells of some columns of a table as numbers, wherever they stand. Those of an array are read where they are,
/// each when it is asked for. Those of a reference are fetched by a callback for each run of neighbouring columns, no
/// more of them than is said, and kept as numbers alone. A cell that is no number is refused when it is asked for: what
/// nobody asks for may be anything.
class TableNumbers {
 public:
  /// Columns count from 0; by their places in the list they are asked for. A view of the table.
  TableNumbers(const TableView& table, std::vector<std::int32_t> columns, XStringView argument)
      : table_(table), columns_(std::move(columns)), argument_(argument) {}

  /// Says that so many times some cells of these rows and columns will be asked for. Those of a reference are all
  /// fetched at once, if that is cheaper than to fetch what is wanted each time.
  void Expect(const PlaceRange& rows, const PlaceRange& columns, std::int64_t times);
  /// Says which cells are asked for next.
  void Want(const PlaceRange& rows, const PlaceRange& columns) {
    if (table_.IsReference() && !(rows_.Contains(rows) && places_.Contains(columns))) Fetch(rows, columns);
  }
  /// Asks the processor for a cell that will soon be asked for.
  void Prefetch(std::int32_t row, std::int32_t column) const noexcept {
    if (!table_.IsReference()) PrefetchCell(&CellAt(row, column));
  }
  /// A number, of those last wanted.
  double At(std::int32_t row, std::int32_t column) const {
    if (!table_.IsReference()) return NumberIn(CellAt(row, column), argument_);
    const std::int64_t at = std::int64_t{row - rows_.first} * places_.Count() + (column - places_.first);
    return CheckedNumber(numbers_[static_cast<std::size_t>(at)], argument_);
  }

  std::int32_t Columns() const noexcept { return static_cast<std::int32_t>(columns_.size()); }

 private:
  void Fetch(const PlaceRange& rows, const PlaceRange& columns);
  const XLOPER12& CellAt(std::int32_t row, std::int32_t column) const noexcept {
    return table_.Cells().At(row, columns_[static_cast<std::size_t>(column)]);
  }

  TableView table_;
  std::vector<std::int32_t> columns_;
  XStringView argument_;
  ScratchArray<double> numbers_;  ///< of a reference's cells, row by row
  PlaceRange rows_{0, -1};        ///< where they stand
  PlaceRange places_{0, -1};
};

/// Calls `take(cell)` for the cells of some columns, row by row.
template <class Take>
void ForEachCell(const TableView& table, std::span<const std::int32_t> columns, const Take& take) {
  for (RowBlocks blocks(table, columns); blocks.Next();)
    for (std::int32_t row = 0; row < blocks.Rows(); ++row)
      for (std::size_t column = 0; column < columns.size(); ++column) take(blocks.At(row, column));
}

}  // namespace quillmere::series
