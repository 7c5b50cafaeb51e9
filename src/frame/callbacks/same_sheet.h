// Whether references lie on one sheet.
#pragma once

#include "frame/values/xl_oper.h"

namespace quillmere {

/// Whether two references are to cells of the same sheet. Excel is asked only where one of them names its sheet and the
/// other is to the current one; a callback that fails is CXlErrorException with #VALUE!.
bool AreOnSameSheet(const CXlOper& reference, const CXlOper& other);

}  // namespace quillmere
