// The names of cells as attributes have them.
#pragma once

#include <charconv>
#include <cstdint>
#include <string_view>

#include "host/text/digits.h"
#include "xlcall/xlcall.h"

namespace qcalc {

/// Reads `B7`, in letters and digits alone, to a row and column from 0; false for what is no cell. Files have them by
/// the million.
inline bool ReadCellName(std::string_view name, std::int32_t& row, std::int32_t& column) {
  std::size_t at = 0;
  for (column = 0; at < name.size() && at < 4 && name[at] >= 'A' && name[at] <= 'Z'; ++at)
    column = column * 26 + (name[at] - 'A' + 1);
  if (at == 0 || at == name.size() || !IsDigit(name[at])) return false;
  const auto [end, fault] = std::from_chars(name.data() + at, name.data() + name.size(), row);
  --row;
  --column;
  return fault == std::errc() && end == name.data() + name.size() && row >= 0 && row < kXlMaxRows &&
         column < kXlMaxColumns;
}

}  // namespace qcalc
