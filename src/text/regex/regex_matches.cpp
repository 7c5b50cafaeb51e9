#include "text/regex/regex_matches.h"

#include <algorithm>

#include "text/regex/compiled_regex.h"

namespace quillmere::text {

RegexMatches::RegexMatches(const Regex& regex, XStringView text, AfterEmptyMatch afterEmpty, RegexBudget& budget)
    : regex_(regex), text_(text), afterEmpty_(afterEmpty), steps_(text.size(), regex.compiled_->stepLength, budget) {}

std::optional<RegexMatch> RegexMatches::Next() {
  if (next_ > text_.size()) return std::nullopt;
  const auto placeAt = [this](std::size_t unit) { return RegexPlace(text_.data() + unit, steps_); };
  auto flags = boost::regex_constants::match_default;
  if (wasEmpty_ && afterEmpty_ == AfterEmptyMatch::kSamePlace) flags |= boost::regex_constants::match_not_initial_null;
  Regex::Compiled& compiled = *regex_.compiled_;
  const bool isFound = MatchByLibrary([&] {
    return boost::regex_search(placeAt(next_), placeAt(text_.size()), compiled.match, compiled.expression, flags,
                               placeAt(0));
  });
  if (!isFound) {
    next_ = text_.size() + 1;
    return std::nullopt;
  }

  // An expression can set its beginning back (\K in a lookbehind): what was walked through stays behind.
  const auto unitOf = [this](const RegexPlace& place) { return static_cast<std::size_t>(place.Unit() - text_.data()); };
  const std::size_t end = std::max(unitOf(compiled.match[0].second), next_);
  const std::size_t begin = std::clamp(unitOf(compiled.match[0].first), next_, end);
  const bool isEmpty = begin == end;
  const bool advances = isEmpty && (afterEmpty_ == AfterEmptyMatch::kStep || (wasEmpty_ && end == next_));
  wasEmpty_ = isEmpty;
  next_ = end + advances;
  return RegexMatch{begin, end - begin};
}

void RegexMatches::AppendFormatted(XStringView format, BoundedText& to) {
  const std::size_t before = to.View().size();
  MatchByLibrary([&] {
    return regex_.compiled_->match.format(BoundedTextEnd(to), format, boost::regex_constants::format_perl,
                                          regex_.compiled_->expression);
  });
  // What writes something is bounded by what a cell holds; groups that took part in no match write nothing.
  for (std::size_t written = to.View().size() - before; written < format.size(); ++written) steps_.Count();
}

}  // namespace quillmere::text
