// What regular expressions ask about characters: their case, their classes, their order. The library's types for the
// text of this system, named here and nowhere else. To be included by whoever compiles or runs expressions, since the
// library's headers are large.
#pragma once

#ifdef _WIN32
#include "frame/locale/regex_traits_windows.h"
#else
#include "frame/locale/regex_traits_posix.h"
#endif

namespace quillmere {

using LibraryRegex = boost::basic_regex<XCHAR, RegexTraits>;

}  // namespace quillmere
