// The unsorted search of one key: walking the rows that match it, whatever tells which do.
#pragma once

#include <cstdint>

#include "lookup/found_rows.h"
#include "lookup/lookup_arguments.h"

namespace quillmere::lookup {

/// A search that looks at one row after the other; `Test` tells of a row, counted from 0, whether it matches.
template <class Test>
class RowScan {
 public:
  RowScan(std::int32_t rows, const Test& test) noexcept : rows_(rows), test_(test) {}

  std::int32_t FindUnsorted(std::int32_t start) const { return Find(start, rows_, 1); }
  std::int32_t FindLastUnsorted() const { return Find(rows_ - 1, -1, -1); }
  bool Matches(std::int32_t row) const { return test_(row); }

 private:
  std::int32_t Find(std::int32_t row, std::int32_t end, std::int32_t step) const {
    for (; row != end; row += step)
      if (test_(row)) return row;
    return kNoRow;
  }

  std::int32_t rows_;
  Test test_;
};

/// Adds the wanted matches of one key to `found`, kNoRow when there is none. A `Search` knows the key and has
///   std::int32_t FindUnsorted(std::int32_t start)   the first matching row at or after `start`, or kNoRow; `start` may
///                                                   be the number of rows
///   std::int32_t FindLastUnsorted()                 the last matching row, or kNoRow
template <class Search>
void WalkMatches(const Search& search, std::int32_t position, FoundRows& found) {
  if (position == wanted_match::kLast) {
    AddFoundRow(found, search.FindLastUnsorted());
    return;
  }
  std::int32_t row = search.FindUnsorted(0);
  if (position == wanted_match::kAll) {
    do {
      AddFoundRow(found, row);
      row = row == kNoRow ? kNoRow : search.FindUnsorted(row + 1);
    } while (row != kNoRow);
    return;
  }
  for (std::int32_t nth = 1; nth < position && row != kNoRow; ++nth) row = search.FindUnsorted(row + 1);
  AddFoundRow(found, row);
}

}  // namespace quillmere::lookup
