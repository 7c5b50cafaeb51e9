// Where in texts regular expressions match, and what they match there.
//
// Serves Rgx.FIND, Rgx.LEN, Rgx.MID.
#include <algorithm>
#include <optional>

#include "frame/values/scratch_list.h"
#include "implementations/text.h"
#include "text/regex/regex_matches.h"
#include "text/regex_pairs.h"

namespace quillmere::text {
namespace {

std::optional<RegexMatch> FindNth(const RegexPattern& pattern, XStringView text, std::int32_t nth) {
  return RegexMatches(pattern.Expression(), text, AfterEmptyMatch::kStep, pattern.Budget()).Nth(nth);
}

/// One row for each pair, its matches side by side, and empty text behind the last.
CXlOper ListMatches(RegexPairs& pairs) {
  CheckArraySize(pairs.Count(), 1);
  ScratchList<RegexMatch> found;
  ScratchList<std::size_t> ends;  // how many there are with those of each pair
  std::size_t widest = 1;
  const auto collect = [&](const ResultPlace&, XStringView text, const RegexPattern& pattern) {
    const std::size_t before = found.size();
    RegexMatches matches(pattern.Expression(), text, AfterEmptyMatch::kStep, pattern.Budget());
    while (const std::optional<RegexMatch> match = matches.Next()) {
      found.Append(*match);
      if (found.size() - before > kXlMaxColumns) throw CXlArrayTooLargeException();
    }
    widest = std::max(widest, found.size() - before);
    ends.Append(found.size());
  };
  pairs.ForEach(collect, [&](const ResultPlace&, std::int32_t) { ends.Append(found.size()); });

  CXlArrayBuilder lists(static_cast<std::int64_t>(ends.size()), static_cast<std::int64_t>(widest));
  const XLOPER12 nothing = lists.Store(CXlOper::Text({}).Raw());
  std::int64_t row = 0;
  std::size_t next = 0;
  const auto fillRest = [&](std::int64_t column) {
    lists.Repeat(lists.Row(row) + column, widest - static_cast<std::size_t>(column), 1, nothing);
    ++row;
  };
  const auto write = [&](const ResultPlace&, XStringView text, const RegexPattern&) {
    std::int64_t column = 0;
    for (const std::size_t end = ends[static_cast<std::size_t>(row)]; next < end; ++next, ++column)
      lists.PutText(row, column, text.substr(found[next].place, found[next].units));
    fillRest(column);
  };
  const auto tell = [&](const ResultPlace&, std::int32_t error) {
    lists.PutError(row, 0, error);
    fillRest(1);
  };
  pairs.ForEach(write, tell);
  return lists.FinishCollapsed();
}

}  // namespace

void Functions::RegexFind(CXlOper& result, RegexAspect aspect, const CXlArgument& regExp, const CXlArgument& withinText,
                          const CXlScalarArgument<ElementKind::kInteger>& nth,
                          const CXlScalarArgument<ElementKind::kBoolean>& caseSensitive) {
  result.SetError(xlerrValue);
  const CXlCells expressions = regExp.Value().Cells();
  const CXlCells texts = withinText.Value().Cells();
  const std::optional<WantedMatch> wanted = ReadWantedMatch(nth, caseSensitive, 1);
  if (!wanted) return;

  RegexPairs pairs(texts, expressions, wanted->letterCase);
  result =
      pairs.Build([&](CXlArrayBuilder& array, const ResultPlace& place, XStringView text, const RegexPattern& pattern) {
        const std::optional<RegexMatch> match = FindNth(pattern, text, wanted->nth);
        if (!match)
          array.PutError(place.row, place.column, xlerrNA);
        else
          array.PutNumber(place.row, place.column,
                          static_cast<double>(aspect == RegexAspect::kPlace ? match->place + 1 : match->units));
      });
}

void Functions::RegexMid(CXlOper& result, const CXlArgument& text, const CXlArgument& regExp,
                         const CXlScalarArgument<ElementKind::kInteger>& nth,
                         const CXlScalarArgument<ElementKind::kBoolean>& caseSensitive) {
  result.SetError(xlerrValue);
  const CXlCells texts = text.Value().Cells();
  const CXlCells expressions = regExp.Value().Cells();
  const std::optional<WantedMatch> wanted = ReadWantedMatch(nth, caseSensitive, 0);
  if (!wanted) return;

  RegexPairs pairs(texts, expressions, wanted->letterCase);
  if (wanted->nth == 0) {
    RunsWithout<CXlRegexLimitException>([&] { result = ListMatches(pairs); });
    return;
  }
  result = pairs.Build(
      [&](CXlArrayBuilder& array, const ResultPlace& place, XStringView units, const RegexPattern& pattern) {
        const std::optional<RegexMatch> match = FindNth(pattern, units, wanted->nth);
        if (match)
          array.PutText(place.row, place.column, units.substr(match->place, match->units));
        else
          array.PutError(place.row, place.column, xlerrNA);
      });
}

}  // namespace quillmere::text
