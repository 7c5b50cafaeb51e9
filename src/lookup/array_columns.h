// The key columns of an array table, and the test of one of its rows.
#pragma once

#include <cstdint>
#include <span>

#include "frame/values/xl_oper.h"
#include "lookup/lookup_keys.h"

namespace quillmere {

/// The columns of an array that hold the key parts. A view.
struct ArrayColumns {
  CXlCells cells;
  std::span<const std::int32_t> columns;  ///< 0-based, one per key part

  const XLOPER12& At(std::int32_t row, std::size_t part) const noexcept { return cells.At(row, columns[part]); }
};

/// Where a row stands to a key: by the first part whose cells differ.
inline int CompareRow(const ArrayColumns& table, std::int32_t row, Key key) {
  int comparison = 0;
  for (std::size_t part = 0; part < key.size() && comparison == 0; ++part)
    comparison = CompareLookupCell(table.At(row, part), key[part]);
  return comparison;
}

/// Whether a row equals a key in the parts from `part` on.
inline bool EqualsRow(const ArrayColumns& table, std::int32_t row, Key key, std::size_t part = 0) {
  for (; part < key.size(); ++part)
    if (!EqualsLookupValue(table.At(row, part), key[part])) return false;
  return true;
}

}  // namespace quillmere
