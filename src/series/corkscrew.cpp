// Balances rolled forward from period to period.
//
// Serves CORKSCREW.
#include <cstddef>
#include <vector>

#include "frame/convert/argument.h"
#include "frame/values/array_builder.h"
#include "implementations/series.h"
#include "series/table_numbers.h"
#include "table/compensated_sum.h"
#include "table/row_blocks.h"

namespace quillmere::series {
namespace {

/// Calls `take(row, cells)` with the cells of each row of a table in turn, which stand side by side.
template <class Take>
void ForEachRow(const TableView& table, const Take& take) {
  for (RowBlocks blocks(table); blocks.Next();)
    for (std::int32_t row = 0; row < blocks.Rows(); ++row) take(blocks.FirstRow() + row, &blocks.At(row, 0));
}

// The flows of a period are added up for themselves, and then to the balance, which carries what rounding takes from it
// on into the next periods: so both ways give the same numbers.

/// Periods down the rows.
CXlOper RollDown(double opening, const TableView& flows, XStringView argument) {
  const std::int32_t columns = flows.Columns();
  CXlArrayBuilder builder(flows.Rows(), std::int64_t{columns} + 2);
  CompensatedSum balance(opening);
  ForEachRow(flows, [&](std::int32_t row, const XLOPER12* cells) {
    CompensatedSum added;
    builder.PutNumber(row, 0, balance.Value());
    for (std::int32_t column = 0; column < columns; ++column) {
      const double flow = NumberIn(cells[column], argument);
      builder.PutNumber(row, column + 1, flow);
      added.Add(flow);
    }
    balance.Add(added.Value());
    builder.PutNumber(row, columns + 1, balance.Value());
  });
  return builder.Finish();
}

/// Periods across: what each adds is known when the last row has been read.
CXlOper RollAcross(double opening, const TableView& flows, XStringView argument) {
  const std::int32_t columns = flows.Columns();
  CXlArrayBuilder builder(std::int64_t{flows.Rows()} + 2, columns);
  std::vector<CompensatedSum> added(static_cast<std::size_t>(columns));
  ForEachRow(flows, [&](std::int32_t row, const XLOPER12* cells) {
    for (std::int32_t column = 0; column < columns; ++column) {
      const double flow = NumberIn(cells[column], argument);
      builder.PutNumber(row + 1, column, flow);
      added[static_cast<std::size_t>(column)].Add(flow);
    }
  });
  CompensatedSum balance(opening);
  for (std::int32_t column = 0; column < columns; ++column) {
    builder.PutNumber(0, column, balance.Value());
    balance.Add(added[static_cast<std::size_t>(column)].Value());
    builder.PutNumber(flows.Rows() + 1, column, balance.Value());
  }
  return builder.Finish();
}

}  // namespace

void Functions::Corkscrew(CXlOper& result, const CXlArgument& opening, const CXlArgument& flows,
                          const CXlScalarArgument<ElementKind::kBoolean>& down) {
  result.SetError(xlerrValue);
  const TableView table = TableView::OfUsedRows(flows.Value());
  const double first = opening.As<ElementKind::kNumber>();
  result = down.Read() ? RollDown(first, table, flows.Name()) : RollAcross(first, table, flows.Name());
}

}  // namespace quillmere::series
