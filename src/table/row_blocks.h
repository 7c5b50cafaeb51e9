// A table read down its rows, by blocks.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "table/cell_line.h"
#include "table/table_view.h"

namespace quillmere {

/// A walk down a table, or some of its columns, block by block:
///
///   for (RowBlocks blocks(table); blocks.Next();)
///     for (std::int32_t row = 0; row < blocks.Rows(); ++row) ... blocks.At(row, column) ...
///
/// An array is one block, where it stands. Of a reference each block is fetched from Excel, by one callback for each
/// run of neighbouring columns, and given back before the next: no more than one is ever held. Who stops asking has
/// read no more than he needed. What the table was made from must outlive the walk.
class RowBlocks {
 public:
  /// The cells of a reference's block. So many take half a megabyte, which is still in the processor's cache when they
  /// are looked at; far fewer, and the callbacks themselves would be felt. No row of a sheet has more.
  static constexpr std::int32_t kBlockCells = kXlMaxColumns;

  explicit RowBlocks(const TableView& table);
  /// Of the columns given (0-based, in any order, some perhaps twice); they are then counted as they stand in the list.
  RowBlocks(const TableView& table, std::span<const std::int32_t> columns);

  /// Goes on to the next block, the first at first; false behind the last. What was read before is then gone. A
  /// callback that fails raises CXlErrorException with #VALUE!.
  bool Next();

  /// The table's row, counted from 0, with which the block begins; and how many it has, one at least.
  std::int32_t FirstRow() const noexcept { return firstRow_; }
  std::int32_t Rows() const noexcept { return rows_; }

  /// One of the columns, as far as the block goes.
  const CellLine& Column(std::size_t column) const noexcept { return lines_[column]; }
  /// A cell: its row counts from the block's first.
  const XLOPER12& At(std::int32_t row, std::size_t column) const noexcept { return lines_[column].At(row); }

 private:
  /// Neighbouring columns, which one callback fetches.
  struct Run {
    std::int32_t first;
    std::int32_t count;
    CXlOper cells;
  };

  void FindRuns();
  void Fetch();

  TableView table_;
  std::vector<std::int32_t> columns_;
  std::vector<CellLine> lines_;  ///< one for each of columns_
  std::vector<Run> runs_;        ///< of a reference, from left to right
  std::int32_t rowsPerBlock_;
  std::int32_t firstRow_ = 0;
  std::int32_t rows_ = 0;
};

}  // namespace quillmere
