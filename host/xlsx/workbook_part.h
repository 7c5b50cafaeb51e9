// What the part at the root of a workbook file says.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/xlsx/package.h"
#include "host/xlsx/stored_book.h"

namespace qcalc {

/// One sheet as the book lists it: of any kind.
struct ListedSheet {
  XString name;
  std::string relationship;  ///< the id of the one that leads to its part
};

struct WorkbookPart {
  std::vector<ListedSheet> sheets;
  /// Their sheet is a place in `sheets` above.
  std::vector<StoredName> names;
  bool uses1904 = false;
};

/// Throws BookRefused for sheets without a name or of one name, for names of sheets that the book has not, and for more
/// of either than any book has.
WorkbookPart ReadWorkbookPart(const Package& package, const std::string& part);

/// Reads the part of a table, which lies on that sheet, and notes there what its filter hides.
StoredTable ReadTablePart(const Package& package, const std::string& part, StoredSheet& sheet);

}  // namespace qcalc
