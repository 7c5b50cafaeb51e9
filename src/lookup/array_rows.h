// How the rows of an array table stand to a key; a row is the tuple of its cells in the key columns.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lookup/lookup_keys.h"
#include "table/cell_tuples.h"

namespace quillmere::lookup {

/// Where a row stands to a key: by the first part whose cells differ.
inline int CompareRow(const RowTuples& rows, std::int32_t row, Key key) {
  int comparison = 0;
  for (std::size_t part = 0; part < key.size() && comparison == 0; ++part)
    comparison = CompareLookupCell(rows.At(row, part), key[part].value);
  return comparison;
}

/// Whether a row matches a key in the parts from `part` on.
inline bool MatchesRow(const RowTuples& rows, std::int32_t row, Key key, std::size_t part = 0) {
  for (; part < key.size(); ++part)
    if (!key[part].Matches(rows.At(row, part))) return false;
  return true;
}

}  // namespace quillmere::lookup
