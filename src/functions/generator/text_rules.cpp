#include "functions/generator/text_rules.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "frame/text/error_text.h"

namespace quillmere::generator {
namespace {

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Letters, then digits, within the sheet: "DIFF1" is no reference, "DIF1" is.
bool IsA1Reference(std::string_view upper) {
  std::size_t letters = 0;
  int column = 0;
  while (letters < upper.size() && IsLetter(upper[letters]) && letters < 4) {
    column = column * 26 + (upper[letters++] - 'A' + 1);
  }
  if (letters == 0 || letters == upper.size() || column > kXlMaxColumns) return false;
  int row = 0;
  const char* end = upper.data() + upper.size();
  const auto [stop, error] = std::from_chars(upper.data() + letters, end, row);
  return error == std::errc() && stop == end && row >= 1 && row <= kXlMaxRows;
}

/// R, C, R1, C1, R1C1 and their like.
bool IsR1C1Reference(std::string_view upper) {
  std::size_t at = 0;
  bool any = false;
  for (char axis : {'R', 'C'}) {
    if (at < upper.size() && upper[at] == axis) {
      any = true;
      ++at;
      while (at < upper.size() && IsDigit(upper[at])) ++at;
    }
  }
  return any && at == upper.size();
}

template <class Number>
bool IsWhole(std::string_view text) {
  Number value = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return !text.empty() && error == std::errc() && stop == text.data() + text.size();
}

bool IsNumber(std::string_view text) {
  double value = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return !text.empty() && error == std::errc() && stop == text.data() + text.size() && std::isfinite(value);
}

bool IsBoolean(std::string_view text) { return UpperCase(text) == "TRUE" || UpperCase(text) == "FALSE"; }

/// In double quotes, quotes within doubled.
bool IsQuotedText(std::string_view text) {
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') return false;
  const std::string_view inner = text.substr(1, text.size() - 2);
  for (std::size_t at = 0; at < inner.size(); ++at) {
    if (inner[at] != '"') continue;
    if (++at == inner.size() || inner[at] != '"') return false;
  }
  return true;
}

/// What stands between the quotes, quotes within single.
std::string Unquoted(std::string_view text) {
  std::string inner;
  for (std::size_t at = 1; at + 1 < text.size(); ++at) {
    inner += text[at];
    if (text[at] == '"') ++at;
  }
  return inner;
}

/// Whether a default may be a value of that kind; what it reads as is `value`.
bool IsOfKind(ArgumentKind kind, std::string_view text, const ReadDefault& value) {
  switch (kind) {
    case ArgumentKind::kInt:
      return IsWhole<std::int32_t>(text);
    case ArgumentKind::kShort:
      return IsWhole<std::int16_t>(text);
    case ArgumentKind::kDouble:
      return value.type == "xltypeNum";
    case ArgumentKind::kBoolean:
      return value.type == "xltypeBool";
    case ArgumentKind::kString:
      return value.type == "xltypeStr";
    case ArgumentKind::kValue:
    case ArgumentKind::kReference:
      break;
  }
  return true;
}

bool IsCharacter(char32_t code, bool lineBreaks) {
  if (code == U'\n') return lineBreaks;
  if (code < 0x20 || (code >= 0x7F && code < 0xA0)) return false;
  if (code == 0xFEFF || (code >= 0xFDD0 && code <= 0xFDEF)) return false;
  return (code & 0xFFFE) != 0xFFFE;
}

}  // namespace

std::string UpperCase(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return upper;
}

std::u32string CodePoints(std::string_view utf8) {
  std::u32string points;
  for (std::size_t at = 0; at < utf8.size();) {
    const unsigned char lead = static_cast<unsigned char>(utf8[at++]);
    const int more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    char32_t code = more == 0 ? lead : lead & (0x3Fu >> more);
    for (int i = 0; i < more && at < utf8.size(); ++i)
      code = code << 6 | (static_cast<unsigned char>(utf8[at++]) & 0x3Fu);
    points.push_back(code);
  }
  return points;
}

std::size_t Utf16Length(std::string_view utf8) {
  std::size_t length = 0;
  for (char32_t code : CodePoints(utf8)) length += code > 0xFFFF ? 2 : 1;
  return length;
}

std::optional<std::string> TextFault(std::string_view utf8, bool lineBreaks) {
  for (char32_t code : CodePoints(utf8)) {
    if (IsCharacter(code, lineBreaks)) continue;
    char text[16];
    std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned>(code));
    return std::string("holds ") + text + ", which cannot stand in a text";
  }
  return std::nullopt;
}

bool IsFunctionName(std::string_view name) {
  if (name.empty() || name.size() > kXlMaxRegisteredText || !(IsLetter(name[0]) || name[0] == '_')) return false;
  if (!std::all_of(name.begin(), name.end(),
                   [](char c) { return IsLetter(c) || IsDigit(c) || c == '_' || c == '.'; })) {
    return false;
  }
  const std::string upper = UpperCase(name);
  return !IsA1Reference(upper) && !IsR1C1Reference(upper) && !IsBoolean(upper);
}

bool IsCppWord(std::string_view word) {
  static constexpr std::array kWords = std::to_array<std::string_view>(
      {"alignas",     "alignof",  "and",       "and_eq",    "asm",       "auto",         "bitand",
       "bitor",       "bool",     "break",     "case",      "catch",     "char",         "char8_t",
       "char16_t",    "char32_t", "class",     "co_await",  "co_return", "co_yield",     "compl",
       "concept",     "const",    "consteval", "constexpr", "constinit", "const_cast",   "continue",
       "decltype",    "default",  "delete",    "do",        "double",    "dynamic_cast", "else",
       "enum",        "explicit", "export",    "extern",    "false",     "float",        "for",
       "friend",      "goto",     "if",        "inline",    "int",       "long",         "mutable",
       "namespace",   "new",      "noexcept",  "not",       "not_eq",    "nullptr",      "operator",
       "or",          "or_eq",    "private",   "protected", "public",    "register",     "reinterpret_cast",
       "requires",    "return",   "short",     "signed",    "sizeof",    "static",       "static_assert",
       "static_cast", "struct",   "switch",    "template",  "this",      "thread_local", "throw",
       "true",        "try",      "typedef",   "typeid",    "typename",  "union",        "unsigned",
       "using",       "virtual",  "void",      "volatile",  "wchar_t",   "while",        "xor",
       "xor_eq"});
  return std::find(kWords.begin(), kWords.end(), word) != kWords.end();
}

bool IsIdentifier(std::string_view word) {
  return !word.empty() && !IsDigit(word[0]) &&
         std::all_of(word.begin(), word.end(), [](char c) { return IsLetter(c) || IsDigit(c) || c == '_'; });
}

std::optional<ReadDefault> DefaultOf(ArgumentKind kind, std::string_view text) {
  ReadDefault value;
  if (IsNumber(text)) {
    value = {"xltypeNum", std::string(text), {}};
  } else if (IsBoolean(text)) {
    value = {"xltypeBool", UpperCase(text) == "TRUE" ? "1" : "0", {}};
  } else if (IsQuotedText(text)) {
    value = {"xltypeStr", {}, Unquoted(text)};
  } else if (const auto code = ErrorCodeOf(XString(text.begin(), text.end()))) {
    value = {"xltypeErr", std::to_string(*code), {}};
  } else {
    return std::nullopt;
  }
  return IsOfKind(kind, text, value) ? std::optional(value) : std::nullopt;
}

}  // namespace quillmere::generator
