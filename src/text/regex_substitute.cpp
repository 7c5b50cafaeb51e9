// Replacing what regular expressions match in texts.
//
// Serves Rgx.SUBSTITUTE.
#include <algorithm>
#include <optional>

#include "frame/values/cell_copy.h"
#include "implementations/text.h"
#include "text/bounded_text.h"
#include "text/regex/regex_matches.h"
#include "text/regex_pairs.h"

namespace quillmere::text {
namespace {

/// Writes a text with all matches replaced, or the n-th alone. Whether there was one.
bool Replace(XStringView text, const RegexPattern& pattern, const XString& format, std::int32_t nth, BoundedText& to) {
  RegexMatches matches(pattern.Expression(), text, nth == 0 ? AfterEmptyMatch::kSamePlace : AfterEmptyMatch::kStep,
                       pattern.Budget());
  std::optional<RegexMatch> match = matches.Nth(std::max(nth, 1));
  if (!match) return false;
  to.Clear();
  std::size_t copied = 0;
  do {
    to.Append(text.substr(copied, match->place - copied));
    matches.AppendFormatted(format, to);
    copied = match->place + match->units;
    match = nth == 0 ? matches.Next() : std::nullopt;
  } while (match);
  to.Append(text.substr(copied));
  return true;
}

}  // namespace

void Functions::RegexSubstitute(CXlOper& result, const CXlArgument& text, const CXlArgument& regExp,
                                const CXlArgument& newText, const CXlScalarArgument<ElementKind::kInteger>& nth,
                                const CXlScalarArgument<ElementKind::kBoolean>& caseSensitive) {
  result.SetError(xlerrValue);
  const CXlCells texts = text.Value().Cells();
  const CXlCells expressions = regExp.Value().Cells();
  const PairedCells formats(newText.Value().Cells());
  const std::optional<WantedMatch> wanted = ReadWantedMatch(nth, caseSensitive, 0);
  if (!wanted) return;

  RegexPairs pairs(texts, expressions, wanted->letterCase, RegexExtent::kAnyPart, {formats});
  XString ownFormat;
  BoundedText replaced;
  result = pairs.Build(
      [&](CXlArrayBuilder& array, const ResultPlace& place, XStringView units, const RegexPattern& pattern) {
        const XLOPER12* const format = formats.At(place);
        if (!format || IsErrorCell(*format)) {
          array.PutError(place.row, place.column, format ? format->val.err : xlerrNA);
          return;
        }
        NumberTextBuffer number;
        AssignText(ownFormat, TextForm(*format, number));
        const bool isChanged = Replace(units, pattern, ownFormat, wanted->nth, replaced);
        array.PutText(place.row, place.column, isChanged ? replaced.View() : units);
      });
}

}  // namespace quillmere::text
