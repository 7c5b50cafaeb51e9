// UTF-8 of scripts, files and output against the UTF-16 of cells.
//
// Cells may hold lone surrogates, which UTF-8 proper cannot write. They travel as the three bytes that their number
// would take, both ways, so that no text is lost.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "xlcall/xchar.h"

namespace qcalc {

/// The text in UTF-8; a lone surrogate takes three bytes.
std::string ToUtf8(XStringView text);

/// The text in UTF-16, or nothing when `bytes` are not UTF-8; `badByte`, if given, then receives the offset.
std::optional<XString> FromUtf8(std::string_view bytes, std::size_t* badByte = nullptr);

/// Appends the UTF-16 form of `bytes` to `units`, which has room for bytes.size() units; the end of what was written,
/// or null when `bytes` are not UTF-8.
XCHAR* FromUtf8(std::string_view bytes, XCHAR* units);

/// One unit without its case: Latin, Greek, Cyrillic and Armenian letters give their small form.
XCHAR FoldUnit(XCHAR unit);

/// The text without its case, as names of sheets and functions and texts of cells are compared.
XString FoldCase(XStringView text);

/// Whether the texts are equal but for case.
bool EqualsIgnoringCase(XStringView left, XStringView right);

}  // namespace qcalc
