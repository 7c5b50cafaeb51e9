// The one view of a table argument, whether it is an array (or a single value) or a reference to cells of a sheet.
#pragma once

#include <cstdint>

#include "frame/values/xl_oper.h"

namespace quillmere {

/// Cells of a reference that are sooner read with those around them than left out, which takes another callback.
inline constexpr std::int32_t kCellsWorthACallback = 256;

/// A table of cells, viewed where it is: it owns nothing. Of a reference it keeps the place; any other value must
/// outlive it. Rows and columns count from 0 here. An array's cells are read in place; a reference's cost a callback
/// each, and each read has a name that says so. A callback that fails raises CXlErrorException with #VALUE!.
class TableView {
 public:
  /// The view of an array, a single value (one row of one column) or a reference of one area. A reference of several
  /// areas, a missing or unset value: CXlErrorException with #VALUE!.
  explicit TableView(const CXlOper& table);
  explicit TableView(CXlOper&& table) = delete;
  /// The same without rows that the sheet does not use, for a reference that CutToUsedRows cuts.
  static TableView OfUsedRows(const CXlOper& table);
  static TableView OfUsedRows(CXlOper&& table) = delete;

  std::int32_t Rows() const noexcept { return rows_; }
  std::int32_t Columns() const noexcept { return columns_; }
  bool IsReference() const noexcept { return isReference_; }

  /// `count` rows of the same table, perhaps none, from `first` on; they lie within it.
  TableView SomeRows(std::int32_t first, std::int32_t count) const noexcept;
  /// The same table from its second row on; it may then have no rows.
  TableView WithoutFirstRow() const noexcept { return SomeRows(1, rows_ - 1); }

  /// An array's cells, row-major; not for references.
  CXlCells Cells() const noexcept { return {first_, rows_, columns_}; }

  /// The values of a rectangle of a reference, read by one xlCoerce: cells of that size, or the value of the only one.
  /// It has at least one row and column and lies within the table.
  CXlOper CoercePart(std::int32_t firstRow, std::int32_t firstColumn, std::int32_t rows, std::int32_t columns) const;
  /// A cell of a reference, read by one xlCoerce.
  CXlOper CoerceCell(std::int32_t row, std::int32_t column) const;
  /// The cell's value, wherever it stands: a view of an array's, one xlCoerce for a reference's.
  CXlOper ReadCell(std::int32_t row, std::int32_t column) const;
  /// All cells, of which there is one at least, wherever they stand: a view of an array's, one xlCoerce for a
  /// reference's.
  CXlOper ReadAll() const;

  /// A reference to a rectangle of a reference, in the form in which the table was passed: to hand to callbacks. It has
  /// at least one row and column and lies within the table.
  CXlOper Part(std::int32_t firstRow, std::int32_t firstColumn, std::int32_t rows, std::int32_t columns) const;

 private:
  XLREF12 AreaOf(std::int32_t firstRow, std::int32_t firstColumn, std::int32_t rows,
                 std::int32_t columns) const noexcept;

  const XLOPER12* first_ = nullptr;  ///< of an array
  std::int32_t rows_ = 0;
  std::int32_t columns_ = 0;
  bool isReference_ = false;
  bool isOnCurrentSheet_ = false;  ///< passed without a sheet (xltypeSRef)
  IDSHEET sheet_ = 0;
  XLREF12 area_{};
};

}  // namespace quillmere
