#include "text/regex/regex_matches.h"

#include <algorithm>

#include "text/regex/compiled_regex.h"

namespace quillmere::text {
namespace {

/// A place in a format that counts how often it is asked for the end: the library looks for the end of a name that has
/// none from every dollar. It is as good as a pointer, since the library copies the whole rest of what is none for
/// every number.
class FormatPlace {
 public:
  using iterator_category = std::random_access_iterator_tag;
  using value_type = XCHAR;
  using difference_type = std::ptrdiff_t;
  using pointer = const XCHAR*;
  using reference = const XCHAR&;

  FormatPlace() = default;
  FormatPlace(const XCHAR* unit, std::size_t* looks = nullptr) noexcept : unit_(unit), looks_(looks) {}

  operator const XCHAR*&() noexcept { return unit_; }
  FormatPlace& operator=(const XCHAR* unit) noexcept {
    unit_ = unit;
    return *this;
  }
  FormatPlace& operator++() noexcept {
    ++unit_;
    return *this;
  }
  friend FormatPlace operator+(const FormatPlace& place, std::ptrdiff_t units) noexcept { return place.unit_ + units; }
  friend bool operator==(const FormatPlace& a, const FormatPlace& b) noexcept {
    if (a.looks_) ++*a.looks_;
    return a.unit_ == b.unit_;
  }

 private:
  const XCHAR* unit_ = nullptr;
  std::size_t* looks_ = nullptr;
};

/// A format as something that the library walks through.
struct Format {
  using const_iterator = FormatPlace;

  FormatPlace begin() const noexcept { return {text.data(), &looks}; }
  FormatPlace end() const noexcept { return text.data() + text.size(); }

  const XString& text;
  std::size_t& looks;
};

}  // namespace

RegexMatches::RegexMatches(const Regex& regex, XStringView text, AfterEmptyMatch afterEmpty, RegexBudget& budget)
    : regex_(regex), text_(text), afterEmpty_(afterEmpty), steps_(text.size(), regex.compiled_->stepLength, budget) {}

std::optional<RegexMatch> RegexMatches::Next() {
  if (next_ > text_.size()) return std::nullopt;
  from_ = next_;
  needsUnits_ = wasEmpty_ && afterEmpty_ == AfterEmptyMatch::kSamePlace;
  std::optional<RegexMatch> match;
  LinearMatcher* const linear = regex_.compiled_->Linear();
  hasGroups_ = linear == nullptr;
  if (linear) {
    if (const auto found = linear->Find(text_, from_, needsUnits_, steps_))
      match = {found->begin, found->end - found->begin};
  } else {
    match = NextByLibrary();
  }
  if (!match) {
    next_ = text_.size() + 1;
    return std::nullopt;
  }
  const bool isEmpty = match->units == 0;
  const std::size_t end = match->place + match->units;
  const bool advances = isEmpty && (afterEmpty_ == AfterEmptyMatch::kStep || (wasEmpty_ && end == from_));
  wasEmpty_ = isEmpty;
  next_ = end + advances;
  return match;
}

/// What the library finds next, with the groups of it.
std::optional<RegexMatch> RegexMatches::NextByLibrary() {
  const auto placeAt = [this](std::size_t unit) { return RegexPlace(text_.data() + unit, steps_); };
  auto flags = boost::regex_constants::match_default;
  if (needsUnits_) flags |= boost::regex_constants::match_not_initial_null;
  Regex::Compiled& compiled = *regex_.compiled_;
  const bool isFound = MatchByLibrary([&] {
    return boost::regex_search(placeAt(from_), placeAt(text_.size()), compiled.match, compiled.expression, flags,
                               placeAt(0));
  });
  if (!isFound) return std::nullopt;

  // An expression can set its beginning back (\K in a lookbehind), or behind its end (in a lookahead): what was walked
  // through stays behind, and nothing ends before it begins, which the formatter would walk through all the same.
  const auto unitOf = [this](const RegexPlace& place) { return static_cast<std::size_t>(place.Unit() - text_.data()); };
  const std::size_t end = std::max(unitOf(compiled.match[0].second), from_);
  const std::size_t begin = std::clamp(unitOf(compiled.match[0].first), from_, end);
  compiled.match.set_first(placeAt(begin), 0, true);
  return RegexMatch{begin, end - begin};
}

void RegexMatches::AppendFormatted(const XString& format, BoundedText& to) {
  if (!hasGroups_) {
    // Only the library knows the groups of a match.
    if (format.find_first_of(XTEXT("$\\")) == XString::npos) return to.Append(format);
    NextByLibrary();
    hasGroups_ = true;
  }
  const std::size_t before = to.View().size();
  std::size_t looks = 0;
  MatchByLibrary([&] {
    return regex_.compiled_->match.format(BoundedTextEnd(to), Format{format, looks},
                                          boost::regex_constants::format_perl, regex_.compiled_->expression);
  });
  // What writes something is bounded by what a cell holds; groups that took part in no match write nothing.
  for (std::size_t written = to.View().size() - before; written < looks; ++written) steps_.Count();
}

}  // namespace quillmere::text
