// Cutting tall references to the rows that their sheet uses.
#pragma once

#include <cstdint>
#include <optional>

#include "frame/values/xl_oper.h"

namespace quillmere {

/// Who can tell which rows of a sheet are used. Excel's C API cannot: it takes the object model.
class IXlUsedRangeReader {
 public:
  virtual ~IXlUsedRangeReader() = default;
  /// The last used row (0-based) of the sheet that a reference lies on; nothing when it cannot be had. Called on any
  /// thread while Excel calculates, so it never waits for the main thread. CXlFunctionEnd when Excel wants the function
  /// to end.
  virtual std::optional<std::int32_t> LastUsedRow(const CXlOper& reference) = 0;
};

/// Sets who is asked; null: nobody can tell. It must outlive all calls.
void SetUsedRangeReader(IXlUsedRangeReader* reader) noexcept;

/// References with more rows are cut.
constexpr std::int32_t kMostRowsUncut = 100'000;

/// A reference of one area that is taller than that, from its first row to the last used row of its sheet, but with its
/// first row at least. Every other value, and one whose used rows cannot be had, is viewed as it is, and must outlive
/// the view.
CXlOper CutToUsedRows(const CXlOper& value);
CXlOper CutToUsedRows(CXlOper&& value) = delete;

}  // namespace quillmere
