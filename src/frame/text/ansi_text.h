// Texts of Excel's 8-bit interface, in the ANSI code page.
#pragma once

#include <string>
#include <string_view>

#include "xlcall/xchar.h"

namespace quillmere {

/// The 16-bit form of a text in the ANSI code page (natively Windows-1252). A byte that stands for no character becomes
/// the character the system puts in its place.
XString WidenAnsi(std::string_view text);

/// The ANSI form of a 16-bit text. A character that the code page lacks becomes "?".
std::string NarrowToAnsi(XStringView text);

}  // namespace quillmere
