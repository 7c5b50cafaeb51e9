// The values of sheets, as files of other programs.
#pragma once

#include <functional>
#include <span>

#include "host/process/byte_output.h"
#include "host/workbook/sheet.h"

namespace qcalc {

/// A sheet to be written.
struct WrittenSheet {
  const Sheet* sheet = nullptr;
  /// Whether a number there is shown as a date, a time or both; it is then written as AppendIsoDate does.
  std::function<bool(CellPosition)> isDate = [](CellPosition) { return false; };
  bool uses1904 = false;
};

/// RFC 4180: a record for each row up to the last used one, each as wide as the sheet's used columns; nothing for an
/// empty sheet. Throws OutputFailure where that would be more than kMaxArrayCells fields.
void WriteCsv(ByteOutput& file, const WrittenSheet& sheet);

/// {"sheets":[{"name":"Data","cells":{"A1":1,"B2":"x","C3":{"error":"#N/A"}}}]}: the cells that hold anything, column
/// by column, a line each.
void WriteJson(ByteOutput& file, std::span<const WrittenSheet> sheets);

}  // namespace qcalc
