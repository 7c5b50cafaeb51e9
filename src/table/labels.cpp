#include "table/labels.h"

#include "frame/callbacks/callbacks.h"
#include "frame/convert/convert_cell.h"
#include "frame/text/upper_case.h"

namespace quillmere {

std::int32_t ExcelLabels::Find(const XLOPER12& label) const {
  CXlOper position;
  TryCallExcel(position, xlfMatch, CXlOper::BorrowCell(label), header_, IntegerCell(0));
  std::int32_t place = 0;
  if (position.IsNumber() || position.IsInteger()) TruncateToInteger(position.AsNumber(), place);
  return place >= 1 ? place - 1 : kNoPlace;
}

FoldedLabels::FoldedLabels(const CellLine& header, std::int32_t wanted) : header_(header) {
  constexpr std::int32_t kFew = 16;
  isIndexed_ = wanted > kFew;
  for (std::int32_t place = 0; isIndexed_ && place < header_.count; ++place)
    if (IsTextCell(header_.At(place))) places_.try_emplace(TextOf(header_.At(place)), place);
}

std::int32_t FoldedLabels::Find(const XLOPER12& label) const {
  const XStringView text = TextOf(label);
  if (isIndexed_) {
    const auto found = places_.find(text);
    return found == places_.end() ? kNoPlace : found->second;
  }
  for (std::int32_t place = 0; place < header_.count; ++place)
    if (IsTextCell(header_.At(place)) && EqualFolded(TextOf(header_.At(place)), text)) return place;
  return kNoPlace;
}

const XString& UpperLabel::Of(const XLOPER12& cell) {
  AssignUpperCase(text_, TextForm(cell, number_));
  return text_;
}

}  // namespace quillmere
