// Converting an argument to a vector, a matrix or a list.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "frame/convert/convert_params.h"
#include "frame/values/xl_oper.h"

namespace quillmere {

/// Converted values, row-major. A vector keeps its direction: one row, or one column. A list is one column.
template <ElementKind kind>
struct CElementArray {
  using Value = ElementOf<kind>;

  std::int64_t rows = 0;
  std::int64_t columns = 0;
  std::unique_ptr<Value[]> values;

  std::int64_t Count() const noexcept { return rows * columns; }
  std::span<Value> Values() const noexcept { return {values.get(), static_cast<std::size_t>(Count())}; }
  /// A zero-based place.
  Value& At(std::int64_t row, std::int64_t column) const noexcept { return values[row * columns + column]; }
};

/// Converts an argument in one pass over its cells, without a call but the one that fetches a reference's cells. An
/// argument left out gives no values where that is allowed. Messages: 46 and 47 (left out), 15 to 22, 27, 28 and 61 to
/// 63 (size), 23 to 26 (short rows and columns), 12 (an element), 13 (an empty list), 29 (a reference whose cells Excel
/// does not give).
template <ElementKind kind>
CElementArray<kind> ConvertArgument(const CXlOper& argument, const CVectorConvertParams<kind>& params);

}  // namespace quillmere
