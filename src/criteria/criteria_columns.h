// The columns that the criteria of a call look at: of the data, and separate ones that are as tall.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "criteria/row_interval.h"
#include "table/row_blocks.h"
#include "table/table_view.h"

namespace quillmere::criteria {

/// Columns, each known by its index in the order in which it was added. Rows count from 0 within the data.
class CriteriaColumns {
 public:
  /// Adds a column of a table, 0-based, and returns its index; the same one for the same column of the same source.
  /// `source` tells tables apart: 0 is the data range, any other number one table alone.
  std::size_t Add(const TableView& table, std::int32_t column, std::size_t source);

  /// What `use` makes of a cell, wherever that stands: an array's in place, a reference's by one callback.
  template <class Use>
  auto UseCell(std::size_t index, std::int32_t row, const Use& use) const {
    const Column& column = columns_[index];
    if (!column.table.IsReference()) return use(column.table.Cells().At(row, column.column));
    const CXlOper cell = column.table.CoerceCell(row, column.column);
    return use(cell.Raw());
  }
  bool IsReference(std::size_t index) const noexcept { return columns_[index].table.IsReference(); }

  /// How many rows are to be read at once.
  std::int32_t MostRows() const noexcept;

  /// Reads some rows of all columns, MostRows() at most: nothing of an array, a reference by one callback for each run
  /// of neighbouring columns. What was read before is then gone. A callback that fails raises CXlErrorException with
  /// #VALUE!.
  void Read(const RowInterval& rows);
  /// A column as far as it was read; its places count from the first row read.
  const CellLine& Line(std::size_t index) const noexcept { return lines_[index]; }

 private:
  struct Column {
    TableView table;
    std::int32_t column;
    std::size_t source;
  };

  std::vector<Column> columns_;
  std::vector<CellLine> lines_;
  std::vector<RowBlocks> blocks_;  ///< of the references, as far as they were read
};

}  // namespace quillmere::criteria
