#include "host/books/csv_book.h"

#include <cstdint>
#include <system_error>
#include <utility>
#include <vector>

#include "host/files/csv_reader.h"
#include "host/files/file_text.h"
#include "host/text/path_text.h"
#include "host/xlsx/memory_limit.h"

namespace qcalc {
namespace {

constexpr std::size_t kMostNameUnits = 31;

/// The name of a sheet as near to that of the file as Excel has it.
XString SheetNameOf(const std::filesystem::path& path) {
  XString name = FromUtf8(TextOf(path.stem())).value_or(XString()).substr(0, kMostNameUnits);
  for (XCHAR& unit : name)
    if (unit < ' ' || XStringView(XTEXT("[]:*?/\\")).find(unit) != XStringView::npos) unit = '_';
  if (!name.empty() && IsHighSurrogate(name.back())) name.pop_back();
  if (!name.empty() && name.front() == '\'') name.front() = '_';
  if (!name.empty() && name.back() == '\'') name.back() = '_';
  return name.empty() ? XString(XTEXT("Sheet1")) : name;
}

BookRefused Refusal(const CsvError& error) {
  if (error.line == 0) return BookRefused(error.message);
  return BookRefused("line " + std::to_string(error.line) + ", column " + std::to_string(error.column) + ": " +
                     error.message);
}

/// Refuses what no sheet holds, more fields than are worth reading, and fields so far from one another that each would
/// take the memory of many.
void TakeMemory(std::string_view text, MemoryLimit& limit) {
  constexpr std::size_t kChunkBytes = CellStore::kChunkRows * sizeof(CellView);
  std::int64_t fields = 0;
  std::vector<std::int64_t> chunks;  // of each column
  CsvReader(text, ",").Read(
      [&](std::int64_t record, std::int64_t index, std::string_view field) {
        if (index >= kXlMaxColumns || record >= kXlMaxRows) throw BookRefused("it has more than fits on a sheet");
        if (++fields > kMaxArrayCells)
          throw BookRefused("it has more than " + std::to_string(kMaxArrayCells) + " fields");
        if (field.empty()) return;
        if (field[0] == '=') limit.Take(sizeof(StoredFormula) + sizeof(FormulaCell));
        const auto column = static_cast<std::size_t>(index);
        if (column >= chunks.size()) chunks.resize(column + 1);
        if (record / CellStore::kChunkRows < chunks[column]) return;
        chunks[column] = record / CellStore::kChunkRows + 1;
        limit.Take(kChunkBytes);
      },
      [](std::int64_t, std::int64_t) {});
}

void Load(std::string_view text, StoredSheet& stored) {
  CsvOptions options;
  options.takeFormula = [&](CellPosition at, std::string_view formula) {
    stored.formulas.push_back(
        {at, FormulaForm::kSpilling, Area::OfCell(at.row, at.column), std::string(formula), std::nullopt});
  };
  const auto loaded = LoadCsv(text, *stored.sheet, 0, 0, options);
  if (const auto* error = std::get_if<CsvError>(&loaded)) throw Refusal(*error);
}

}  // namespace

CsvBook ReadCsvBook(const std::filesystem::path& path, Workbooks& workbooks, const XString& name) {
  MemoryLimit limit;
  std::error_code unknown;
  if (const std::uintmax_t size = std::filesystem::file_size(path, unknown); !unknown) limit.Take(size);
  auto read = ReadFile(path);
  if (const auto* failure = std::get_if<FileFailure>(&read)) throw BookRefused(failure->reason);
  CsvBook csv;
  csv.text = std::move(std::get<std::string>(read));
  try {
    TakeMemory(csv.text, limit);
  } catch (const CsvError& error) {
    throw Refusal(error);
  }
  Book& book = workbooks.BookNamed(name);
  try {
    csv.stored.sheets.push_back({&book.SheetNamed(SheetNameOf(path))});
    Load(csv.text, csv.stored.sheets[0]);
  } catch (...) {
    workbooks.Close(book);
    throw;
  }
  return csv;
}

}  // namespace qcalc
