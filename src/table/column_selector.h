// Choosing columns of a table by number or by header label, and rows of one that lies across.
#pragma once

#include <cstdint>
#include <vector>

#include "table/table_view.h"

namespace quillmere {

struct SelectedColumns {
  std::vector<std::int32_t> columns;  ///< 1-based, one per entry, in the entries' order
  bool headerUsed = false;            ///< an entry was a label: the table's first row is its header, not data
  bool failed = false;                ///< an entry could not be resolved; `columns` is then cut short
};

/// Resolves the entries of a selector, the cells of its first row, against the columns of `table`, whose first row
/// holds the labels. A number is cut to a whole one and must lie within 1 and the table's width. A label is searched by
/// Excel's MATCH in a reference (its rules: any case, wildcards); in an array it must equal a text cell when both are
/// folded, the first such counting. Any other entry fails, as does a label for which MATCH fails.
SelectedColumns SelectColumns(const CXlCells& selector, const TableView& table);

/// The same for a selector of any shape, all of whose cells count, row by row, and where one that fails, or has more
/// cells than a sheet has columns, is CXlErrorException with #VALUE!.
SelectedColumns RequireColumns(const CXlOper& selector, const TableView& table);

/// SelectColumns across: rows of a table whose first column holds the labels.
SelectedColumns SelectRows(const CXlCells& selector, const TableView& table);

}  // namespace quillmere
