#include "addin/wiring.h"

#include "excel/used_range/used_range_reader.h"
#include "frame/callbacks/used_range.h"

namespace quillmere {

void WireTheFrame() noexcept { SetUsedRangeReader(&UsedRangeReader()); }

}  // namespace quillmere
