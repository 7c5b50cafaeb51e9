#include "criteria/text_set.h"

#include "frame/text/fold_case.h"
#include "table/cell_hash.h"

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
      equal_.push_back(criterion.text);
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

void TextSet::MakeIndex() {
  if (equal_.empty()) return;
  index_.emplace(static_cast<std::int32_t>(equal_.size()));
  for (std::size_t place = 0; place < equal_.size(); ++place) {
    const std::uint64_t hash = HashText<TextCase::kIgnored>(equal_[place], key_);
    std::uint32_t slot = 0;
    const auto isSame = [&](std::int32_t other) { return EqualFolded(equal_[other], equal_[place]); };
    if (index_->Find(hash, slot, isSame) == kNoEntry) index_->Put(hash, slot, static_cast<std::int32_t>(place));
  }
}

bool TextSet::IsListed(XStringView text) const {
  if (!index_) return false;
  const std::uint64_t hash = HashText<TextCase::kIgnored>(text, key_);
  if (!index_->MayHold(hash)) return false;
  std::uint32_t slot = 0;
  return index_->Find(hash, slot, [&](std::int32_t place) { return EqualFolded(equal_[place], text); }) != kNoEntry;
}

bool TextSet::Holds(XStringView text) const {
  if (holdsAll_ || IsListed(text)) return true;
  if (allBut_ && !EqualFolded(text, *allBut_)) return true;
  const auto isWithin = [](int order, const Bound& bound) { return order < 0 || (order == 0 && bound.included); };
  return (before_ && isWithin(CompareFolded(text, before_->text), *before_)) ||
         (behind_ && isWithin(-CompareFolded(text, behind_->text), *behind_));
}

}  // namespace quillmere::criteria
