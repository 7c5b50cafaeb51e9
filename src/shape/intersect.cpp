// The cells that two ranges have in common.
//
// Serves INTERSECT.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "frame/callbacks/same_sheet.h"
#include "frame/convert/argument.h"
#include "implementations/shape.h"

namespace quillmere::shape {
namespace {

std::optional<XLREF12> Common(const XLREF12& a, const XLREF12& b) {
  const XLREF12 common{std::max(a.rwFirst, b.rwFirst), std::min(a.rwLast, b.rwLast), std::max(a.colFirst, b.colFirst),
                       std::min(a.colLast, b.colLast)};
  if (common.rwFirst > common.rwLast || common.colFirst > common.colLast) return std::nullopt;
  return common;
}

/// What the areas of two references have in common, in the order of the first's; once there are more than a reference
/// can have, no more are looked for.
std::vector<XLREF12> CommonAreas(std::span<const XLREF12> areas, std::span<const XLREF12> others) {
  std::vector<XLREF12> common;
  for (const XLREF12& area : areas)
    for (const XLREF12& other : others) {
      if (const std::optional<XLREF12> both = Common(area, other)) common.push_back(*both);
      if (common.size() > UINT16_MAX) return common;
    }
  return common;
}

}  // namespace

void Functions::Intersect(CXlOper& result, const CXlArgument& range1, const CXlArgument& range2) {
  result.SetError(xlerrNA);
  const CXlOper& first = range1.Value();
  const CXlOper& second = range2.Value();
  if (!first.IsReference() || !second.IsReference() || !AreOnSameSheet(first, second)) return;
  const std::vector<XLREF12> common = CommonAreas(first.Areas(), second.Areas());
  if (common.empty()) return;
  const bool isOnCurrentSheet = first.Type() == xltypeSRef && second.Type() == xltypeSRef;
  result = isOnCurrentSheet ? CXlOper::Reference(common.front())
                            : CXlOper::Reference(std::max(first.Sheet(), second.Sheet()), common);
}

}  // namespace quillmere::shape
