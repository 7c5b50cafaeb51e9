#include "logic/logical_arguments.h"

namespace quillmere::logic {
namespace {

bool IsAlike(const TableView& first, const TableView& table, Likeness likeness) {
  const bool areRows = likeness == Likeness::kColumns || table.Rows() == first.Rows();
  const bool areColumns = likeness == Likeness::kRows || table.Columns() == first.Columns();
  return areRows && areColumns;
}

/// A formula in one cell spills, and shows all.
std::int32_t Shown(std::int32_t count, std::int32_t ofCaller) {
  return ofCaller > 1 && ofCaller < count ? ofCaller : count;
}

}  // namespace

MeasuredArguments MeasureArguments(const LogicalArguments& arguments, Likeness likeness) {
  const CXlArgument firstArgument = arguments[0];
  const CXlOper& firstValue = firstArgument.Value();
  const CellsSize caller = CallingCellsSize();

  const TableView first = TableView::OfUsedRows(firstValue);
  MeasuredArguments measured{{first}, {Shown(first.Rows(), caller.rows), Shown(first.Columns(), caller.columns)}};
  for (std::size_t place = 1; place < arguments.Count(); ++place) {
    const CXlArgument argument = arguments[place];
    if (!argument.IsGiven()) continue;
    const TableView table = TableView::OfUsedRows(argument.Value());
    if (!IsAlike(first, table, likeness)) throw CXlErrorException(xlerrValue);
    measured.tables.push_back(table);
  }
  return measured;
}

}  // namespace quillmere::logic
