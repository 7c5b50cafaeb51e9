#include "frame/callbacks/used_range.h"

#include <algorithm>
#include <atomic>

#include "frame/values/reference.h"

namespace quillmere {
namespace {

/// Set while the add-in opens, read by all threads.
constinit std::atomic<IXlUsedRangeReader*> theReader = nullptr;

}  // namespace

void SetUsedRangeReader(IXlUsedRangeReader* reader) noexcept { theReader.store(reader, std::memory_order_release); }

CXlOper CutToUsedRows(const CXlOper& value) {
  CXlOper whole = CXlOper::Borrow(&value.Raw());
  IXlUsedRangeReader* const reader = theReader.load(std::memory_order_acquire);
  if (!reader || !value.IsReference() || value.Areas().size() != 1) return whole;
  XLREF12 area = value.Areas().front();
  if (area.rwLast - area.rwFirst < kMostRowsUncut) return whole;
  const std::optional<std::int32_t> lastUsed = reader->LastUsedRow(value);
  if (!lastUsed || *lastUsed >= area.rwLast) return whole;
  area.rwLast = std::max(*lastUsed, area.rwFirst);
  return ReferenceOnSheetOf(value, area);
}

}  // namespace quillmere
