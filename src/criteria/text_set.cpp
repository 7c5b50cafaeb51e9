#include "criteria/text_set.h"

namespace quillmere::criteria {
namespace {

/// The kind that asks for the other texts.
CriterionKind Opposite(CriterionKind kind) {
  switch (kind) {
    case CriterionKind::kLess:
      return CriterionKind::kGreaterEqual;
    case CriterionKind::kLessEqual:
      return CriterionKind::kGreater;
    case CriterionKind::kGreater:
      return CriterionKind::kLessEqual;
    case CriterionKind::kGreaterEqual:
      return CriterionKind::kLess;
    case CriterionKind::kNotEqual:
      return CriterionKind::kEqual;
    default:
      return CriterionKind::kNotEqual;
  }
}

}  // namespace

void TextSet::Add(const Criterion& criterion) {
  switch (criterion.negated ? Opposite(criterion.kind) : criterion.kind) {
    case CriterionKind::kLess:
      return AddBefore({criterion.text, false});
    case CriterionKind::kLessEqual:
      return AddBefore({criterion.text, true});
    case CriterionKind::kGreater:
      return AddBehind({criterion.text, false});
    case CriterionKind::kGreaterEqual:
      return AddBehind({criterion.text, true});
    case CriterionKind::kNotEqual:
      return AddAllBut(criterion.text);
    default:
      equal_.insert(criterion.text);
  }
}

void TextSet::AddBefore(const Bound& bound) {
  const int order = before_ ? CompareFolded(bound.text, before_->text) : 1;
  if (order > 0 || (order == 0 && bound.included)) before_ = bound;
}

void TextSet::AddBehind(const Bound& bound) {
  const int order = behind_ ? CompareFolded(bound.text, behind_->text) : -1;
  if (order < 0 || (order == 0 && bound.included)) behind_ = bound;
}

void TextSet::AddAllBut(XStringView text) {
  if (allBut_ && !EqualFolded(*allBut_, text)) AddAll();
  allBut_ = text;
}

bool TextSet::Holds(XStringView text) const {
  if (holdsAll_ || (!equal_.empty() && equal_.contains(text))) return true;
  if (allBut_ && !EqualFolded(text, *allBut_)) return true;
  const auto isWithin = [](int order, const Bound& bound) { return order < 0 || (order == 0 && bound.included); };
  return (before_ && isWithin(CompareFolded(text, before_->text), *before_)) ||
         (behind_ && isWithin(-CompareFolded(text, behind_->text), *behind_));
}

}  // namespace quillmere::criteria
