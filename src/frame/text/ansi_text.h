// Texts of Excel's 8-bit interface, in the ANSI code page.
#pragma once

#include <string>
#include <string_view>

#include "xlcall/xchar.h"

namespace quillmere {

/// The 16-bit form of a text in the ANSI code page (natively Windows-1252). A byte that stands for no character becomes
/// the character the system puts in its place.
XString WidenAnsi(std::string_view text);

/// The ANSI form of a 16-bit text. A character that the code page lacks becomes one "?", whatever looks like it.
std::string NarrowToAnsi(XStringView text);

/// The same of the longest beginning that takes at most `limit` bytes and ends with a whole character.
std::string NarrowToAnsi(XStringView text, std::size_t limit);

}  // namespace quillmere
