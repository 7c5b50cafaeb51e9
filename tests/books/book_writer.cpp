// Writes workbooks to try the calculator on, by a library that knows nothing of it:
//     book_writer functions DATA.csv EXCEL.txt ADDIN.txt OUT.xlsx   the formulas of two lists, over the data
//     book_writer cells ROWS COLUMNS OUT.xlsx                       numbers and texts, every tenth column formulas
#include <xlsxwriter.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include "host/files/csv.h"
#include "host/text/utf8.h"
#include "host/workbook/workbooks.h"

namespace {

using namespace qcalc;

constexpr lxw_datetime kDay = {2026, 11, 23, 14, 5, 0};

struct BookWriter {
  explicit BookWriter(const std::string& path) : book(workbook_new(path.c_str())) {
    lxw_doc_properties properties{};
    properties.created = 1'000'000'000;
    workbook_set_properties(book, &properties);
    bold = workbook_add_format(book);
    format_set_bold(bold);
    format_set_bg_color(bold, 0xDDEBF7);
    date = workbook_add_format(book);
    format_set_num_format(date, "yyyy-mm-dd hh:mm");
  }

  void Close() {
    if (const lxw_error error = workbook_close(book)) throw std::runtime_error(lxw_strerror(error));
  }

  lxw_worksheet* AddSheet(const char* name) const { return workbook_add_worksheet(book, name); }

  lxw_workbook* book;
  lxw_format *bold, *date;
};

lxw_row_t Row(std::int32_t row) { return static_cast<lxw_row_t>(row); }
lxw_col_t Column(std::int32_t column) { return static_cast<lxw_col_t>(column); }

/// The file's fields, its first row as headers; where they end.
Area WriteData(const BookWriter& writer, lxw_worksheet* to, const std::string& path) {
  Workbooks workbooks;
  Sheet& from = workbooks.BookNamed(XTEXT("b")).SheetNamed(XTEXT("s"));
  const auto loaded = LoadCsvFile(path, from, 0, 0);
  if (const auto* error = std::get_if<CsvError>(&loaded)) throw std::runtime_error(error->ToString(path));
  const Area used = from.UsedArea().value();
  from.VisitUsed(used, [&](std::int32_t row, std::int32_t column, const CellView& cell) {
    lxw_format* format = row == 0 ? writer.bold : nullptr;
    if (cell.IsNumber())
      worksheet_write_number(to, Row(row), Column(column), cell.AsNumber(), format);
    else
      worksheet_write_string(to, Row(row), Column(column), ToUtf8(cell.AsText()).c_str(), format);
  });
  worksheet_set_column(to, 0, 0, 12, nullptr);
  worksheet_freeze_panes(to, 1, 0);
  return used;
}

/// Writes the formulas of a list below one another into column B, each beside its text.
void WriteFormulas(const BookWriter& writer, const char* name, const std::string& path) {
  std::ifstream list(path);
  if (!list) throw std::runtime_error(path + " cannot be read");
  lxw_worksheet* sheet = writer.AddSheet(name);
  worksheet_set_column(sheet, 0, 0, 60, nullptr);
  std::int32_t row = 0;
  for (std::string line; std::getline(list, line);) {
    if (line.empty() || line[0] == '#') continue;
    const bool isSpilling = line.starts_with("spill ");
    if (isSpilling) line.erase(0, line.find(' ') + 1);
    std::array<int, 2> size = {1, 1};
    const std::size_t blank = line.find(' '), by = line.find('x');
    const bool isArray = line[0] >= '1' && line[0] <= '9' && by < blank && blank != line.npos;
    if (isArray) {
      size = {std::stoi(line), std::stoi(line.substr(by + 1))};
      line.erase(0, blank + 1);
    }
    worksheet_write_string(sheet, Row(row), 0, line.c_str(), nullptr);
    const Area area = Area::OfSize(row, 1, size[0], size[1]);
    const std::string formula = isArray ? "{=" + line + "}" : "=" + line;
    if (!isArray)
      worksheet_write_formula(sheet, Row(row), 1, formula.c_str(), nullptr);
    else
      (isSpilling ? worksheet_write_dynamic_array_formula : worksheet_write_array_formula)(
          sheet, Row(row), 1, Row(area.lastRow), Column(area.lastColumn), formula.c_str(), nullptr);
    row = area.lastRow + 1;
  }
}

void WriteFunctions(const std::string& data, const std::string& excel, const std::string& addin,
                    const std::string& out) {
  BookWriter writer(out);
  lxw_worksheet* sheet = writer.AddSheet("Data");
  const Area used = WriteData(writer, sheet, data);
  lxw_row_col_options hidden{};
  hidden.hidden = LXW_TRUE;
  worksheet_set_row_opt(sheet, 3, LXW_DEF_ROW_HEIGHT, nullptr, &hidden);
  lxw_table_options table{};
  std::array<lxw_table_column, 6> columns{};
  std::array<lxw_table_column*, 7> listed{};
  // The library takes texts that it might change.
  std::string name = "Weather";
  std::array<std::string, 6> headers = {"date", "precipitation", "temp_max", "temp_min", "wind", "weather"};
  for (std::size_t i = 0; i < headers.size(); ++i) {
    columns[i].header = headers[i].data();
    listed[i] = &columns[i];
  }
  table.name = name.data();
  table.columns = listed.data();
  table.no_autofilter = LXW_TRUE;
  worksheet_add_table(sheet, 0, 0, Row(used.lastRow), Column(used.lastColumn), &table);
  lxw_worksheet* dates = writer.AddSheet("Dates");
  lxw_datetime day = kDay;
  worksheet_write_datetime(dates, 0, 0, &day, writer.date);
  day.day = 30;
  worksheet_write_datetime(dates, 1, 0, &day, writer.date);
  worksheet_hide(dates);
  workbook_define_name(writer.book, "Rain", "=Data!$B$2:$B$101");
  workbook_define_name(writer.book, "Rain_limit", "=12.5");
  WriteFormulas(writer, "Excel", excel);
  WriteFormulas(writer, "Addin", addin);
  writer.Close();
}

void WriteCells(std::int32_t rows, std::int32_t columns, const std::string& out) {
  BookWriter writer(out);
  lxw_worksheet* sheet = writer.AddSheet("Cells");
  for (std::int32_t row = 0; row < rows; ++row)
    for (std::int32_t column = 0; column < columns; ++column) {
      const std::string next = std::to_string(row + 1);
      if (column % 10 == 9)
        worksheet_write_formula(sheet, Row(row), Column(column), ("=A" + next + "+1").c_str(), nullptr);
      else if (column % 10 == 8)
        worksheet_write_string(sheet, Row(row), Column(column), ("item " + std::to_string(row % 1000)).c_str(),
                               nullptr);
      else
        worksheet_write_number(sheet, Row(row), Column(column), (row * 7919 + column * 104729) % 1000003 / 8.0,
                               nullptr);
    }
  writer.Close();
}

}  // namespace

int main(int count, char** words) try {
  const std::string kind = count > 1 ? words[1] : "";
  if (kind == "functions" && count == 6)
    WriteFunctions(words[2], words[3], words[4], words[5]);
  else if (kind == "cells" && count == 5)
    WriteCells(std::stoi(words[2]), std::stoi(words[3]), words[4]);
  else
    throw std::runtime_error("unusable arguments");
  return 0;
} catch (const std::exception& error) {
  std::cerr << "book_writer: " << error.what() << std::endl;
  return 2;
}
