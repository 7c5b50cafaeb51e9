// CSV files as books of one sheet.
#pragma once

#include <filesystem>
#include <string>

#include "host/workbook/workbooks.h"
#include "host/xlsx/stored_book.h"

namespace qcalc {

/// What a file holds.
struct CsvBook {
  StoredBook stored;
  std::string text;  ///< the file's own, which RewriteCsv keeps where no formula wrote
};

/// Reads a file into the one sheet of a book of that name, which is made and must not be open yet. The sheet is named
/// after the file. Fields that begin with "=" and go on are formulas, which spill; all others are read as LoadCsv does.
/// Throws BookRefused for what cannot be read, and for what would take more memory than any book may; there is no such
/// book then.
CsvBook ReadCsvBook(const std::filesystem::path& path, Workbooks& workbooks, const XString& name);

}  // namespace qcalc
