#include "host/output/sheet_text.h"

#include "host/formulas/reference_text.h"
#include "host/output/cell_text.h"
#include "host/output/iso_date.h"
#include "host/process/checked_output.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

constexpr Area kWholeSheet{0, kXlMaxRows - 1, 0, kXlMaxColumns - 1};

bool AppendDate(std::string& out, const WrittenSheet& sheet, CellPosition position, const CellView& cell) {
  return cell.IsNumber() && sheet.isDate(position) && AppendIsoDate(out, cell.AsNumber(), sheet.uses1904);
}

void WriteCells(ByteOutput& file, const WrittenSheet& sheet) {
  std::string& out = file.Buffer();
  std::string date;
  bool isFirst = true;
  sheet.sheet->VisitUsed(kWholeSheet, [&](std::int32_t row, std::int32_t column, const CellView& cell) {
    out += isFirst ? "\n\"" : ",\n\"";
    out += AreaToText(Area::OfCell(row, column));
    out += "\":";
    date.clear();
    if (AppendDate(date, sheet, {row, column}, cell))
      out += '"' + date + '"';
    else
      AppendJsonCell(out, cell);
    file.Note();
    isFirst = false;
  });
}

}  // namespace

void WriteCsv(ByteOutput& file, const WrittenSheet& sheet) {
  const auto used = sheet.sheet->UsedArea();
  if (!used) return;
  const Area area{0, used->lastRow, 0, used->lastColumn};
  if (std::int64_t{area.Rows()} * area.Columns() > kMaxArrayCells)
    throw OutputFailure{"the sheet " + ToUtf8(sheet.sheet->Name()) + " reaches to " +
                        AreaToText(Area::OfCell(area.lastRow, area.lastColumn)) + ", which are more than " +
                        std::to_string(kMaxArrayCells) + " fields"};
  std::string& out = file.Buffer();
  CellPosition at;
  sheet.sheet->VisitRowMajor(area, [&](const CellView& cell) {
    if (at.column > 0) out += ',';
    if (!AppendDate(out, sheet, at, cell)) AppendCsvField(out, cell);
    if (at.column++ < area.lastColumn) return;
    out += '\n';
    at = {at.row + 1, 0};
    file.Note();
  });
}

void WriteJson(ByteOutput& file, std::span<const WrittenSheet> sheets) {
  std::string& out = file.Buffer();
  out += "{\"sheets\":[";
  for (const WrittenSheet& sheet : sheets) {
    if (&sheet != sheets.data()) out += ',';
    out += "\n{\"name\":";
    AppendJsonText(out, sheet.sheet->Name());
    out += ",\"cells\":{";
    WriteCells(file, sheet);
    out += "}}";
  }
  out += "]}\n";
}

}  // namespace qcalc
