// Natively there is no object model: the host may export a function that tells instead.
#include <dlfcn.h>

#include "excel/used_range/ask_used_rows.h"
#include "frame/callbacks/callbacks.h"

namespace quillmere {
namespace {

/// Writes the first and last used row (0-based) of a sheet; false when it has none.
using HostUsedRows = bool (*)(IDSHEET sheet, std::int32_t* first, std::int32_t* last);

}  // namespace

std::optional<UsedRows> AskUsedRows(XStringView sheet) {
  const auto usedRows = reinterpret_cast<HostUsedRows>(dlsym(RTLD_DEFAULT, "QcalcUsedRows"));
  CXlOper id;
  if (!usedRows || TryCallExcel(id, xlSheetId, CXlOper::Text(sheet)) != xlretSuccess || !id.IsReference())
    return std::nullopt;
  UsedRows rows;
  if (!usedRows(id.Sheet(), &rows.first, &rows.last)) return std::nullopt;
  return rows;
}

}  // namespace quillmere
