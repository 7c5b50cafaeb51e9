#include "functions/generator/text_rules.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace quillmere::generator {
namespace {

constexpr std::size_t kMaxNameLength = 255;
constexpr int kMaxRows = 1'048'576;
constexpr int kMaxColumns = 16'384;

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::string Upper(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return upper;
}

/// Letters, then digits, within the sheet: "DIFF1" is no reference, "DIF1" is.
bool IsA1Reference(std::string_view upper) {
  std::size_t letters = 0;
  int column = 0;
  while (letters < upper.size() && IsLetter(upper[letters]) && letters < 4) {
    column = column * 26 + (upper[letters++] - 'A' + 1);
  }
  if (letters == 0 || letters == upper.size() || column > kMaxColumns) return false;
  int row = 0;
  const char* end = upper.data() + upper.size();
  const auto [stop, error] = std::from_chars(upper.data() + letters, end, row);
  return error == std::errc() && stop == end && row >= 1 && row <= kMaxRows;
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

bool IsBoolean(std::string_view text) { return Upper(text) == "TRUE" || Upper(text) == "FALSE"; }

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

bool IsErrorValue(std::string_view text) {
  static constexpr std::array<std::string_view, 7> kErrors = {"#NULL!", "#DIV/0!", "#VALUE!", "#REF!",
                                                              "#NAME?", "#NUM!",   "#N/A"};
  return std::find(kErrors.begin(), kErrors.end(), text) != kErrors.end();
}

bool IsCharacter(char32_t code, bool lineBreaks) {
  if (code == U'\n') return lineBreaks;
  if (code < 0x20 || (code >= 0x7F && code < 0xA0)) return false;
  if (code == 0xFEFF || (code >= 0xFDD0 && code <= 0xFDEF)) return false;
  return (code & 0xFFFE) != 0xFFFE;
}

}  // namespace

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
  if (name.empty() || name.size() > kMaxNameLength || !(IsLetter(name[0]) || name[0] == '_')) return false;
  if (!std::all_of(name.begin(), name.end(),
                   [](char c) { return IsLetter(c) || IsDigit(c) || c == '_' || c == '.'; })) {
    return false;
  }
  const std::string upper = Upper(name);
  return !IsA1Reference(upper) && !IsR1C1Reference(upper) && !IsBoolean(upper);
}

bool IsArgumentName(std::string_view name) { return IsIdentifier(name); }

bool IsIdentifier(std::string_view word) {
  return !word.empty() && !IsDigit(word[0]) &&
         std::all_of(word.begin(), word.end(), [](char c) { return IsLetter(c) || IsDigit(c) || c == '_'; });
}

bool ReadsAs(ArgumentKind kind, std::string_view text) {
  switch (kind) {
    case ArgumentKind::kInt:
      return IsWhole<std::int32_t>(text);
    case ArgumentKind::kShort:
      return IsWhole<std::int16_t>(text);
    case ArgumentKind::kDouble:
      return IsNumber(text);
    case ArgumentKind::kBoolean:
      return IsBoolean(text);
    case ArgumentKind::kString:
      return IsQuotedText(text);
    case ArgumentKind::kValue:
    case ArgumentKind::kReference:
      break;
  }
  return IsNumber(text) || IsBoolean(text) || IsQuotedText(text) || IsErrorValue(text);
}

}  // namespace quillmere::generator
