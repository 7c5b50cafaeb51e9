// The 8-bit texts of XLOPER: code page 1252 on every build, so that both give the same answers.
#pragma once

#include <string>
#include <string_view>

#include "xlcall/xchar.h"

namespace qcalc {

/// The text in code page 1252; what it cannot write becomes "?".
std::string ToAnsi(XStringView text);

/// The text of bytes in code page 1252.
XString FromAnsi(std::string_view bytes);

}  // namespace qcalc
