// Workbook files (.xlsx, ECMA-376, transitional and strict) into sheets.
#pragma once

#include <filesystem>

#include "host/workbook/workbooks.h"
#include "host/xlsx/stored_book.h"
#include "host/zip/zip_reader.h"

namespace qcalc {

/// Reads a workbook into a book of that name, which is made and must not be open yet: the cells' values, last results
/// of formulas among them, and which rows and columns are hidden, go into its sheets, all else into what comes back.
/// Files are taken for hostile: a part, an index or a reference that is not there, cells out of order, a DOCTYPE, and
/// what would take more than a gigabyte of memory or inflate to more than the zip reader allows, are refused. Throws
/// BookRefused, and then there is no such book.
StoredBook ReadXlsx(const std::filesystem::path& path, Workbooks& workbooks, const XString& name);

/// The same of a zip file that is open. ZipFault may come through.
StoredBook ReadXlsx(const ZipReader& zip, Workbooks& workbooks, const XString& name);

}  // namespace qcalc
