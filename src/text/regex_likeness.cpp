// Whether texts match regular expressions.
//
// Serves Rgx.ISLIKE.
#include "implementations/text.h"
#include "text/regex_pairs.h"

namespace quillmere::text {

void Functions::RegexIsLike(CXlOper& result, const CXlArgument& text, const CXlArgument& regExp,
                            const CXlScalarArgument<ElementKind::kBoolean>& caseSensitive,
                            const CXlScalarArgument<ElementKind::kBoolean>& partialMatch) {
  result.SetError(xlerrValue);
  const CXlCells texts = text.Value().Cells();
  const CXlCells expressions = regExp.Value().Cells();
  const std::optional<LetterCase> letterCase = ReadLetterCase(caseSensitive);
  const std::optional<RegexExtent> extent =
      ReadOption([&] { return partialMatch.Read() ? RegexExtent::kAnyPart : RegexExtent::kWhole; });
  if (!letterCase || !extent) return;

  RegexPairs pairs(texts, expressions, *letterCase, *extent);
  result =
      pairs.Build([](CXlArrayBuilder& array, const ResultPlace& place, XStringView units, const RegexPattern& pattern) {
        array.PutBoolean(place.row, place.column, pattern.Matches(units));
      });
}

}  // namespace quillmere::text
