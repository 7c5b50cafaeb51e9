#include "criteria/criterion_list.h"

#include <algorithm>

#include "criteria/parse_criterion.h"

namespace quillmere::criteria {

CriterionList ParseCriterionList(const CXlCells& cells) {
  if (cells.Count() == 0) throw CXlErrorException(xlerrValue);
  CriterionList list;
  list.elements.reserve(static_cast<std::size_t>(cells.Count()));
  for (std::int64_t place = 0; place < cells.Count(); ++place)
    list.elements.push_back(ParseCriterion(cells.first[place]));
  list.meetsAll = std::ranges::all_of(list.elements, &Criterion::negated);
  return list;
}

}  // namespace quillmere::criteria
