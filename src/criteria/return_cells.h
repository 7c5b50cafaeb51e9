// What criteria functions make of the selected rows.
#pragma once

#include <cstdint>
#include <span>

#include "criteria/row_interval.h"
#include "frame/values/xl_oper.h"
#include "table/table_view.h"

namespace quillmere::criteria {

/// The cells of some columns (0-based) of a table in the selected rows, of which there is one at least, from the top
/// down. One cell is a plain value. A cell that is no single cell is "Bad XLOPER type"; a callback that fails raises
/// CXlErrorException with #VALUE!. Of a reference only stretches of rows with selected ones are read.
CXlOper GatherRows(const TableView& table, std::span<const std::int32_t> columns,
                   std::span<const RowInterval> selected);

/// What one of Excel's functions that take arrays, xlfSum or xlfCounta, says of each column's selected cells, as a row;
/// of one column the plain value.
CXlOper TotalRows(const TableView& table, std::span<const std::int32_t> columns, std::span<const RowInterval> selected,
                  int xlfn);

/// A row for each interval: its first row, counted from 1, and its number of rows.
CXlOper ListRuns(std::span<const RowInterval> selected);

}  // namespace quillmere::criteria
