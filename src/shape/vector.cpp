// Numbers that follow each other by equal steps.
//
// Serves VECTOR.
#include <algorithm>
#include <cmath>

#include "frame/convert/argument.h"
#include "frame/values/array_builder.h"
#include "implementations/shape.h"

namespace quillmere::shape {

void Functions::Vector(CXlOper& result, const CXlScalarArgument<ElementKind::kNumber>& count,
                       const CXlScalarArgument<ElementKind::kNumber>& start,
                       const CXlScalarArgument<ElementKind::kNumber>& step,
                       const CXlScalarArgument<ElementKind::kBoolean>& down) {
  result.SetError(xlerrValue);
  const double wanted = count.Read();
  const double first = start.Read();
  const double change = step.Read();
  const bool isColumn = down.Read();
  if (!(wanted >= 1)) return;

  constexpr double kTooMany = kXlMaxRows + 1;
  const auto numbers = static_cast<std::int32_t>(std::min(wanted, kTooMany));
  CXlArrayBuilder builder(isColumn ? numbers : 1, isColumn ? 1 : numbers);
  XLOPER12* const to = builder.Row(0);
  const XLOPER12 cell = NumberCell(0);  // written as it is, since one put together for each would be waited for
  for (std::int32_t at = 0; at < numbers; ++at) {
    const double number = first + at * change;
    to[at] = cell;
    to[at].val.num = number;
    if (!std::isfinite(number)) [[unlikely]]
      to[at] = NumberCell(number);
  }
  result = builder.FinishCollapsed();
}

}  // namespace quillmere::shape
