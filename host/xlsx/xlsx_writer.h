// Workbooks with the values of a calculation.
#pragma once

#include <filesystem>
#include <span>
#include <string_view>

#include "host/output/changed_cells.h"

namespace qcalc {

/// The entry of the file that a sheet was read from, and what became of the sheet.
struct CalculatedPart {
  std::string_view part;
  SheetResults results;
};

/// Writes the book that lies in `book` to `out`, which may be the same place. Everything stays as it is, byte by byte
/// within the entries, but the cells that the calculation may have changed: those get their values, and cells that a
/// result fills are added where the file has none. Throws OutputFailure for what cannot be written, ZipFault or
/// XmlFault where the file is no longer what was read.
void RewriteXlsx(const std::filesystem::path& book, std::span<const CalculatedPart> parts,
                 const std::filesystem::path& out);

}  // namespace qcalc
