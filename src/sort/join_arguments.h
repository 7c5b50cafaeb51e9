// Reading the arguments of a join, the first of its three steps: reading, finding partners, building.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "frame/convert/argument.h"
#include "frame/values/xl_oper.h"
#include "table/cell_hash.h"
#include "table/cell_tuples.h"

namespace quillmere::sort {

/// The arguments of a join as the worksheet functions pass them.
struct JoinArguments {
  const CXlArgument& leftData;
  const CXlArgument& rightData;
  const CXlScalarArgument<ElementKind::kInteger>& matchType;
  const CXlArgument& leftColumns;
  const CXlArgument& rightColumns;
  const CXlScalarArgument<ElementKind::kBoolean>& caseSense;
  const CXlArgument& fill;
};

/// A table of a join, read whole.
struct JoinTable {
  CXlOper values;
  std::vector<std::int32_t> keyColumns;  ///< 0-based
  std::int32_t headerRows = 0;           ///< 1 when the first row is no data, else 0

  // Views of this. There may be no rows.

  CXlCells Header() const { return {values.Cells().first, headerRows, Columns()}; }
  CXlCells Data() const;
  std::int32_t Columns() const { return values.Cells().columns; }
  /// The keys of the data rows.
  RowTuples Keys() const { return RowTuples(Data(), keyColumns); }
};

/// A join read and checked. It views the arguments.
struct JoinPlan {
  JoinTable left;   ///< both have as many header rows
  JoinTable right;  ///< and as many key columns
  std::int32_t matchType;
  TextCase textCase;
  const XLOPER12* fill;
};

/// Reads a join. Nothing when the fill value is several cells, which is then told in `result`. CXlErrorException with
/// #VALUE! for a table or key columns that cannot be had; the messages of scalars.
std::optional<JoinPlan> ReadJoin(const JoinArguments& arguments, CXlOper& result);

}  // namespace quillmere::sort
