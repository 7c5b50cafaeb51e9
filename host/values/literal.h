// Literals: the written form of values in scripts, formulas and output.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/text/syntax_error.h"
#include "host/values/value.h"

namespace qcalc {

/// Reads one literal that takes up the whole of `text` but for blanks around it: number, text, boolean, error, array or
/// `empty`. The error's line is 1; the caller knows the script's line.
Parsed<Value> ParseLiteral(std::string_view text);

/// The written form: numbers in the shortest form that reads back as the same double, texts in quotes with quotes
/// doubled, arrays always in braces, all on one line: a unit that is no character to be seen (IsUnseen) stands behind
/// the quotes by its number, `"two"U+000A"lines"`. A missing argument prints as `missing`. References must be
/// dereferenced before.
std::string PrintLiteral(const Value& value);
std::string PrintLiteral(const CellView& cell);

/// Shortest form that reads back as the same double: `1`, `-2.5`, `1e-07`; whole numbers below 1e15 in all their
/// digits.
std::string PrintNumber(double number);

/// "#N/A" and its like; a code without a published name prints as "#ERR" and the code ("#ERR46"), but 45 as "#SPILL!"
/// and 50 as "#CALC!".
std::string ErrorName(std::int32_t code);

/// The error's code at the start of `text`, in any case, and the length of its name; nothing when none stands there.
struct ErrorMatch {
  std::int32_t code;
  std::size_t length;
};
std::optional<ErrorMatch> MatchErrorName(std::string_view text);

}  // namespace qcalc
