// Upper-casing of texts, unit by unit, the same on every system.
#pragma once

#include "xlcall/xchar.h"

namespace quillmere {

/// The capital of one UTF-16 unit by the simple case mapping: always one unit, the unit itself where it has none. No
/// locale has a say, surrogates stay as they are.
XCHAR UpperCase(XCHAR unit) noexcept;

/// Makes `upper` the upper-cased copy of `text`, in the room it has where that suffices.
void AssignUpperCase(XString& upper, XStringView text);

}  // namespace quillmere
