#include "criteria/prepare_criterion.h"

#include <algorithm>

#include "frame/callbacks/callbacks.h"
#include "frame/errors/attempt.h"
#include "text/regex/regex_pattern.h"
#include "text/wildcard_pattern.h"

namespace quillmere::criteria {
namespace {

/// False only for texts that VALUE refuses in every language: it reads no number, date or time without a digit, and
/// all digits but 0 to 9 lie beyond ASCII. Lists of words then cost no calls.
bool MayBeNumber(XStringView text) {
  return std::any_of(text.begin(), text.end(),
                     [](XCHAR unit) { return (unit >= XTEXT('0') && unit <= XTEXT('9')) || unit >= 0x80; });
}

void ReadNumber(Criterion& criterion) {
  CXlOper value;
  if (TryCallExcel(value, xlfValue, CXlOper::Text(criterion.text)) != xlretSuccess) return;
  if (!value.IsNumber() && !value.IsInteger()) return;
  criterion.number = value.AsNumber();
  criterion.plainMask |= cell_type::kNumber;
}

void MakePattern(Criterion& criterion, text::RegexBudget& budget) {
  if (criterion.text.empty()) return;
  if (criterion.kind == CriterionKind::kLike) {
    criterion.pattern = std::make_unique<text::WildcardPattern>(criterion.text, false);
    return;
  }
  criterion.budget = &budget;
  criterion.isUnusable = !RunsWithout<CXlBadRegexException>(
      [&] { criterion.pattern = std::make_unique<text::RegexPattern>(criterion.text, budget); });
}

}  // namespace

void PrepareCriterionValue(Criterion& criterion, text::RegexBudget& budget) {
  criterion.ownMask = criterion.plainMask = criterion.valueType;
  if (criterion.valueType != cell_type::kText || IsTypeTest(criterion.kind)) return;
  if (criterion.text.empty()) criterion.plainMask |= cell_type::kEmpty;
  if (IsPattern(criterion.kind)) {
    MakePattern(criterion, budget);
  } else if (MayBeNumber(criterion.text)) {
    ReadNumber(criterion);
  }
}

}  // namespace quillmere::criteria
