// The searches of MATCH and VLOOKUP in one row or column.
#pragma once

#include <cstdint>
#include <optional>

#include "host/workbook/cell_line.h"

namespace qcalc {

enum class LookupOrder {
  kUnsorted,    ///< the first equal one; wildcards count in texts
  kAscending,   ///< the last that is not above, as a search by halves finds it
  kDescending,  ///< the smallest that is not below
};

/// Lookup values that are texts may not be longer.
constexpr std::size_t kMaxLookupText = 255;

/// The place, from 0, where `key` is found; nothing when it is not. The key is a number, a text or a boolean; cells of
/// other kinds, empty ones and errors are passed over, whatever they hold. Several threads may search at once.
std::optional<std::int32_t> FindInLine(const CellView& key, const CellLine& line, LookupOrder order);

}  // namespace qcalc
