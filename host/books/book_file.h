// A workbook or CSV file that is opened, calculated and written.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/calculation/recalculation.h"
#include "host/output/comparison.h"
#include "host/process/byte_output.h"
#include "host/workbook/workbooks.h"
#include "host/xlsx/stored_book.h"

namespace qcalc {

/// What a book may be written as.
enum class BookFormat { kXlsx, kCsv, kJson };

/// By the file's extension, without case; nothing for any other.
std::optional<BookFormat> BookFormatOf(const std::filesystem::path& path);

/// One file and the book that it became. Its formulas stand in the sheets, to be calculated; one that cannot be parsed
/// is there too and fails with the reason.
class BookFile {
 public:
  /// Reads the file, a workbook unless its name ends in `.csv`, into a book of the file's name, which is made. With
  /// `keepsCached` the values that formulas had are kept for Compare. Throws BookRefused.
  BookFile(const std::filesystem::path& path, Workbooks& workbooks, bool keepsCached);

  const StoredBook& Stored() const { return stored_; }
  Sheet& FirstSheet() const { return *stored_.sheets.front().sheet; }
  std::int64_t Formulas() const;

  /// Errors that formulas of the book hold, and the cells of the first ones.
  struct HeldErrors {
    std::int64_t count = 0;
    std::vector<SheetCell> first;
  };
  HeldErrors FindErrors() const;

  /// Holds what calculated formulas give against what the file has had.
  Comparison Compare() const;

  /// Writes the book with its values: as a workbook, which a CSV file cannot become, all of it; as CSV its first sheet;
  /// as JSON the values of all sheets. Throws OutputFailure, and BookRefused where the file is no longer what was read.
  void Write(const std::filesystem::path& out, BookFormat format) const;
  /// The same, but no workbook, to anywhere.
  void Print(ByteOutput& out, BookFormat format) const;

 private:
  void EnterNames();
  void EnterFormulas(StoredSheet& sheet);
  SheetResults ResultsOf(const StoredSheet& sheet) const;

  std::filesystem::path path_;
  Book* book_ = nullptr;
  StoredBook stored_;
  std::optional<std::string> csv_;    // the text of a CSV file
  std::vector<CachedValues> cached_;  // a sheet each, where they are kept
};

}  // namespace qcalc
