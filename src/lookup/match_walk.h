// Walking the matches of one key, whatever finds them.
#pragma once

#include <cstdint>

#include "lookup/found_rows.h"
#include "lookup/lookup_arguments.h"

namespace quillmere {

/// Adds the wanted matches of one key to `found`, kNoRow when there is none. A `Search` knows the key and has
///   std::int32_t Next(std::int32_t from)   the first matching row at or after `from`, or kNoRow; `from` may be the
///                                          number of rows
///   std::int32_t Last()                    the last matching row, or kNoRow
template <class Search>
void WalkMatches(const Search& search, std::int32_t position, FoundRows& found) {
  if (position == wanted_match::kLast) {
    AddFoundRow(found, search.Last());
    return;
  }
  std::int32_t row = search.Next(0);
  if (position == wanted_match::kAll) {
    do {
      AddFoundRow(found, row);
      row = row == kNoRow ? kNoRow : search.Next(row + 1);
    } while (row != kNoRow);
    return;
  }
  for (std::int32_t nth = 1; nth < position && row != kNoRow; ++nth) row = search.Next(row + 1);
  AddFoundRow(found, row);
}

}  // namespace quillmere
