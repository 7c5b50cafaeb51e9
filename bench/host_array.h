// Arrays as Excel hands them over, for the benchmarks.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "frame/values/cell.h"

namespace quillmere {

/// A counted text of a letter and seven digits.
inline std::vector<XCHAR> CountedText(XCHAR letter, std::int64_t number) {
  constexpr int kUnits = 8;
  std::vector<XCHAR> text(kUnits + 1, letter);
  text[0] = kUnits;
  for (int at = kUnits; at > 1; --at, number /= 10) text[at] = static_cast<XCHAR>(XTEXT('0') + number % 10);
  return text;
}

/// An array whose cells may be numbers, booleans, or texts of as many units as are said, eight at first.
struct HostArray {
  std::vector<XLOPER12> cells;
  std::size_t room;                ///< units of each text with its length
  std::unique_ptr<XCHAR[]> texts;  ///< touched where a text is set, so that texts lie in the order of their cells
  XLOPER12 value{};

  HostArray(int rows, int columns, std::size_t textUnits = 8)
      : cells(static_cast<std::size_t>(rows) * columns, EmptyCell()),
        room(textUnits + 1),
        texts(std::make_unique_for_overwrite<XCHAR[]>(cells.size() * room)) {
    value.val.array.lparray = cells.data();
    value.val.array.rows = rows;
    value.val.array.columns = columns;
    value.xltype = xltypeMulti;
  }

  XLOPER12& At(int row, int column) { return cells[static_cast<std::size_t>(row) * value.val.array.columns + column]; }

  void SetText(std::size_t at, const std::vector<XCHAR>& counted) {
    XLOPER12 cell{};
    cell.val.str = &texts[at * room];
    cell.xltype = xltypeStr;
    std::copy(counted.begin(), counted.end(), cell.val.str);
    cells[at] = cell;
  }
};

}  // namespace quillmere
