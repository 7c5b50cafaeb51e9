// What the add-in does when something happens in Excel.
#pragma once

#include "xlcall/xchar.h"

namespace quillmere {

/// Acts on an event of Excel's Application object, by its name in the event table: used rows that are kept are
/// forgotten, memory long unused goes back to the system, and the application object is told. On Excel's main thread;
/// whatever fails stays here.
void OnApplicationEvent(XStringView event) noexcept;

}  // namespace quillmere
