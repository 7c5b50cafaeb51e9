// Reading the arguments of the distinct functions.
#pragma once

#include <cstdint>

#include "frame/convert/argument.h"
#include "sort/distinct_items.h"
#include "sort/distinct_list.h"
#include "table/table_view.h"

namespace quillmere::sort {

/// The most items of a call, as DistinctTuples has it.
constexpr std::int64_t kMostItems = (std::int64_t{1} << 30) - 1;

/// An argument's data. A view of the argument and of the values that were read of it.
class DistinctInput {
 public:
  /// Cuts a tall reference to its used rows; reads no cells yet. What is no table is CXlErrorException with #VALUE!.
  explicit DistinctInput(const CXlArgument& argument);
  DistinctInput(const DistinctInput&) = delete;
  DistinctInput& operator=(const DistinctInput&) = delete;

  /// Its items, a row each: its rows, or all its cells, row by row. It is read for them, once. More than are looked
  /// at in a call: CXlArrayTooLargeException. A callback that fails: CXlErrorException with #VALUE!.
  CXlCells ReadItems(bool byRows);

  /// A column or a row with a value for each row of the input, both as they were passed; of any other size:
  /// CXlErrorException with #VALUE!. Rows of the input that were cut have none.
  CellLine ReadValues(const CXlArgument& argument);

 private:
  std::int32_t passedRows_;
  TableView table_;
  CXlOper itemCells_;
  CXlOper valueCells_;
};

/// The order of a list with figures. A number that stands for none leaves it unsorted.
ListOrder ReadOrder(const CXlScalarArgument<ElementKind::kInteger>& sort);

TextCase ReadTextCase(const CXlScalarArgument<ElementKind::kBoolean>& caseSense);

}  // namespace quillmere::sort
