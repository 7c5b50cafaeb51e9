// A criterion of several values: an array, or the cells of a reference.
#pragma once

#include <vector>

#include "criteria/criterion.h"
#include "frame/values/xl_oper.h"

namespace quillmere::criteria {

/// The elements of a list, each a criterion of its own: kind, value, negated, joined. A cell meets the list when it
/// meets any of them. Where every element is written with a "¬", it meets the list when it meets all of them, that is,
/// when it is none of what stands behind the signs.
struct CriterionList {
  std::vector<Criterion> elements;
  bool meetsAll = false;
};

/// Reads the cells of a list row by row; CXlErrorException with #VALUE! when there are none.
CriterionList ParseCriterionList(const CXlCells& cells);

}  // namespace quillmere::criteria
