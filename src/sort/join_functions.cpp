// Joins: the rows of two tables by equal keys.
//
// Serves MATCHES.
#include <algorithm>

#include "frame/values/array_builder.h"
#include "implementations/sort.h"
#include "sort/join_arguments.h"
#include "sort/join_rows.h"
#include "table/array_painter.h"

namespace quillmere::sort {
namespace {

/// What a Match_Type of MATCHES asks for.
struct PairedRows {
  bool leadsRight;  ///< the rows of the right table come in order, its columns in front
  bool keepsAll;    ///< rows without a partner too
};

PairedRows PairedRowsOf(std::int32_t matchType) {
  constexpr std::int32_t kAllLeft = 4;
  constexpr std::int32_t kAllRight = 6;
  return {matchType >= kAllRight, matchType == kAllLeft || matchType == kAllRight};
}

}  // namespace

void Functions::Matches(CXlOper& result, const CXlArgument& leftData, const CXlArgument& rightData,
                        const CXlScalarArgument<ElementKind::kInteger>& matchType, const CXlArgument& leftColumns,
                        const CXlArgument& rightColumns, const CXlScalarArgument<ElementKind::kBoolean>& caseSense,
                        const CXlArgument& fill) {
  result.SetError(xlerrValue);
  const std::optional<JoinPlan> plan =
      ReadJoin({leftData, rightData, matchType, leftColumns, rightColumns, caseSense, fill}, result);
  if (!plan) return;
  const PairedRows wanted = PairedRowsOf(plan->matchType);
  const JoinTable& first = wanted.leadsRight ? plan->right : plan->left;
  const JoinTable& second = wanted.leadsRight ? plan->left : plan->right;

  const Partners partners(GroupByKeys(first.Keys(), second.Keys(), plan->textCase), wanted.keepsAll);
  if (partners.Count() == 0) {
    result.SetError(xlerrNA);
    return;
  }
  const CXlCells firstCells = first.Cells();
  const CXlCells secondCells = second.Cells();
  CheckArraySize(partners.Count() + first.headerRows, std::int64_t{firstCells.columns} + secondCells.columns);
  const RowPairs pairs = partners.List(first.headerRows);

  const ArrayPiece pieces[] = {
      {firstCells, AxisMap::By(pairs.first), AxisMap::Run(0, firstCells.columns)},
      {secondCells, AxisMap::By(pairs.second), AxisMap::Run(0, secondCells.columns)},
  };
  result = PaintStack(pieces, true, *plan->fill);
}

}  // namespace quillmere::sort
