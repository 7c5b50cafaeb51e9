// Whether texts are like a wildcard pattern.
//
// Serves ISLIKE2.
#include <cstddef>
#include <span>

#include "frame/convert/argument.h"
#include "frame/convert/cell_text.h"
#include "frame/convert/single_value.h"
#include "frame/values/array_builder.h"
#include "implementations/text.h"
#include "text/wildcard_pattern.h"

namespace quillmere::text {

void Functions::IsLike(CXlOper& result, const CXlArgument& theString, const CXlArgument& thePattern,
                       const CXlScalarArgument<ElementKind::kBoolean>& caseSensitive) {
  result.SetError(xlerrValue);
  const CXlCells cells = theString.Value().Cells();
  const XLOPER12* const patternCell = OnlyCell(thePattern.Value());
  if (!patternCell || !IsTextCell(*patternCell)) return;
  const WildcardPattern pattern(TextOf(*patternCell), caseSensitive.Read());

  CXlArrayBuilder likeness(cells.rows, cells.columns);
  // Copied whole: a cell that is put together takes longer than the matching.
  const XLOPER12 answers[] = {BooleanCell(false), BooleanCell(true)};
  XLOPER12* to = likeness.Row(0);
  for (const XLOPER12& cell : std::span(cells.first, static_cast<std::size_t>(cells.Count()))) {
    NumberTextBuffer number;
    if (IsTextCell(cell)) [[likely]]
      *to = answers[pattern.Matches(TextOf(cell))];
    else if (IsErrorCell(cell))
      likeness.CopyCells(to, &cell, 1);
    else
      *to = answers[pattern.Matches(TextForm(cell, number))];
    ++to;
  }
  result = likeness.FinishCollapsed();
}

}  // namespace quillmere::text
