// The types by which cells are told apart and put in order.
#pragma once

#include <cstdint>

#include "frame/values/cell.h"

namespace quillmere {

/// The types of cells. As bits they make up masks; as numbers they are the order of the types.
namespace cell_type {
constexpr std::uint32_t kNumber = xltypeNum;
constexpr std::uint32_t kText = xltypeStr;
constexpr std::uint32_t kBoolean = xltypeBool;
constexpr std::uint32_t kError = xltypeErr;
constexpr std::uint32_t kEmpty = xltypeNil;
}  // namespace cell_type

/// The type of a cell. A value left out counts as empty; what is no single cell is "Bad XLOPER type".
inline std::uint32_t CellTypeOf(const XLOPER12& cell) {
  switch (const std::uint32_t type = CellType(cell)) {
    case xltypeInt:
      return cell_type::kNumber;
    case xltypeMissing:
      return cell_type::kEmpty;
    default:
      return type;
  }
}

}  // namespace quillmere
