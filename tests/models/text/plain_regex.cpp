#include "tests/models/text/plain_regex.h"

#include <algorithm>

namespace qcalc::text {
namespace {

using models::Draws;

constexpr XStringView kLetters = XTEXT("aaabbA12- éÉ\n\xD83D");
constexpr XStringView kClasses = XTEXT(". \\d \\w \\s \\D \\l [ab] [^a] [a-b1] [[:alpha:]] [Aé] \\- \\x61");
constexpr XStringView kPlaces = XTEXT("^ $ ^ $ \\b \\B \\A \\z \\< (?=a) (?!b) (?<=a) (?<!1)");
constexpr XStringView kGroups = XTEXT("( ( ( (?: (?= (?! (?> (?-i:");
constexpr XStringView kFewTimes = XTEXT("? {1,2} {2} ??"), kManyTimes = XTEXT("? {1,2} * + * + *? +? ++ {2,}");
constexpr XStringView kBroken = XTEXT("( [ * \\ ) a{2,1} \\8 [b-a] (?<");

/// What can go on for ever stands in no group, which may be repeated itself.
XString DrawAlternatives(Draws& draws, int depth) {
  XString all;
  do {
    if (!all.empty()) all += XTEXT('|');
    for (std::int32_t pieces = draws.Chance(5) ? 0 : 1 + draws.Below(3); pieces > 0; --pieces) {
      const bool isGroup = depth < 2 && draws.Chance(20), isPlace = !isGroup && draws.Chance(20);
      if (isGroup)
        all += XString(DrawWord(draws, kGroups)) + DrawAlternatives(draws, depth + 1) + XTEXT(")");
      else if (draws.Chance(60) && !isPlace)
        all += draws.Pick(kLetters);
      else
        all += isPlace ? DrawWord(draws, kPlaces) : draws.Chance(95) ? DrawWord(draws, kClasses) : XTEXT("\\1");
      const bool isBounded = depth > 0 || (isGroup && draws.Chance(80));
      if (!isPlace && draws.Chance(30)) all += DrawWord(draws, isBounded ? kFewTimes : kManyTimes);
    }
  } while (draws.Chance(15));
  return all;
}

}  // namespace

XStringView DrawWord(Draws& draws, XStringView words) {
  for (auto skipped = draws.Below(static_cast<std::int32_t>(std::count(words.begin(), words.end(), ' ')) + 1);
       skipped > 0; --skipped)
    words.remove_prefix(words.find(' ') + 1);
  return words.substr(0, words.find(' '));
}

XString DrawText(Draws& draws) {
  XString text;
  for (std::int32_t units = draws.Below(10); units > 0; --units) text += draws.Pick(kLetters);
  return text;
}

XString DrawExpression(Draws& draws) {
  XString expression = DrawAlternatives(draws, 0);
  if (draws.Chance(3)) expression += DrawWord(draws, kBroken);
  return expression;
}

std::optional<PlainRegex> Compile(XStringView expression, bool caseSensitive) {
  const auto anyCase = caseSensitive ? 0 : boost::regex_constants::icase;
  try {
    return PlainRegex(XString(expression), boost::regex_constants::perl | anyCase);
  } catch (const boost::regex_error&) {
    return std::nullopt;
  }
}

std::vector<PlainMatch> AllMatches(const PlainRegex& regex, XStringView text) {
  std::vector<PlainMatch> all;
  PlainMatch match;
  auto from = text.begin();
  while (boost::regex_search(from, text.end(), match, regex, boost::regex_constants::match_default, text.begin())) {
    all.push_back(match);
    from = match[0].second;
    if (match.length() == 0 && from++ == text.end()) break;
  }
  return all;
}

}  // namespace qcalc::text
