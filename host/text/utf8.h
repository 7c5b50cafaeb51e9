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

/// What a file of UTF-8 may begin with.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Whether the byte goes on with a character that an earlier one began.
constexpr bool IsInsideCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// Whether the unit, or the number of a character, is the first or the second half of a pair of units.
constexpr bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

/// Writes the character of that number, at most 0x10FFFF, as one unit or two; the end of what was written.
XCHAR* WriteCharacter(char32_t number, XCHAR* units);

/// The number of the character at `at`, which moves behind it; a lone surrogate is a character of its own.
char32_t TakeCharacter(XStringView text, std::size_t& at);

/// The text in UTF-8; a lone surrogate takes three bytes.
std::string ToUtf8(XStringView text);

/// The text in UTF-16, or nothing when `bytes` are not UTF-8; `badByte`, if given, then receives the offset.
std::optional<XString> FromUtf8(std::string_view bytes, std::size_t* badByte = nullptr);

/// Appends the UTF-16 form of `bytes` to `units`, which has room for bytes.size() units; the end of what was written,
/// or null when `bytes` are not UTF-8.
XCHAR* FromUtf8(std::string_view bytes, XCHAR* units);

}  // namespace qcalc
