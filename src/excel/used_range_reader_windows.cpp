#include "excel/used_range_reader.h"

namespace quillmere {

// Without a bridge to Excel's object model references keep their full height.
IXlUsedRangeReader* UsedRangeReader() noexcept { return nullptr; }

}  // namespace quillmere
