// What Excel takes as names and texts, and what reads as a default.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "frame/registration/function_declaration.h"

namespace quillmere::generator {

/// The length of UTF-8 text in UTF-16 units, which is how Excel counts.
std::size_t Utf16Length(std::string_view utf8);

/// The letters a to z as capitals: Excel tells names apart without regard to case.
std::string UpperCase(std::string_view text);

/// UTF-8 to code points. The text is well formed: the TOML parser has seen to it.
std::u32string CodePoints(std::string_view utf8);

/// Why a text cannot stand in a cell or a dialog, naming the character; nothing when it can. Line breaks are taken only
/// where `lineBreaks` says so.
std::optional<std::string> TextFault(std::string_view utf8, bool lineBreaks);

/// Whether Excel takes it as a function's name: letters, digits, "_" and ".", not read as a reference or a boolean.
bool IsFunctionName(std::string_view name);

/// Whether C++ keeps the word for itself.
bool IsCppWord(std::string_view word);

/// A word of C++ that may name a member, a type, an enumerator; also what an argument's name must be, which stands in a
/// comma-separated list and names a parameter.
bool IsIdentifier(std::string_view word);

/// A default as C++ writes it.
struct ReadDefault {
  std::string type;    ///< "xltypeNum", ...
  std::string number;  ///< the number, 1 or 0 of a boolean, the code of an error; empty for a text
  std::string text;
};

/// Reads a default as a value of its kind; nothing when it does not read. Value and Reference take a number, a boolean,
/// a text in double quotes or an error value.
std::optional<ReadDefault> DefaultOf(ArgumentKind kind, std::string_view text);

}  // namespace quillmere::generator
