// Rows or columns of an array taken away, and others put in.
//
// Serves SPLICEROWS, SPLICECOLS.
//
// Both directions are one piece of code (shape/stacked_lines.h): the lines that are spliced lie along.
#include <algorithm>

#include "frame/convert/argument.h"
#include "shape/stacked_lines.h"
#include "table/fill_argument.h"

namespace quillmere::shape {
namespace {

/// What the result has of an array's lines: `kept` of them from the first on, then the ones put in, then those from
/// `resumed` on.
struct LinePlan {
  std::int32_t size;  ///< lines of the result, perhaps more than these, or fewer
  std::int32_t kept;
  std::int32_t resumed;
};

/// The plan for an array of `lines` lines that loses `removed` behind the first `after`, both at most `lines`. Below 0,
/// `after` means the end and `removed` all that follow.
LinePlan PlanLines(std::int32_t lines, std::int32_t after, std::int32_t removed, std::int32_t inserted) {
  if (removed >= 0) {
    const std::int32_t kept = after < 0 ? lines - removed : after;
    return {lines + inserted - removed, kept, std::min(kept + removed, lines)};
  }
  if (after < 0) return {lines + inserted, lines, lines};
  if (after == 0) return {inserted, 0, lines};
  return {lines + inserted - after, after, lines};  // as if it kept the lines behind `after`, not those before
}

}  // namespace

void Functions::SpliceLines(CXlOper& result, StackDirection direction, const CXlArgument& array,
                            const CXlScalarArgument<ElementKind::kInteger>& afterLine,
                            const CXlScalarArgument<ElementKind::kInteger>& removeLines, const CXlArgument& splice,
                            const CXlArgument& fill) {
  result.SetError(xlerrValue);
  const CXlCells cells = array.Value().Cells();
  const std::int32_t lines = Along(cells, direction);
  const std::int32_t after = afterLine.Read();
  const std::int32_t removed = removeLines.Read();
  if (cells.Count() == 1 || after > lines || removed > lines) return;
  const CXlCells inserted = splice.IsGiven() ? splice.Value().Cells() : CXlCells{};
  const std::int32_t insertedLines = Along(inserted, direction);
  const XLOPER12* const fillValue = ReadFill(result, fill);
  if (!fillValue) return;

  const LinePlan plan = PlanLines(lines, after, removed, insertedLines);
  const std::int32_t resumedLines = lines - plan.resumed;
  const std::int32_t unfilled = plan.size - plan.kept - insertedLines - resumedLines;
  if (plan.size < 1 && (plan.kept == 0 || removed > 0)) return;
  if (unfilled < 0) throw CXlOutOfRangeException();

  const std::int32_t lanes = Lanes(cells, direction);
  const std::int32_t insertedLanes = Lanes(inserted, direction);
  const AxisMap whole = AxisMap::Run(0, lanes);
  const AxisMap across =
      insertedLanes == 1 ? AxisMap::Repeated(lanes) : AxisMap::Run(0, std::min(insertedLanes, lanes)).PaddedTo(lanes);
  const XLOPER12 nothing = ErrorCell(xlerrNA);
  const ArrayPiece pieces[] = {
      PieceOf(cells, AxisMap::Run(0, plan.kept), whole, direction),
      PieceOf(inserted, AxisMap::Run(0, insertedLines), across, direction),
      PieceOf(cells, AxisMap::Run(plan.resumed, resumedLines), whole, direction),
      PieceOf({&nothing, 1, 1}, AxisMap::Repeated(unfilled), AxisMap::Repeated(lanes), direction),
  };
  result = PaintStack(pieces, IsAcross(direction), *fillValue);
}

}  // namespace quillmere::shape
