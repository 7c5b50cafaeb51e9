#include "frame/text/string_formatter.h"

#include <cstdint>
#include <vector>

namespace quillmere::psl {
namespace {

constexpr std::uint32_t kMaxIndex = 65'535;

/// A placeholder found in the pattern, where its argument goes in the literal text around it.
struct Placeholder {
  std::size_t position;
  std::uint32_t index;
};

template <class Char>
struct ParsedPattern {
  std::basic_string<Char> literals;
  std::vector<Placeholder> placeholders;
};

/// The index between the braces of a placeholder.
template <class Char>
std::uint32_t ParseIndex(std::basic_string_view<Char> digits) {
  if (digits.empty()) throw StringFormatterError(FormatFault::kBadIndex);
  std::uint32_t index = 0;
  for (const Char digit : digits) {
    if (digit < '0' || digit > '9') throw StringFormatterError(FormatFault::kBadIndex);
    if (index <= kMaxIndex) index = index * 10 + static_cast<std::uint32_t>(digit - '0');
  }
  if (index > kMaxIndex) throw StringFormatterError(FormatFault::kIndexOutOfRange);
  return index;
}

template <class Char>
ParsedPattern<Char> ParsePattern(std::basic_string_view<Char> pattern) {
  constexpr Char kBraces[] = {'{', '}', 0};
  ParsedPattern<Char> parsed;
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    const Char unit = pattern[at];
    const bool isBrace = unit == '{' || unit == '}';
    if (!isBrace || (at + 1 < pattern.size() && pattern[at + 1] == unit)) {
      parsed.literals.push_back(unit);
      if (isBrace) ++at;
      continue;
    }
    const std::size_t close = pattern.find_first_of(kBraces, at + 1);
    if (unit == '}' || close == pattern.npos || pattern[close] == '{')
      throw StringFormatterError(FormatFault::kUnbalancedBrace);
    parsed.placeholders.push_back({parsed.literals.size(), ParseIndex(pattern.substr(at + 1, close - at - 1))});
    at = close;
  }
  return parsed;
}

template <class Char>
std::basic_string<Char> FormatText(std::basic_string_view<Char> pattern,
                                   std::initializer_list<BasicFormatArgument<Char>> arguments) {
  const ParsedPattern<Char> parsed = ParsePattern(pattern);
  std::basic_string<Char> text;
  std::size_t written = 0;
  for (const Placeholder& placeholder : parsed.placeholders) {
    if (placeholder.index >= arguments.size()) throw StringFormatterError(FormatFault::kIndexOutOfRange);
    text.append(parsed.literals, written, placeholder.position - written);
    text.append(arguments.begin()[placeholder.index].Text());
    written = placeholder.position;
  }
  return text.append(parsed.literals, written);
}

}  // namespace

XString Format(XStringView pattern, std::initializer_list<FormatArgument> arguments) {
  return FormatText(pattern, arguments);
}

std::string Format(std::string_view pattern, std::initializer_list<FormatArgument8> arguments) {
  return FormatText(pattern, arguments);
}

}  // namespace quillmere::psl
