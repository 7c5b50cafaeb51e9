// The slice selector: rows or columns of a table picked by numbers, range marks, labels or references.
#pragma once

#include <cstdint>
#include <optional>

#include "frame/convert/argument.h"
#include "shape/slice.h"
#include "table/table_view.h"

namespace quillmere::shape {

enum class SliceAxis : std::int8_t { kRows, kColumns };

/// The rows or columns of a table that a selector picks, one at least.
///
/// A reference, where the table is one too, picks what any of its areas covers on the same sheet, in the table's order.
/// Of any other selector the cells are walked row by row, tall references cut to their used rows:
///   a number   the place, from 1, or from the end (-1 is the last); fractions are cut off
///   0          a range mark: every place behind the one picked last, up to and with that of the next item, which it
///              takes if it is a number; up to the last if not, or if that is 0 again
///   a text     every row whose cell in the first column (column, in the first row) bears that label, as UpperLabel has
///              it; none perhaps
///
/// Where it fails, `result` holds a text that says why, "#Error: ", `prefix` and a blank in front, and nothing comes
/// back: for a place outside the table, an item of another kind, a reference that covers nothing, and for nothing
/// picked. More places than a sheet has are CXlArrayTooLargeException; a callback that fails is CXlErrorException with
/// #VALUE!.
std::optional<Slice> SelectSlice(CXlOper& result, const TableView& table, SliceAxis axis, const CXlArgument& selector,
                                 XStringView prefix);

}  // namespace quillmere::shape
