// CSV files (RFC 4180) into a sheet.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "host/workbook/sheet.h"

namespace qcalc {

/// What was loaded, or where reading stopped.
struct CsvExtent {
  std::int32_t rows = 0;
  std::int32_t columns = 0;  ///< of the widest record
};
struct CsvError {
  std::int64_t line = 0;    ///< 1-based line of the file; 0 when the file could not be read at all
  std::int64_t column = 0;  ///< 1-based byte of that line
  std::string message;

  /// "data.csv:12:7: expected ..."; without line and column when there is none.
  std::string ToString(std::string_view file) const;
};

/// Columns of a file: by their numbers, from 0, and by their labels in its first record, in any case.
struct CsvColumns {
  std::vector<std::pair<std::int32_t, std::int32_t>> ranges;  ///< first and last
  std::vector<std::string> labels;
};

struct CsvOptions {
  std::string separator = ",";  ///< one character, no quote and no line end, UTF-8
  CsvColumns textColumns;       ///< their fields stay texts, the label too
  /// Where given, takes what stands behind the "=" of the fields that begin with one (and go on): their cells stay
  /// empty.
  std::function<void(CellPosition, std::string_view)> takeFormula;
};

/// Fills cells from (row, column) on with the records in `text`: fields in quotes may hold the separator, doubled
/// quotes and line breaks; records end in CR LF, LF or CR; a UTF-8 byte-order mark is passed over. A field that is a
/// plain number as a whole becomes a number (always with a point; digits beyond the 15th count as zeros), TRUE or FALSE
/// in any case a boolean, an empty one an empty cell; quotes make no difference to that, as in Excel. Cells there,
/// their formulas too, are replaced within the extent. On an error the rows before it are loaded.
std::variant<CsvExtent, CsvError> LoadCsv(std::string_view text, Sheet& sheet, std::int32_t row, std::int32_t column,
                                          const CsvOptions& options = {});

/// The same from a file.
std::variant<CsvExtent, CsvError> LoadCsvFile(const std::filesystem::path& path, Sheet& sheet, std::int32_t row,
                                              std::int32_t column, const CsvOptions& options = {});

}  // namespace qcalc
