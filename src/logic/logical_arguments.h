// The arguments of the functions that combine truth values, measured.
#pragma once

#include <vector>

#include "frame/callbacks/caller.h"
#include "frame/convert/argument.h"
#include "table/table_view.h"

namespace quillmere::logic {

/// What is combined.
using LogicalArguments = CXlArgumentRun<28>;

/// What all that is combined must have as many of as Arg1.
enum class Likeness { kRowsAndColumns, kRows, kColumns };

/// The arguments that a call gives, in their order, and how much of Arg1 the calling cells show.
struct MeasuredArguments {
  std::vector<TableView> tables;
  CellsSize shown;
};

/// Measures all arguments; no cell is read. The faults in their order: Arg1 left out is CXlErrorException with #VALUE!,
/// no calling cells #N/A, an argument of another size or a reference of several areas #VALUE!.
MeasuredArguments MeasureArguments(const LogicalArguments& arguments, Likeness likeness);

}  // namespace quillmere::logic
