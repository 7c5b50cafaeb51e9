// All truth values combined into one.
//
// Serves ALL, ANY, NONE.
#include "frame/values/reference.h"
#include "implementations/logic.h"
#include "logic/decisions.h"
#include "logic/logical_arguments.h"
#include "table/row_blocks.h"

namespace quillmere::logic {
namespace {

/// Combines the cells of a table. The result receives the error, if there is one.
template <bool decider>
Decision CombineTable(const TableView& table, CXlOper& result) {
  Decision decision = kOpen;
  for (RowBlocks blocks(table); decision == kOpen && blocks.Next();) {
    // All columns are read, so all cells of a block follow each other.
    const XLOPER12* error = nullptr;
    decision = CombineRun<decider>(&blocks.At(0, 0), std::int64_t{blocks.Rows()} * table.Columns(), error);
    if (error) result.SetError(KnownErrorCode(CellErrorCode(*error)));
  }
  return decision;
}

/// The same for a value, of which a reference may have several areas: one after the other.
template <bool decider>
Decision CombineValue(const CXlOper& value, CXlOper& result) {
  if (!value.IsReference() || value.Areas().size() == 1)
    return CombineTable<decider>(TableView::OfUsedRows(value), result);
  Decision decision = kOpen;
  for (const XLREF12& area : value.Areas()) {
    const CXlOper reference = ReferenceOnSheetOf(value, area);
    decision = CombineTable<decider>(TableView::OfUsedRows(reference), result);
    if (decision != kOpen) break;
  }
  return decision;
}

template <bool decider>
Decision CombineAllOf(const LogicalArguments& arguments, CXlOper& result) {
  Decision decision = kOpen;
  for (std::size_t place = 0; place < arguments.Count() && decision == kOpen; ++place) {
    const CXlArgument argument = arguments[place];
    if (argument.IsGiven()) decision = CombineValue<decider>(argument.Value(), result);
  }
  return decision;
}

}  // namespace

void Functions::CombineAll(CXlOper& result, Quantifier quantifier, const LogicalArguments& arguments) {
  const Decision decision =
      quantifier == Quantifier::kAll ? CombineAllOf<false>(arguments, result) : CombineAllOf<true>(arguments, result);
  // Any other decision left the error.
  if (decision == kOpen) result.SetBoolean(quantifier != Quantifier::kAny);
  if (decision == kDecided) result.SetBoolean(quantifier == Quantifier::kAny);
}

}  // namespace quillmere::logic
