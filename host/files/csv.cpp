#include "host/files/csv.h"

#include <algorithm>
#include <optional>

#include "host/files/csv_reader.h"
#include "host/files/file_text.h"
#include "host/process/journal.h"
#include "host/text/digits.h"
#include "host/text/letter_case.h"
#include "host/text/near_names.h"
#include "host/text/utf8.h"
#include "host/values/decimal_number.h"

namespace qcalc {

namespace {

// A sign, digits with an optional point and exponent, and nothing else.
bool ReadPlainNumber(std::string_view field, double& number) {
  const std::size_t sign = field[0] == '-' || field[0] == '+' ? 1 : 0;
  const char first = sign < field.size() ? field[sign] : '\0';
  if (!IsDigit(first) && first != '.') return false;
  if (!ReadDecimal(field.substr(sign), number)) return false;
  if (field[0] == '-') number = -number;
  return true;
}

constexpr const char* kNoUtf8 = "expected UTF-8 in this field";

CellView TextCell(std::string_view field, CellStore& cells, const CsvReader& reader) {
  XCHAR* start = cells.Pool().Reserve(field.size());
  const XCHAR* end = FromUtf8(field, start);
  if (!end) throw reader.FaultAtField(kNoUtf8);
  const auto units = static_cast<std::size_t>(end - start);
  if (units > static_cast<std::size_t>(kXlMaxText))
    throw reader.FaultAtField("expected at most " + std::to_string(kXlMaxText) + " characters in a cell, found " +
                              std::to_string(units));
  return CellView::Text(cells.Pool().Keep(start, units));
}

CellView CellOf(std::string_view field, CellStore& cells, const CsvReader& reader) {
  if (double number = 0; ReadPlainNumber(field, number)) return CellView::Number(number);
  if (EqualsIgnoringCase(field, "true")) return CellView::Boolean(true);
  if (EqualsIgnoringCase(field, "false")) return CellView::Boolean(false);
  return TextCell(field, cells, reader);
}

// Whether a text in UTF-8 is that label.
bool IsLabel(std::string_view field, const std::string& label) {
  const auto left = FromUtf8(field), right = FromUtf8(label);
  return left && right && EqualsIgnoringCase(*left, *right);
}

// The columns whose fields stay texts, by number from 0. Throws CsvError for a label that the first record has not.
std::vector<bool> TextColumnsOf(std::string_view text, const CsvOptions& options) {
  std::vector<bool> isText;
  const auto mark = [&isText](std::size_t column) {
    if (isText.size() <= column) isText.resize(column + 1);
    isText[column] = true;
  };
  for (const auto& [first, last] : options.textColumns.ranges)
    for (std::int32_t column = first; column <= last; ++column) mark(static_cast<std::size_t>(column));
  if (options.textColumns.labels.empty()) return isText;
  std::vector<std::string> labels;
  struct FirstRecordRead {};
  try {
    CsvReader(text, options.separator)
        .Read([&](std::int64_t, std::int64_t, std::string_view field) { labels.emplace_back(field); },
              [](std::int64_t, std::int64_t) { throw FirstRecordRead(); });
  } catch (const FirstRecordRead&) {
  }
  for (const std::string& wanted : options.textColumns.labels) {
    bool isFound = false;
    for (std::size_t column = 0; column < labels.size(); ++column)
      if (IsLabel(labels[column], wanted)) {
        mark(column);
        isFound = true;
      }
    if (!isFound)
      throw CsvError{1, 1, "expected a column labelled \"" + wanted + "\", found none" + NearNamesHint(wanted, labels)};
  }
  return isText;
}

// Writes the fields of a file from one cell on.
class CsvLoader {
 public:
  CsvLoader(Sheet& sheet, std::int32_t row, std::int32_t column) : sheet_(sheet), row_(row), column_(column) {}

