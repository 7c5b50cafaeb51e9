// Joins: the rows of two tables by equal keys.
//
// Serves MATCHES, MISSMATCHES.
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

/// Rows in a result that may be wider.
ArrayPiece PaddedPiece(const CXlCells& cells, const AxisMap& rows, std::int32_t width) {
  return {cells, rows, AxisMap::Run(0, cells.columns).PaddedTo(width)};
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
  const std::int32_t headerRows = first.headerRows;
  CXlArrayBuilder builder(partners.Count() + headerRows, std::int64_t{first.Columns()} + second.Columns());
  ArrayPainter painter(builder, *plan->fill);
  const AxisMap firstColumns = AxisMap::Run(0, first.Columns());
  const AxisMap secondColumns = AxisMap::Run(0, second.Columns());
  const ArrayPiece headers[] = {
      {first.Header(), AxisMap::Run(0, headerRows), firstColumns},
      {second.Header(), AxisMap::Run(0, headerRows), secondColumns},
  };
  painter.PaintBand(0, headers);
  const RowPairs pairs = partners.List();
  const ArrayPiece rows[] = {
      {first.Data(), AxisMap::By({pairs.first.data(), pairs.first.size()}), firstColumns},
      {second.Data(), AxisMap::By({pairs.second.data(), pairs.second.size()}), secondColumns},
  };
  painter.PaintBand(headerRows, rows);
  result = builder.Finish();
}

void Functions::MissMatches(CXlOper& result, const CXlArgument& leftData, const CXlArgument& rightData,
                            const CXlScalarArgument<ElementKind::kInteger>& matchType, const CXlArgument& leftColumns,
                            const CXlArgument& rightColumns, const CXlScalarArgument<ElementKind::kBoolean>& caseSense,
                            const CXlArgument& fill) {
  result.SetError(xlerrValue);
  const std::optional<JoinPlan> plan =
      ReadJoin({leftData, rightData, matchType, leftColumns, rightColumns, caseSense, fill}, result);
  if (!plan) return;
  constexpr std::int32_t kOfLeft = 1;  // of Match_Type; both have both bits
  constexpr std::int32_t kOfRight = 2;
  const bool wantsLeft = (plan->matchType & kOfLeft) != 0;
  const bool wantsRight = (plan->matchType & kOfRight) != 0;

  const KeyGroups groups = GroupByKeys(plan->left.Keys(), plan->right.Keys(), plan->textCase);
  ScratchList<std::int32_t> leftRows;
  ScratchList<std::int32_t> rightRows;
  if (wantsLeft) leftRows = RowsWithoutPartner(groups.ofFirst, groups.ofSecond, groups.names);
  if (wantsRight) rightRows = RowsWithoutPartner(groups.ofSecond, groups.ofFirst, groups.names);
  if (leftRows.empty() && rightRows.empty()) {
    result.SetError(xlerrNA);
    return;
  }

  const std::int32_t leftWidth = wantsLeft ? plan->left.Columns() : 0;
  const std::int32_t rightWidth = wantsRight ? plan->right.Columns() : 0;
  const std::int32_t width = std::max(leftWidth, rightWidth);
  const CXlCells header = leftWidth == width ? plan->left.Header() : plan->right.Header();
  const ArrayPiece pieces[] = {
      PaddedPiece(header, AxisMap::Run(0, header.rows), width),
      PaddedPiece(plan->left.Data(), AxisMap::By(leftRows.Values()), width),
      PaddedPiece(plan->right.Data(), AxisMap::By(rightRows.Values()), width),
  };
  result = PaintStack(pieces, false, *plan->fill);
}

}  // namespace quillmere::sort
