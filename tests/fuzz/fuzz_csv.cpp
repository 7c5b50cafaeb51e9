// Any text as a CSV file, loaded into a sheet of its own.
#include <cstdint>
#include <cstdlib>

#include "host/files/csv.h"
#include "host/workbook/workbooks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qcalc::Workbooks workbooks;
  qcalc::Sheet& sheet = workbooks.BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("Sheet1"));
  const auto outcome = qcalc::LoadCsv({reinterpret_cast<const char*>(data), size}, sheet, 2, 1);
  const auto* extent = std::get_if<qcalc::CsvExtent>(&outcome);
  const auto used = sheet.UsedArea();
  // Nothing is written outside what is said to have been loaded.
  if (extent && used &&
      (used->firstRow < 2 || used->lastRow >= 2 + extent->rows || used->firstColumn < 1 ||
       used->lastColumn >= 1 + extent->columns))
    std::abort();
  return 0;
}
