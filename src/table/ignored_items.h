// Which items of lists count for nothing.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

#include "frame/convert/argument.h"
#include "frame/values/cell.h"

namespace quillmere {

struct IgnoredItems {
  bool errors = false;  ///< those with an error in any of their cells
  bool blanks = false;  ///< those whose cells are all empty, or texts of length zero
  bool zeros = false;   ///< those whose cells are all the number 0
};

/// Whether an item of those cells is. Inline: it is asked for each row.
inline bool IsIgnored(std::span<const XLOPER12> item, const IgnoredItems& ignored) {
  constexpr std::uint32_t kBlankTypes = xltypeStr | xltypeNil | xltypeMissing;
  constexpr std::uint32_t kZeroTypes = xltypeNum | xltypeInt;
  const auto isBlank = [](const XLOPER12& cell) { return !IsTextCell(cell) || TextOf(cell).empty(); };
  const auto isZero = [](const XLOPER12& cell) { return CellNumber(cell) == 0; };
  // The types of all cells, taken together, tell for most.
  std::uint32_t types = 0;
  for (const XLOPER12& cell : item) types |= CellType(cell);
  if ((types & xltypeErr) != 0) return ignored.errors;
  if ((types & ~kBlankTypes) == 0) return ignored.blanks && std::ranges::all_of(item, isBlank);
  return ignored.zeros && (types & ~kZeroTypes) == 0 && std::ranges::all_of(item, isZero);
}

/// The flags of an Ignore argument; a number that is no sum of them ignores nothing.
IgnoredItems ReadIgnored(const CXlScalarArgument<ElementKind::kInteger>& ignore);

}  // namespace quillmere
