// Expressions that are mostly regular, and texts that they nearly match: whatever a matcher without going back answers
// is what the library's plain search answers.
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <span>
#include <vector>

#include "frame/errors/exceptions.h"
#include "frame/locale/regex_traits.h"
#include "text/regex/linear/linear_matcher.h"
#include "text/regex/regex_matches.h"

using namespace quillmere;

namespace {

constexpr std::size_t kMostUnits = 24;

/// Takes bytes one by one; zeros behind the last.
class Bytes {
 public:
  explicit Bytes(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  unsigned Take() {
    if (bytes_.empty()) return 0;
    const std::uint8_t byte = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return byte;
  }
  bool IsEmpty() const { return bytes_.empty(); }

 private:
  std::span<const std::uint8_t> bytes_;
};

/// Letters of several cases and widths, digits, blanks, and all that ends a line.
constexpr XCHAR kUnits[] = {'a',  'b',  'a',  'b',  'A',   '\n',   '\r',   '1',    ' ',    'c',   '-',   '_',
                            0x85, '\f', 0xE4, 0xC4, 'k',   0x2028, 0x212A, 0x436,  0x416,  0x130, 0x131, 'i',
                            'I',  0xDF, '\t', 0xB5, 0x3BC, 0xA0,   0xD83D, 0xFFFF, 0x1E9E, 0x17F, 's',   '\v'};

/// Half of the bytes are one of the first few, so that texts match.
XCHAR UnitOf(unsigned byte) {
  constexpr unsigned kFew = 8;
  return kUnits[byte < 128 ? byte % kFew : byte % std::size(kUnits)];
}

/// Writes an expression that the bytes stand for.
class Grammar {
 public:
  explicit Grammar(Bytes& bytes) : bytes_(bytes) {}

  XString Choice(int depth) {
    XString text = Sequence(depth);
    for (int count = 0; count < 3 && bytes_.Take() % 4 == 1; ++count) text += XTEXT('|') + Sequence(depth);
    return text;
  }

 private:
  XString Sequence(int depth) {
    XString text;
    for (unsigned items = bytes_.Take() % 5; items > 0; --items) text += Item(depth) + Repeat();
    return text;
  }

  XString Item(int depth) {
    static constexpr const XCHAR* kItems[] = {
        XTEXT("."),    XTEXT("^"),    XTEXT("$"),     XTEXT("\\b"),    XTEXT("\\B"),          XTEXT("\\A"),
        XTEXT("\\z"),  XTEXT("\\d"),  XTEXT("\\w"),   XTEXT("\\s"),    XTEXT("\\W"),          XTEXT("\\S"),
        XTEXT("."),    XTEXT("\\D"),  XTEXT("\\."),   XTEXT("\\n"),    XTEXT("\\v"),          XTEXT("\\h"),
        XTEXT("[ab]"), XTEXT("[^a]"), XTEXT("[a-c]"), XTEXT("[^\\d]"), XTEXT("[[:alpha:]_]"), XTEXT("[\\s-]"),
        XTEXT("\\u"),  XTEXT("\\L"),  XTEXT("[k-s]"), XTEXT("[^\\W]"), XTEXT("[[.ae.]b]"),    XTEXT("[]a]"),
        XTEXT("\\R"),  XTEXT("\\Z"),  XTEXT("\\1"),   XTEXT("(?=a)"),  XTEXT("\\x41"),        XTEXT("{")};
    const unsigned kind = bytes_.Take() % 8;
    if (kind >= 6 && depth > 0) return (kind == 6 ? XTEXT("(") : XTEXT("(?:")) + Choice(depth - 1) + XTEXT(")");
    if (kind >= 3) return XString(1, UnitOf(bytes_.Take()));
    return kItems[bytes_.Take() % std::size(kItems)];
  }

  XString Repeat() {
    static constexpr const XCHAR* kRepeats[] = {XTEXT("*"),
                                                XTEXT("+"),
                                                XTEXT("?"),
                                                XTEXT("*?"),
                                                XTEXT("+?"),
                                                XTEXT("?"
                                                      "?"),
                                                XTEXT("{2}"),
                                                XTEXT("{1,2}"),
                                                XTEXT("{0,2}"),
                                                XTEXT("{2,}"),
                                                XTEXT("{1,3}?"),
                                                XTEXT("{0,}?"),
                                                XTEXT("{2,3}"),
                                                XTEXT("*+"),
                                                XTEXT("{0}"),
                                                XTEXT("{0,1}?")};
    const unsigned byte = bytes_.Take();
    return byte % 2 == 0 ? XString() : kRepeats[byte / 2 % std::size(kRepeats)];
  }

