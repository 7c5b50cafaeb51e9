#include "host/books/book_file.h"

#include <algorithm>
#include <utility>

#include "host/books/csv_book.h"
#include "host/files/csv_rewriting.h"
#include "host/formulas/formula_pool.h"
#include "host/output/sheet_text.h"
#include "host/process/output_file.h"
#include "host/text/letter_case.h"
#include "host/text/path_text.h"
#include "host/text/utf8.h"
#include "host/xlsx/xlsx_reader.h"
#include "host/xlsx/xlsx_writer.h"
#include "host/xml/xml_fault.h"
#include "host/zip/zip_fault.h"

namespace qcalc {

namespace {

constexpr std::size_t kMostErrorsNamed = 100'000;

XString NameOf(const std::filesystem::path& path) { return FromUtf8(TextOf(path.filename())).value_or(XTEXT("book")); }

}  // namespace

std::optional<BookFormat> BookFormatOf(const std::filesystem::path& path) {
  const std::string extension = TextOf(path.extension());
  if (EqualsIgnoringCase(extension, ".xlsx") || EqualsIgnoringCase(extension, ".xlsm")) return BookFormat::kXlsx;
  if (EqualsIgnoringCase(extension, ".csv")) return BookFormat::kCsv;
  if (EqualsIgnoringCase(extension, ".json")) return BookFormat::kJson;
  return std::nullopt;
}

BookFile::BookFile(const std::filesystem::path& path, Workbooks& workbooks, bool keepsCached) : path_(path) {
  if (BookFormatOf(path) == BookFormat::kCsv) {
    CsvBook read = ReadCsvBook(path, workbooks, NameOf(path));
    stored_ = std::move(read.stored);
    csv_ = std::move(read.text);
  } else {
    stored_ = ReadXlsx(path, workbooks, NameOf(path));
  }
  book_ = &FirstSheet().ItsBook();
  EnterNames();
  for (StoredSheet& sheet : stored_.sheets) {
    if (keepsCached) {
      CachedValues& cached = cached_.emplace_back(*sheet.sheet);
      for (const StoredFormula& formula : sheet.formulas) cached.Note(formula.fills);
    }
    EnterFormulas(sheet);
  }
}

void BookFile::EnterNames() {
  for (const StoredName& name : stored_.names) {
    const IDSHEET sheet = name.sheet ? stored_.sheets[*name.sheet].sheet->Id() : 0;
    const Parsed<Formula> formula = ParseFormula(name.text, FormulaDialect::kBook);
    book_->Names().Define(name.name, sheet, formula ? *formula : RefusedFormula(name.text, formula.Error().ToString()));
  }
  for (const StoredTable& table : stored_.tables)
    book_->ItsTables().Add(
        Table(table.name, {table.sheet->Id(), table.area}, table.headerRows, table.totalsRows, table.columns));
}

void BookFile::EnterFormulas(StoredSheet& sheet) {
  FormulaPool pool(FormulaDialect::kBook);
  std::vector<Formula> entered;
  entered.reserve(sheet.formulas.size());
  for (StoredFormula& stored : sheet.formulas) {
    if (stored.master) {
      const CellPosition from = sheet.formulas[*stored.master].position;
      entered.push_back(
          entered[*stored.master].Moved(stored.position.row - from.row, stored.position.column - from.column));
    } else {
      Parsed<Formula> parsed = pool.Enter(stored.text, stored.position.row, stored.position.column);
      entered.push_back(parsed ? *std::move(parsed) : RefusedFormula(stored.text, parsed.Error().ToString()));
      stored.text = {};
    }
    sheet.sheet->PutFormula(stored.position, entered.back(), stored.form, stored.fills);
  }
}

std::int64_t BookFile::Formulas() const {
  std::int64_t count = 0;
  for (const StoredSheet& sheet : stored_.sheets) count += std::ssize(sheet.formulas);
  return count;
}

BookFile::HeldErrors BookFile::FindErrors() const {
  HeldErrors errors;
  for (const StoredSheet& stored : stored_.sheets)
    for (const auto& [position, cell] : stored.sheet->Formulas())
      stored.sheet->VisitUsed(cell.spill.value_or(Area::OfCell(position.row, position.column)),
                              [&](std::int32_t row, std::int32_t column, const CellView& held) {
                                if (!held.IsError()) return;
                                ++errors.count;
                                if (errors.first.size() < kMostErrorsNamed)
                                  errors.first.push_back({stored.sheet->Id(), {row, column}});
                              });
  return errors;
}

SheetResults BookFile::ResultsOf(const StoredSheet& stored) const {
  SheetResults results{stored.sheet, {}};
  for (const StoredFormula& formula : stored.formulas) {
    const CellPosition at = formula.position;
    results.formulas.push_back({at, !stored.sheet->IsDirty(at), formula.fills,
                                stored.sheet->FindFormula(at)->spill.value_or(Area::OfCell(at.row, at.column))});
  }
  return results;
}

Comparison BookFile::Compare() const {
  Comparison comparison;
  for (std::size_t i = 0; i < cached_.size(); ++i) qcalc::Compare(ResultsOf(stored_.sheets[i]), cached_[i], comparison);
  return comparison;
}

void BookFile::Write(const std::filesystem::path& out, BookFormat format) const {
  if (format == BookFormat::kXlsx) {
    std::vector<CalculatedPart> parts;
    for (const StoredSheet& sheet : stored_.sheets) parts.push_back({sheet.part, ResultsOf(sheet)});
    try {
      return RewriteXlsx(path_, parts, out);
    } catch (const ZipFault& fault) {
      throw BookRefused(fault.what());
    } catch (const XmlFault& fault) {
      throw BookRefused(fault.what());
    }
  }
  OutputFile file(out);
  Print(file, format);
}

void BookFile::Print(ByteOutput& out, BookFormat format) const {
  const auto written = [&](const StoredSheet& stored) {
    return WrittenSheet{stored.sheet,
                        [&](CellPosition at) { return stored.dates.At(at.row, at.column) != DateKind::kNone; },
                        stored_.uses1904};
  };
  if (format == BookFormat::kJson) {
    std::vector<WrittenSheet> sheets;
    for (const StoredSheet& sheet : stored_.sheets) sheets.push_back(written(sheet));
    WriteJson(out, sheets);
  } else if (csv_) {
    RewriteCsv(out, *csv_, ResultsOf(stored_.sheets[0]));
  } else {
    WriteCsv(out, written(stored_.sheets[0]));
  }
  out.Finish();
}

}  // namespace qcalc
