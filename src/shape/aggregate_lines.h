// Aggregates of the picked cells of a table: of its columns, of its rows, or of all of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "frame/values/xl_oper.h"
#include "shape/aggregate.h"
#include "shape/slice.h"
#include "table/table_view.h"

namespace quillmere::shape {

/// What is a line.
enum class AggregateBy : std::int32_t {
  kAll = 0,      ///< all picked cells, row by row
  kColumns = 1,  ///< each picked column, down the picked rows
  kRows = 2,     ///< each picked row, along the picked columns
};

/// The rows and columns picked of a table: one of each at least.
struct TableSlice {
  const TableView& table;
  const Slice& rows;
  const Slice& columns;

  std::int32_t Lines(AggregateBy by) const noexcept;
};

/// Where results go: that of a function for a line to first[line * lineStep + function * functionStep].
struct AggregateResults {
  XLOPER12* first;
  std::ptrdiff_t lineStep;
  std::ptrdiff_t functionStep;
  const XLOPER12* withoutNumber = nullptr;  ///< what goes there for a line that holds no number and no error, if given
};

/// Writes the results of all lines for all functions, in one pass over the cells. A reference is read by blocks of the
/// picked columns, and of no more rows than are picked or lie close between them. A callback that fails is
/// CXlErrorException with #VALUE!, what is no cell "Bad XLOPER type".
void AggregateLines(const TableSlice& slice, AggregateBy by, std::span<const AggregateFunction> functions,
                    const AggregateResults& results);

/// The results as a value: a row for each function with a column for each line, or for rows a column for each function.
/// A result of one cell is that cell's value. One too large for a sheet is CXlArrayTooLargeException, before a cell is
/// read.
CXlOper AggregateArray(const TableSlice& slice, AggregateBy by, std::span<const AggregateFunction> functions);

}  // namespace quillmere::shape