  void Load(std::string_view text, const CsvOptions& options) {
    const std::vector<bool> isText = TextColumnsOf(text, options);
    CsvReader reader(text, options.separator);
    reader.Read(
        [&](std::int64_t record, std::int64_t index, std::string_view field) {
          if (record + row_ >= kXlMaxRows)
            throw reader.FaultAtField("expected at most " + std::to_string(kXlMaxRows - row_) + " records, found more");
          if (index + column_ >= kXlMaxColumns)
            throw reader.FaultAtField("expected at most " + std::to_string(kXlMaxColumns - column_) +
                                      " fields in a record, found more");
          const auto number = static_cast<std::size_t>(index);
          if (options.takeFormula && field.size() > 1 && field[0] == '=') {
            if (!FromUtf8(field)) throw reader.FaultAtField(kNoUtf8);
            options.takeFormula({row_ + static_cast<std::int32_t>(record), column_ + static_cast<std::int32_t>(index)},
                                field.substr(1));
            field = {};
          }
          CellView cell;
          if (!field.empty())
            cell = number < isText.size() && isText[number] ? TextCell(field, sheet_.Cells(), reader)
                                                            : CellOf(field, sheet_.Cells(), reader);
          sheet_.Cells().SetPooled(row_ + static_cast<std::int32_t>(record), column_ + static_cast<std::int32_t>(index),
                                   cell);
        },
        [&](std::int64_t record, std::int64_t fields) {
          EndRecord(row_ + static_cast<std::int32_t>(record), static_cast<std::int32_t>(fields));
        });
  }

  CsvExtent Extent() const { return extent_; }

 private:
  // Empties what stood beside a short record, or above one that is wider than all before it.
  void EndRecord(std::int32_t row, std::int32_t fields) {
    if (fields > extent_.columns && row > row_)
      sheet_.Cells().Clear({row_, row - 1, column_ + extent_.columns, column_ + fields - 1});
    for (std::int32_t index = fields; index < extent_.columns; ++index)
      sheet_.Cells().SetPooled(row, column_ + index, {});
    extent_.columns = std::max(extent_.columns, fields);
    extent_.rows = row - row_ + 1;
    ++ProcessJournal().rowsLoaded;
  }

  Sheet& sheet_;
  std::int32_t row_;
  std::int32_t column_;
  CsvExtent extent_;
};

// The size of what would be loaded, as far as it can be read.
CsvExtent Measure(std::string_view text, std::string_view separator, std::int32_t row, std::int32_t column) {
  CsvExtent extent;
  try {
    CsvReader(text, separator)
        .Read([](std::int64_t, std::int64_t, std::string_view) {},
              [&](std::int64_t record, std::int64_t fields) {
                extent.rows = static_cast<std::int32_t>(std::min<std::int64_t>(record + 1, kXlMaxRows - row));
                extent.columns =
                    static_cast<std::int32_t>(std::clamp<std::int64_t>(fields, extent.columns, kXlMaxColumns - column));
              });
  } catch (const CsvError&) {
    // Loading comes to the same place and reports it.
  }
  return extent;
}

}  // namespace

std::string CsvError::ToString(std::string_view file) const {
  std::string text(file);
  if (line > 0) text += ":" + std::to_string(line) + ":" + std::to_string(column);
  return text + ": " + message;
}

std::variant<CsvExtent, CsvError> LoadCsv(std::string_view text, Sheet& sheet, std::int32_t row, std::int32_t column,
                                          const CsvOptions& options) {
  // Formulas and their spilled results must be gone before values take their place.
  if (!sheet.Formulas().empty())
    if (const CsvExtent extent = Measure(text, options.separator, row, column); extent.rows > 0)
      sheet.Clear(Area::OfSize(row, column, extent.rows, extent.columns));
  CsvLoader loader(sheet, row, column);
  std::optional<CsvError> error;
  try {
    loader.Load(text, options);
  } catch (CsvError& fault) {
    error = std::move(fault);
  }
  const CsvExtent extent = loader.Extent();
  if (extent.rows > 0) sheet.NoteChange(Area::OfSize(row, column, extent.rows, extent.columns));
  if (error) return *std::move(error);
  return extent;
}

std::variant<CsvExtent, CsvError> LoadCsvFile(const std::filesystem::path& path, Sheet& sheet, std::int32_t row,
                                              std::int32_t column, const CsvOptions& options) {
  const auto read = ReadFile(path);
  if (const auto* failure = std::get_if<FileFailure>(&read)) return CsvError{0, 0, failure->reason};
  return LoadCsv(std::get<std::string>(read), sheet, row, column, options);
}

}  // namespace qcalc
