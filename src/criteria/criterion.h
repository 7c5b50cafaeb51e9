// One criterion: what a CritN says, and what it takes to hold cells against it.
#pragma once

#include <cstdint>
#include <memory>

#include "table/cell_type.h"
#include "text/regex/regex_budget.h"
#include "text/text_matcher.h"

namespace quillmere::criteria {

/// What a criterion asks of a cell. Those from kIsError on are type tests.
enum class CriterionKind : std::int32_t {
  kLessEqual = 1,     ///< "<=" value
  kGreaterEqual = 2,  ///< ">=" value
  kLess = 3,          ///< "<" value
  kGreater = 4,       ///< ">" value
  kEqual = 5,         ///< "=" value, or a zero-length text
  kIsTrue = 6,        ///< TRUE, or "TRUE"
  kIsFalse = 7,       ///< FALSE, or "FALSE"
  kNotEqual = 8,      ///< "<>" value
  kPlain = 9,         ///< a value without an operator
  kLike = 10,         ///< "~" wildcard pattern
  kRegex = 12,        ///< "~~" regular expression
  kIsError = 17,      ///< "#ERR"
  kIsText = 18,       ///< "#TXT"
  kIsNumber = 19,     ///< "#N"
  kIsBool = 20,       ///< "#BOOL"
  kIsEmpty = 21,      ///< "#EMPTY"
  kIsType = 22,       ///< "#TYPE"
  kIsBlank = 23,      ///< "#BLANK"
  kIsZeroLength = 24  ///< "#ZLS"
};

constexpr bool IsTypeTest(CriterionKind kind) noexcept { return kind >= CriterionKind::kIsError; }
constexpr bool IsPattern(CriterionKind kind) noexcept {
  return kind == CriterionKind::kLike || kind == CriterionKind::kRegex;
}
/// Whether cells that are equal to the value meet it, and no others.
constexpr bool AsksForEqual(CriterionKind kind) noexcept {
  return kind == CriterionKind::kEqual || kind == CriterionKind::kPlain || kind == CriterionKind::kIsTrue ||
         kind == CriterionKind::kIsFalse;
}

/// A criterion with one value. ParseCriterion fills the first block, PrepareCriterionValue the second. It views the
/// texts that it was made from.
struct Criterion {
  CriterionKind kind = CriterionKind::kPlain;
  bool negated = false;  ///< a leading "¬": what would be selected is not, and the other way round
  bool joined = false;   ///< a leading "&": the value is compared with cells of its own type alone
  std::uint32_t valueType = cell_type::kEmpty;
  XStringView text;       ///< of a text value
  double number = 0;      ///< of a number; of a text that reads as one, once prepared
  std::int32_t code = 0;  ///< of a boolean, 0 or 1; of an error, its code

  std::uint32_t ownMask = cell_type::kEmpty;         ///< the value's own type
  std::uint32_t plainMask = cell_type::kEmpty;       ///< and what else it may be compared with
  std::unique_ptr<const text::TextMatcher> pattern;  ///< of kLike and kRegex; none: see isUnusable, or no text
  const text::RegexBudget* budget = nullptr;         ///< what the expressions of the call share, of kRegex
  bool isUnusable = false;                           ///< its expression does not compile: no cell meets it
  std::uint32_t referenceType = cell_type::kEmpty;   ///< for kIsType

  /// The types of cells that the value is compared with; all others are ordered by their types.
  std::uint32_t Mask() const noexcept { return joined ? ownMask : plainMask; }
};

}  // namespace quillmere::criteria
