#include "text/regex/required_units.h"

#include <cstddef>
#include <optional>

namespace quillmere::text {
namespace {

constexpr XCHAR kNoLiteral = 0;
constexpr XCHAR kBehindAscii = 0x80;

bool IsOneOf(XCHAR unit, XStringView units) { return units.find(unit) != XStringView::npos; }

/// The units of a set at the beginning of `text`, brackets included; 0 for one that holds more than plain members.
std::size_t PlainSet(XStringView text) {
  const std::size_t first = text.substr(1, 1) == XTEXT("^") ? 2 : 1;
  const std::size_t end = text.find_first_of(XTEXT("[]\\"), first);
  return end != XStringView::npos && end > first && text[end] == XTEXT(']') ? end + 1 : 0;
}

/// One unit or class of an expression, with how often it is repeated.
struct Element {
  XCHAR literal = kNoLiteral;
  std::size_t least = 1;
  bool isExact = true;  ///< whether it is repeated just so often
};

/// Takes {n}, {n,} or {n,m} with n of one digit from the rest; false for any other bounds.
bool TakeBounds(XStringView& rest, Element& element) {
  const std::size_t end = rest.find(XTEXT('}'));
  if (end == XStringView::npos || end < 2 || rest[1] < XTEXT('0') || rest[1] > XTEXT('9')) return false;
  const XStringView further = rest.substr(2, end - 2);
  if (!further.empty() &&
      (further.front() != XTEXT(',') || further.find_first_not_of(XTEXT("0123456789"), 1) != XStringView::npos))
    return false;
  element.least = static_cast<std::size_t>(rest[1] - XTEXT('0'));
  element.isExact = further.empty();
  rest.remove_prefix(end + 1);
  return true;
}

/// Takes the next element from the rest; nothing where there is something that is not read here.
std::optional<Element> TakeElement(XStringView& rest) {
  Element element;
  std::size_t units = 1;
  if (rest.front() == XTEXT('[')) {
    units = PlainSet(rest);
    if (units == 0) return std::nullopt;
  } else if (rest.front() == XTEXT('\\')) {
    units = 2;
    if (rest.size() < 2 || !IsOneOf(rest[1], XTEXT("dDwWsS.^$|()[]{}*+?\\-/"))) return std::nullopt;
    if (!IsOneOf(rest[1], XTEXT("dDwWsS"))) element.literal = rest[1];
  } else if (IsOneOf(rest.front(), XTEXT("^$|(){}]*+?"))) {
    return std::nullopt;
  } else if (rest.front() != XTEXT('.')) {
    element.literal = rest.front();
  }
  rest.remove_prefix(units);

  if (rest.empty() || !IsOneOf(rest.front(), XTEXT("*+?{"))) return element;
  if (rest.front() == XTEXT('{')) {
    if (!TakeBounds(rest, element)) return std::nullopt;
  } else {
    element.least = rest.front() == XTEXT('+') ? 1 : 0;
    element.isExact = false;
    rest.remove_prefix(1);
  }
  if (!rest.empty() && IsOneOf(rest.front(), XTEXT("+?"))) rest.remove_prefix(1);  // possessive, or as few as will do
  return element;
}

/// The longest run of literals that come one behind another.
class LongestRun {
 public:
  explicit LongestRun(bool caseSensitive) : caseSensitive_(caseSensitive) {}

  void Extend(const Element& element) {
    Append(element);
    if (element.isExact) return;
    run_.clear();  // so many are next to what follows, wherever the repeat began
    Append(element);
  }
  const XString& Units() const noexcept { return longest_; }

 private:
  void Append(const Element& element) {
    const bool isTold = element.literal != kNoLiteral && (caseSensitive_ || element.literal < kBehindAscii);
    if (isTold && element.least > 0)
      run_.append(element.least, element.literal);
    else
      run_.clear();
    if (run_.size() > longest_.size()) longest_ = run_;
  }

  bool caseSensitive_;
  XString run_;
  XString longest_;
};

}  // namespace

RequiredUnits::RequiredUnits(XStringView expression, LetterCase letterCase, RegexExtent extent) {
  if (Read(expression, letterCase, extent)) return;
  reject_ = QuickReject();
  run_ = RequiredRun();
  pairs_ = 0;
}

/// False where the expression holds what is not read here.
bool RequiredUnits::Read(XStringView rest, LetterCase letterCase, RegexExtent extent) {
  const bool caseSensitive = letterCase == LetterCase::kCounts;
  LongestRun run(caseSensitive);
  const bool isAnchored = rest.starts_with(XTEXT('^'));
  if (isAnchored) rest.remove_prefix(1);
  bool isPlaceKnown = isAnchored || extent == RegexExtent::kWhole;
  std::size_t least = 0;
  XString first;  // the units at the beginning of a text
  XString last;   // those that come one behind another up to here
  while (!rest.empty() && rest != XTEXT("$")) {
    const std::optional<Element> element = TakeElement(rest);
    if (!element) return false;
    if (!element->isExact) last.clear();
    run.Extend(*element);
    for (std::size_t each = 0; each < element->least; ++each) {
      if (isPlaceKnown) first += element->literal;
      if (!last.empty() && IsPlainUnit(last.back()) && IsPlainUnit(element->literal))
        pairs_ |= UnitPair(last.back(), element->literal);
      last += element->literal;
    }
    least += element->least;
    isPlaceKnown = isPlaceKnown && element->isExact;
  }
  const bool isEndKnown = !rest.empty() || extent == RegexExtent::kWhole;

  reject_ = QuickReject(least, XStringView::npos);
  reject_.TellPlainTextsAlone();
  const auto require = [&](std::ptrdiff_t place, XCHAR unit) {
    if (unit != kNoLiteral) reject_.Require(place, unit, caseSensitive);
  };
  for (std::size_t at = 0; at < first.size(); ++at) require(static_cast<std::ptrdiff_t>(at), first[at]);
  for (std::size_t back = 1; isEndKnown && back <= last.size(); ++back)
    require(-static_cast<std::ptrdiff_t>(back), last[last.size() - back]);
  // Too many texts have a single unit for a look at it to pay.
  if (run.Units().size() > 1) run_ = RequiredRun(run.Units(), !caseSensitive);
  return true;
}

}  // namespace quillmere::text
