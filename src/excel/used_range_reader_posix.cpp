// Natively there is no object model: the host may export a function that tells instead.
#include <dlfcn.h>

#include "excel/used_range_reader.h"

namespace quillmere {
namespace {

/// Writes the first and last used row (0-based) of a sheet, 0 being the current one; false when it has none.
using HostUsedRows = bool (*)(IDSHEET sheet, std::int32_t* first, std::int32_t* last);

class HostUsedRangeReader final : public IXlUsedRangeReader {
 public:
  std::optional<std::int32_t> LastUsedRow(const CXlOper& reference) noexcept override {
    const auto usedRows = reinterpret_cast<HostUsedRows>(dlsym(RTLD_DEFAULT, "QcalcUsedRows"));
    std::int32_t first = 0;
    std::int32_t last = 0;
    if (!usedRows || !usedRows(reference.Sheet(), &first, &last)) return std::nullopt;
    return last;
  }
};

}  // namespace

IXlUsedRangeReader* UsedRangeReader() noexcept {
  static constinit HostUsedRangeReader reader;
  return &reader;
}

}  // namespace quillmere
