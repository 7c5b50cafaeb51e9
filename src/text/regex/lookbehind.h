// The form of regular expressions that the library cannot be trusted to compile.
#pragma once

#include "xlcall/xchar.h"

namespace quillmere::text {

/// Whether compiling an expression ends in time whatever its lookbehinds are: the library measures every way through
/// the alternatives of one, which are twice as many with each of them, and goes deeper into the stack with each, too.
/// No lookbehind may have more than 16. An expression that the library would refuse anyhow may count as either.
bool HasMeasurableLookbehinds(XStringView expression);

}  // namespace quillmere::text