  Bytes& bytes_;
};

/// What the library says; kUnknown where it gives up.
enum class Verdict { kNo, kYes, kUnknown };

template <class Step>
Verdict ByLibrary(const Step& step) {
  try {
    return step() ? Verdict::kYes : Verdict::kNo;
  } catch (const boost::regex_error&) {
    return Verdict::kUnknown;
  }
}

void Hold(Verdict expected, bool answer) {
  if (expected != Verdict::kUnknown && (expected == Verdict::kYes) != answer) std::abort();
}

/// All matches, one after the other.
void CompareMatches(const text::Regex& regex, const LibraryRegex& plain, XStringView searched,
                    text::AfterEmptyMatch afterEmpty) {
  text::RegexBudget budget;
  text::RegexMatches matches(regex, searched, afterEmpty, budget);
  std::size_t from = 0;
  bool wasEmpty = false;
  for (;;) {
    const auto found = matches.Next();
    auto flags = boost::regex_constants::match_default;
    if (wasEmpty && afterEmpty == text::AfterEmptyMatch::kSamePlace)
      flags |= boost::regex_constants::match_not_initial_null;
    boost::match_results<XStringView::const_iterator> match;
    const Verdict expected = ByLibrary([&] {
      return from <= searched.size() && boost::regex_search(searched.begin() + static_cast<std::ptrdiff_t>(from),
                                                            searched.end(), match, plain, flags, searched.begin());
    });
    if (expected == Verdict::kUnknown) return;
    Hold(expected, found.has_value());
    if (!found) return;
    if (match[0].first - searched.begin() != static_cast<std::ptrdiff_t>(found->place) ||
        match.length() != static_cast<std::ptrdiff_t>(found->units))
      std::abort();
    const bool isEmpty = found->units == 0;
    const std::size_t end = found->place + found->units;
    const bool isStuck = wasEmpty && end == from;
    wasEmpty = isEmpty;
    from = end + (isEmpty && (afterEmpty == text::AfterEmptyMatch::kStep || isStuck));
  }
}

void Judge(const XString& expression, XStringView searched, LetterCase letterCase) {
  const auto anyCase = letterCase == LetterCase::kIgnored ? boost::regex_constants::icase : 0;
  const text::Regex regex(expression, letterCase);
  const LibraryRegex plain(expression, boost::regex_constants::perl | anyCase);
  if (!text::LinearMatcher::Make(expression, plain)) return;
  std::vector<XStringView> parts;
  for (std::size_t begin = 0; begin <= searched.size(); begin += 3) parts.push_back(searched.substr(begin));
  text::RegexBudget budget;
  bool found[kMostUnits];
  bool whole[kMostUnits];
  regex.AreMatched(text::RegexExtent::kAnyPart, parts.data(), parts.size(), found, budget);
  regex.AreMatched(text::RegexExtent::kWhole, parts.data(), parts.size(), whole, budget);
  for (std::size_t at = 0; at < parts.size(); ++at) {
    const XStringView part = parts[at];
    // Asked for no more than whether there is a match, the library passes over some.
    boost::match_results<XStringView::const_iterator> place;
    const Verdict search = ByLibrary([&] { return boost::regex_search(part.begin(), part.end(), place, plain); });
    const Verdict match = ByLibrary([&] { return boost::regex_match(part.begin(), part.end(), plain); });
    Hold(search, regex.IsFoundIn(part, budget));
    Hold(search, found[at]);
    Hold(match, regex.IsWholeOf(part, budget));
    Hold(match, whole[at]);
  }
  for (const auto afterEmpty : {text::AfterEmptyMatch::kStep, text::AfterEmptyMatch::kSamePlace})
    CompareMatches(regex, plain, searched, afterEmpty);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes bytes({data, size});
  const LetterCase letterCase = bytes.Take() % 2 ? LetterCase::kCounts : LetterCase::kIgnored;
  const XString expression = Grammar(bytes).Choice(3);
  XString searched;
  while (!bytes.IsEmpty() && searched.size() < kMostUnits) searched += UnitOf(bytes.Take());
  try {
    Judge(expression, searched, letterCase);
  } catch (const CXlRuntimeException&) {
  }
  return 0;
}
