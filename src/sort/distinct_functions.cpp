// The distinct functions: lists of the distinct items of a range, with what they add up to, and how many there are.
//
// Serves LISTDISTINCTS, LISTDISTINCTS.COUNT, LISTDISTINCTS.SUM, LISTDISTINCTS.AVG, COUNTDISTINCTS, COUNTDUPES.
#include <utility>

#include "implementations/sort.h"
#include "sort/distinct_arguments.h"
#include "sort/distinct_list.h"
#include "table/ignored_items.h"

namespace quillmere::sort {
namespace {

using IntegerArgument = CXlScalarArgument<ElementKind::kInteger>;
using BooleanArgument = CXlScalarArgument<ElementKind::kBoolean>;

/// The order of a list without figures, by the sign.
ListOrder ReadSignedOrder(const IntegerArgument& sort) {
  const std::int32_t order = sort.Read();
  return {order == 0 ? ListOrder::By::kFirstOccurrence : ListOrder::By::kItem, order < 0};
}

/// What the codes of FillType stand for.
CXlOper ReadFill(const IntegerArgument& fillType) {
  switch (fillType.Read()) {
    case 1:
      return CXlOper::Text({});
    case 2:
      return CXlOper::Number(0);
    default:
      return CXlOper::Error(xlerrNA);
  }
}

}  // namespace

void Functions::ListDistincts(CXlOper& result, const CXlArgument& inputData, const IntegerArgument& ignore,
                              const BooleanArgument& caseSense, const BooleanArgument& byRows,
                              const IntegerArgument& sort, const IntegerArgument& fillType) {
  DistinctInput input(inputData);
  const IgnoredItems ignored = ReadIgnored(ignore);
  const TextCase textCase = ReadTextCase(caseSense);
  const bool areRows = byRows.Read();
  const ListForm form{ItemFigure::kNone, ReadSignedOrder(sort), ReadFill(fillType), CallingCellsSize()};
  const CXlCells items = input.ReadItems(areRows);
  result = ListItems(items, FindDistinctItems(items, textCase, ignored, form.figure), form);
}

void Functions::ListDistinctsWithCounts(CXlOper& result, const CXlArgument& inputData, const IntegerArgument& ignore,
                                        const BooleanArgument& byRows, const BooleanArgument& caseSense,
                                        const IntegerArgument& sort, const IntegerArgument& fillType) {
  DistinctInput input(inputData);
  const IgnoredItems ignored = ReadIgnored(ignore);
  const bool areRows = byRows.Read();
  const TextCase textCase = ReadTextCase(caseSense);
  const ListForm form{ItemFigure::kCount, ReadOrder(sort), ReadFill(fillType), CallingCellsSize()};
  const CXlCells items = input.ReadItems(areRows);
  result = ListItems(items, FindDistinctItems(items, textCase, ignored, form.figure), form);
}

void Functions::ListDistinctsWithTotals(CXlOper& result, bool averages, const CXlArgument& inputData,
                                        const CXlArgument& totalled, const IntegerArgument& ignore,
                                        const BooleanArgument& caseSense, const IntegerArgument& sort,
                                        const IntegerArgument& fillType) {
  DistinctInput input(inputData);
  const CellLine values = input.ReadValues(totalled);
  const IgnoredItems ignored = ReadIgnored(ignore);
  const TextCase textCase = ReadTextCase(caseSense);
  const ItemFigure figure = averages ? ItemFigure::kAverage : ItemFigure::kSum;
  const ListForm form{figure, ReadOrder(sort), ReadFill(fillType), CallingCellsSize()};
  const CXlCells items = input.ReadItems(true);
  result = ListItems(items, FindDistinctItems(items, textCase, ignored, figure, &values), form);
}

void Functions::CountDistincts(CXlOper& result, bool countsRepeats, const CXlArgument& inputData,
                               const IntegerArgument& ignore, const BooleanArgument& byRows,
                               const BooleanArgument& caseSense) {
  DistinctInput input(inputData);
  const IgnoredItems ignored = ReadIgnored(ignore);
  const bool areRows = byRows.Read();
  const TextCase textCase = ReadTextCase(caseSense);
  const DistinctItems found = FindDistinctItems(input.ReadItems(areRows), textCase, ignored, ItemFigure::kNone);
  const auto distinct = static_cast<std::int32_t>(found.firstPlaces.size());
  result.SetNumber(countsRepeats ? found.all - distinct : distinct);
}

}  // namespace quillmere::sort
