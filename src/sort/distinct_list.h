// The lists of distinct items.
#pragma once

#include <cstdint>

#include "frame/callbacks/caller.h"
#include "frame/values/xl_oper.h"
#include "sort/distinct_items.h"

namespace quillmere::sort {

/// In which order a list is.
struct ListOrder {
  enum class By { kFirstOccurrence, kItem, kFigure };
  By by = By::kFirstOccurrence;
  bool isDescending = false;
};

/// How a list is written.
struct ListForm {
  ItemFigure figure;
  ListOrder order;
  CXlOper fill;      ///< for what the list does not supply
  CellsSize caller;  ///< a list in one cell has its own size, any other that of its cells
};

/// The list of `found`, the distinct ones of `items`. A list too large for a sheet is CXlArrayTooLargeException before
/// anything is sorted; one without items, in one cell, is the fill.
CXlOper ListItems(const CXlCells& items, DistinctItems&& found, const ListForm& form);

}  // namespace quillmere::sort
