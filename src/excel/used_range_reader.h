// Asking for a sheet's used rows.
#pragma once

#include "frame/callbacks/used_range.h"

namespace quillmere {

/// The reader of this process, for its whole life; null where nobody can be asked.
IXlUsedRangeReader* UsedRangeReader() noexcept;

}  // namespace quillmere
