// Texts as people see them: how wide they stand, and nothing in them that a terminal would obey.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "xlcall/xchar.h"

namespace qcalc {

/// Whether the character of that number cannot be written as it is: a control character, a line or paragraph separator,
/// half a pair of units.
bool IsUnseen(char32_t character);

/// How many columns of a terminal the text takes: East Asian wide characters and emoji two, combining marks none.
std::size_t ColumnsOf(XStringView text);

/// The text on one line: a control character is shown by its picture (U+2400 and on), what else is unseen by U+FFFD.
XString ShownText(XStringView text);

/// The same for a message in UTF-8, whose line breaks stay.
std::string ShownMessage(std::string_view message);

}  // namespace qcalc
