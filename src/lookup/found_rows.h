// The rows that a search has found.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/errors/exceptions.h"
#include "xlcall/xlcall.h"

namespace quillmere::lookup {

/// In place of a row: none.
constexpr std::int32_t kNoRow = -1;

/// Rows found, key by key and in each key's order; 0-based rows of the data, kNoRow for a key without a match.
using FoundRows = std::vector<std::int32_t>;

/// Adds a row; more than a result can have are refused before they take memory.
inline void AddFoundRow(FoundRows& found, std::int32_t row) {
  if (found.size() >= kXlMaxRows) throw CXlArrayTooLargeException();
  found.push_back(row);
}

}  // namespace quillmere::lookup
