// What to tell the user about an exception that is being handled.
#pragma once

#include "xlcall/xchar.h"

namespace quillmere {

/// The message of the exception being handled, of whatever type; called from a catch block. May run out of memory.
XString MessageOfCurrentException();

}  // namespace quillmere
