// Asking Excel which rows of a sheet are used.
#pragma once

#include <cstdint>
#include <optional>

#include "xlcall/xchar.h"

namespace quillmere {

/// The first and the last used row of a sheet, 0-based.
struct UsedRows {
  std::int32_t first = 0;
  std::int32_t last = 0;
};

/// The used rows of a sheet, by its full name as xlSheetNm gives it; nothing when they cannot be had. On any thread,
/// while Excel calculates: it never waits for the main thread. CXlFunctionEnd when Excel wants the function to end.
std::optional<UsedRows> AskUsedRows(XStringView sheet);

}  // namespace quillmere
