#include "criteria/test_cell.h"

#include <algorithm>
#include <optional>

#include "criteria/compare_cell.h"
#include "frame/convert/cell_text.h"
#include "frame/errors/attempt.h"
#include "frame/text/white_space.h"

namespace quillmere::criteria {
namespace {

bool IsBlank(XStringView text) { return !text.empty() && std::all_of(text.begin(), text.end(), IsWhiteSpace); }

bool MeetsType(const Criterion& criterion, const XLOPER12& cell) {
  const std::uint32_t type = CellTypeOf(cell);
  switch (criterion.kind) {
    case CriterionKind::kIsError:
      return type == cell_type::kError;
    case CriterionKind::kIsText:
      return type == cell_type::kText;
    case CriterionKind::kIsNumber:
      return type == cell_type::kNumber;
    case CriterionKind::kIsBool:
      return type == cell_type::kBoolean;
    case CriterionKind::kIsEmpty:
      return type == cell_type::kEmpty;
    case CriterionKind::kIsType:
      return type == criterion.referenceType;
    case CriterionKind::kIsBlank:
      return type == cell_type::kText && IsBlank(TextOf(cell));
    default:  // kIsZeroLength
      return type == cell_type::kText && TextOf(cell).empty();
  }
}

bool MeetsValue(CriterionKind kind, int order) {
  switch (kind) {
    case CriterionKind::kLess:
      return order < 0;
    case CriterionKind::kLessEqual:
      return order <= 0;
    case CriterionKind::kGreater:
      return order > 0;
    case CriterionKind::kGreaterEqual:
      return order >= 0;
    case CriterionKind::kNotEqual:
      return order != 0;
    default:  // kEqual, kPlain, kIsTrue, kIsFalse
      return order == 0;
  }
}

/// Nothing when the pattern cannot tell.
std::optional<bool> MeetsPattern(const Criterion& criterion, const XLOPER12& cell) {
  if (criterion.isUnusable || (criterion.budget && criterion.budget->IsSpent())) return std::nullopt;
  const std::uint32_t type = CellTypeOf(cell);
  // A pattern without units is met by what has none.
  if (!criterion.pattern) return (type & criterion.Mask()) != 0 && (type == cell_type::kEmpty || TextOf(cell).empty());
  if (type != cell_type::kText && type != cell_type::kNumber) return false;
  NumberTextBuffer number;
  bool met = false;
  const bool isTold =
      RunsWithout<CXlRegexLimitException>([&] { met = criterion.pattern->Matches(TextForm(cell, number)); });
  return isTold ? std::optional(met) : std::nullopt;
}

}  // namespace

bool TestCell(const Criterion& criterion, const XLOPER12& cell) {
  if (IsPattern(criterion.kind)) {
    const std::optional<bool> met = MeetsPattern(criterion, cell);
    return met && *met != criterion.negated;
  }
  const bool met = IsTypeTest(criterion.kind) ? MeetsType(criterion, cell)
                                              : MeetsValue(criterion.kind, CompareCell(criterion, cell, 1));
  return met != criterion.negated;
}

}  // namespace quillmere::criteria
