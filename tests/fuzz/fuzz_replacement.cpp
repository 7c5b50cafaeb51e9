// Any expression, any text and any format: matches come in order, replacing them gives what the library's own
// replacement gives, and no form of dollar and backslash is read beyond its end, writes more than a cell holds or takes
// long.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "frame/errors/exceptions.h"
#include "frame/locale/regex_traits.h"
#include "text/regex/regex_matches.h"

using namespace quillmere;

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kFewUnits = 200;  ///< of all three, of which the library's own search makes an end
constexpr std::clock_t kMostTime = 10 * CLOCKS_PER_SEC;

constexpr std::string_view kExpressions[] = {"(a)", "(b)?", "a*?", "(?:", "(?=", "(?<=",   "\\K", "\\b",
                                             "^",   "$",    "|",   "()",  ")",   "(?<n>a", "\\1", "[^a]"};
constexpr std::string_view kFormats[] = {"$&",
                                         "$`",
                                         "$'",
                                         "$$",
                                         "$1",
                                         "$2",
                                         "$+",
                                         "${",
                                         "$+{",
                                         "${^",
                                         "}",
                                         "${1}",
                                         "\\",
                                         "\\x{",
                                         "\\x",
                                         "\\c",
                                         "\\l",
                                         "\\U",
                                         "\\E",
                                         "\\0",
                                         "\\1",
                                         "n",
                                         "^N",
                                         "MATCH",
                                         "PRE",
                                         "POSTMATCH",
                                         "LAST_PAREN_MATCH",
                                         "LAST_SUBMATCH_RESULT",
                                         "2147483646",
                                         "99999999999999999999"};

/// Bytes of 128 and more are pieces, or units beyond Latin-1. In a block of its own and no longer, so that the
/// sanitizer sees a read outside.
std::vector<XCHAR> UnitsOf(Bytes bytes, std::span<const std::string_view> pieces) {
  std::vector<XCHAR> units;
  for (const std::uint8_t byte : bytes)
    if (byte >= 128 && byte - 128U < pieces.size())
      units.insert(units.end(), pieces[byte - 128U].begin(), pieces[byte - 128U].end());
    else
      units.push_back(static_cast<XCHAR>(byte < 128 ? byte : 0xC0 + (byte - 128) * 70));
  return units;
}

/// One byte makes the units many.
void Repeat(std::vector<XCHAR>& units, std::uint8_t byte) {
  const std::size_t size = units.size();
  if (byte != 0xFF || size == 0) return;
  units.resize(std::min<std::size_t>(size * 1024, kXlMaxText));
  for (std::size_t at = size; at < units.size(); ++at) units[at] = units[at - size];
}

struct Replacement {
  XStringView expression;
  XStringView text;
  XStringView format;
  LetterCase letterCase;
};

std::optional<XString> Replaced(const Replacement& given, text::AfterEmptyMatch afterEmpty) {
  try {
    text::RegexBudget budget;
    const text::Regex regex(given.expression, given.letterCase);
    text::RegexMatches matches(regex, given.text, afterEmpty, budget);
    const XString format(given.format);
    text::BoundedText result;
    std::size_t done = 0;
    while (const auto match = matches.Next()) {
      if (match->place < done || match->units > given.text.size() - match->place) std::abort();
      result.Append(given.text.substr(done, match->place - done));
      matches.AppendFormatted(format, result);
      done = match->place + match->units;
    }
    result.Append(given.text.substr(done));
    return XString(result.View());
  } catch (const CXlRuntimeException&) {
    return std::nullopt;
  }
}

/// The library's answer, or none where it gives up, and where an expression turns places around (\K in a lookahead), on
/// which it would read outside the text.
std::optional<XString> ReplacedByLibrary(const Replacement& given) {
  try {
    const auto anyCase = given.letterCase == LetterCase::kIgnored ? boost::regex_constants::icase : 0;
    const LibraryRegex regex(XString(given.expression), boost::regex_constants::perl | anyCase);
    const XString text(given.text);
    const auto isTurned = [](const auto& part) { return part.second < part.first; };
    boost::regex_iterator<XString::const_iterator, XCHAR, RegexTraits> match(text.begin(), text.end(), regex), last;
    for (; match != last; ++match)
      if (isTurned(match->prefix()) || std::ranges::any_of(*match, isTurned)) return std::nullopt;
    return boost::regex_replace(text, regex, XString(given.format));
  } catch (const boost::regex_error&) {
    return std::nullopt;
  }
}

}  // namespace

// The first four bytes say how long expression and format are, whether case counts, and how often text and format are
// repeated.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kHead = 4;
  if (size < kHead) return 0;
  Bytes rest = Bytes(data, size).subspan(kHead);
  const auto take = [&](std::size_t count) {
    const Bytes taken = rest.first(std::min(count, rest.size()));
    rest = rest.subspan(taken.size());
    return taken;
  };
  const std::vector<XCHAR> expression = UnitsOf(take(data[0] / 2), kExpressions);
  std::vector<XCHAR> format = UnitsOf(take(data[1]), kFormats);
  std::vector<XCHAR> text = UnitsOf(take(kFewUnits / 4), {});
  Repeat(text, data[2]);
  Repeat(format, data[3]);
  const auto view = [](const std::vector<XCHAR>& units) { return XStringView(units.data(), units.size()); };
  const Replacement given{view(expression), view(text), view(format),
                          data[0] % 2 ? LetterCase::kCounts : LetterCase::kIgnored};

  const std::clock_t start = std::clock();
  const std::optional<XString> result = Replaced(given, text::AfterEmptyMatch::kSamePlace);
  Replaced(given, text::AfterEmptyMatch::kStep);
  if (std::clock() - start > kMostTime) std::abort();
  if (!result || expression.size() + text.size() + format.size() > kFewUnits) return 0;
  if (const std::optional<XString> plain = ReplacedByLibrary(given); plain && *plain != *result) std::abort();
  return 0;
}
