// Texts and expressions that meet cell by cell, the common frame of the functions that tell something of each text.
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <type_traits>

#include "frame/convert/argument.h"
#include "frame/convert/cell_text.h"
#include "frame/errors/attempt.h"
#include "frame/values/array_builder.h"
#include "table/paired_cells.h"
#include "text/prefetch_ahead.h"
#include "text/regex/pattern_cache.h"

namespace quillmere::text {

// The options of a call. Nothing comes back for one that does not convert: the result then stays as it was set.

/// `read` gives the option.
template <class Read>
std::optional<std::invoke_result_t<Read>> ReadOption(const Read& read) {
  std::optional<std::invoke_result_t<Read>> option;
  RunsWithout<CXlConversionException>([&] { option = read(); });
  return option;
}

inline std::optional<LetterCase> ReadLetterCase(const CXlScalarArgument<ElementKind::kBoolean>& caseSensitive) {
  return ReadOption([&] { return caseSensitive.Read() ? LetterCase::kCounts : LetterCase::kIgnored; });
}

/// Which match of each text is wanted.
struct WantedMatch {
  std::int32_t nth;
  LetterCase letterCase;
};

/// Nothing for an nth below `least`, too.
inline std::optional<WantedMatch> ReadWantedMatch(const CXlScalarArgument<ElementKind::kInteger>& nth,
                                                  const CXlScalarArgument<ElementKind::kBoolean>& caseSensitive,
                                                  std::int32_t least) {
  const std::optional<std::int32_t> wanted = ReadOption([&] { return nth.Read(); });
  const std::optional<LetterCase> letterCase = ReadLetterCase(caseSensitive);
  if (!wanted || !letterCase || *wanted < least) return std::nullopt;
  return WantedMatch{*wanted, *letterCase};
}

/// The texts and the expressions of a call.
class RegexPairs {
 public:
  /// What the arguments view must outlive it. `others` are further cells that the result is as large as.
  RegexPairs(const CXlCells& texts, const CXlCells& expressions, LetterCase letterCase,
             RegexExtent extent = RegexExtent::kAnyPart, std::initializer_list<PairedCells> others = {})
      : textCells_(texts),
        texts_(texts),
        expressions_(expressions),
        cache_(budget_, letterCase, extent),
        rows_(std::max(texts.rows, expressions.rows)),
        columns_(std::max(texts.columns, expressions.columns)) {
    for (const PairedCells& cells : others) {
      rows_ = std::max(rows_, cells.Rows());
      columns_ = std::max(columns_, cells.Columns());
    }
  }

  /// How many there are, those with no answer too.
  std::int64_t Count() const noexcept { return std::int64_t{rows_} * columns_; }

  /// Row by row, calls match(place, text, pattern) where a text, or another value's text form, meets an expression, and
  /// tell(place, code) where no answer can be had: with the error that stands there, with #VALUE! for an expression
  /// that does not compile, and with #N/A where only one of both stands. Texts last until the call is back.
  template <class Match, class Tell>
  void ForEach(const Match& match, const Tell& tell) {
    for (ResultPlace place{0, 0}; place.row < rows_; ++place.row)
      for (place.column = 0; place.column < columns_; ++place.column) Meet(place, match, tell);
  }

  /// The result in which put(array, place, text, pattern) writes the cells of the pairs, and errors stand as they are
  /// told: #VALUE! alone when the call is past its budget.
  template <class Put>
  CXlOper Build(const Put& put) {
    CXlArrayBuilder array(rows_, columns_);
    const bool isDone = RunsWithout<CXlRegexLimitException>([&] {
      ForEach([&](const ResultPlace& place, XStringView text,
                  const RegexPattern& pattern) { put(array, place, text, pattern); },
              [&](const ResultPlace& place, std::int32_t error) { array.PutError(place.row, place.column, error); });
    });
    return isDone ? array.FinishCollapsed() : CXlOper::Error(xlerrValue);
  }

 private:
  template <class Match, class Tell>
  void Meet(const ResultPlace& place, const Match& match, const Tell& tell) {
    const XLOPER12* const text = texts_.At(place);
    if (text) PrefetchAhead(textCells_, text - textCells_.first);
    const XLOPER12* const expression = expressions_.At(place);
    if (!text || !expression) return tell(place, xlerrNA);
    if (IsErrorCell(*text)) return tell(place, text->val.err);
    if (IsErrorCell(*expression)) return tell(place, expression->val.err);
    const RegexPattern* const pattern = cache_.Find(*expression);
    if (!pattern) return tell(place, xlerrValue);
    NumberTextBuffer number;
    match(place, IsTextCell(*text) ? TextOf(*text) : TextForm(*text, number), *pattern);
  }

  CXlCells textCells_;
  PairedCells texts_;
  PairedCells expressions_;
  RegexBudget budget_;
  PatternCache cache_;
  std::int32_t rows_;
  std::int32_t columns_;
};

}  // namespace quillmere::text
