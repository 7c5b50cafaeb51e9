// Any expression and any text: what compiles is found where the library's plain search finds it, and every search ends.
#include <cstdint>
#include <cstdlib>

#include "frame/errors/exceptions.h"
#include "frame/locale/regex_traits.h"
#include "text/regex/regex_pattern.h"

using namespace quillmere;

namespace {

/// The library's answer, or none where it gives up.
int PlainSearch(XStringView expression, XStringView text, LetterCase letterCase) {
  try {
    const auto anyCase = letterCase == LetterCase::kIgnored ? boost::regex_constants::icase : 0;
    const LibraryRegex plain(XString(expression), boost::regex_constants::perl | anyCase);
    // Asked for no more than whether there is a match, the library passes over some.
    boost::match_results<XStringView::const_iterator> place;
    return boost::regex_search(text.begin(), text.end(), place, plain);
  } catch (const boost::regex_error&) {
    return -1;
  }
}

}  // namespace

/// Of the bytes the first says how long the expression is and whether case counts. Bytes of 128 and more are units
/// beyond Latin-1.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  XString units;
  for (std::size_t at = 1; at < size; ++at)
    units += static_cast<XCHAR>(data[at] < 128 ? data[at] : 0xC0 + (data[at] - 128) * 70);
  const XStringView expression = XStringView(units).substr(0, data[0] / 2);
  const XStringView searched = XStringView(units).substr(expression.size(), 40);
  const LetterCase letterCase = data[0] % 2 ? LetterCase::kCounts : LetterCase::kIgnored;
  text::RegexBudget budget;
  try {
    const text::RegexPattern pattern(expression, budget, letterCase);
    const bool found = pattern.Matches(searched);
    if (budget.IsSpent()) return 0;
    if (const int plain = PlainSearch(expression, searched, letterCase); plain >= 0 && plain != found) std::abort();
  } catch (const CXlRuntimeException&) {
  }
  return 0;
}
