#include "samples/writer/description.h"

#include <algorithm>

#include "functions/generator/strict_table.h"
#include "host/xlsx/sheet_reader.h"
#include "samples/writer/formulas.h"

namespace samples {
namespace {

using quillmere::generator::StrictTable;

constexpr int kPictureRows = 14, kPictureColumns = 9;  // what a help page has room for

/// What a description's tables are read with.
struct Reading {
  const std::string& file;
  const std::set<std::string>& functions;
  Diagnostics& diagnostics;

  StrictTable Table(const toml::table& table, const char* what, std::initializer_list<std::string_view> known) const {
    return StrictTable(table, what, file, diagnostics, known);
  }
};

Area AreaOf(const StrictTable& table, std::string_view key) {
  const std::string text = table.Text(key);
  const auto area = qcalc::AreaOfRef(text);
  const bool isUsable = area && area->IsOnSheet();
  if (!isUsable && table.Has(key)) table.ComplainAt(key, "'" + text + "' names no cells");
  return isUsable ? *area : Area{};
}

void ReadRows(const StrictTable& table, Input& input) {
  const toml::array* rows = table.Array("rows");
  if (!rows) return;
  for (const toml::node& row : *rows) {
    const toml::array* cells = row.as_array();
    if (!cells) {
      table.Complain(row, "a row is an array");
      continue;
    }
    std::vector<Constant>& to = input.rows.emplace_back();
    for (const toml::node& cell : *cells) {
      if (const auto truth = cell.value_exact<bool>())
        to.emplace_back(*truth);
      else if (const auto text = cell.value_exact<std::string>())
        to.emplace_back(text->empty() ? Constant() : Constant(*text));
      else if (const auto number = cell.value<double>())
        to.emplace_back(*number);
      else
        table.Complain(cell, "a cell is a number, true, false or a text");
    }
  }
}

Input ReadInput(const Reading& reading, const toml::table& from) {
  const StrictTable table = reading.Table(from, "an input", {"cells", "rows", "header", "formats"});
  Input input;
  input.cells = AreaOf(table, "cells");
  input.hasHeader = table.OptionalBoolean("header");
  input.formats = table.OptionalTexts("formats");
  ReadRows(table, input);
  const auto fits = [&](const auto& row) { return static_cast<int>(row.size()) == input.cells.Columns(); };
  if (static_cast<int>(input.rows.size()) != input.cells.Rows() ||
      !std::all_of(input.rows.begin(), input.rows.end(), fits))
    table.ComplainAt("rows", "the rows do not fill the cells");
  return input;
}

Result ReadResult(const Reading& reading, const toml::table& from) {
  const StrictTable table =
      reading.Table(from, "a result", {"fills", "formula", "header", "quiet", "errors", "formats", "labels"});
  Result result;
  result.fills = AreaOf(table, "fills");
  result.formula = table.Text("formula");
  result.hasHeader = table.OptionalBoolean("header");
  result.isQuiet = table.OptionalBoolean("quiet");
  table.OptionalBoolean("errors");  // that error values are meant is for the tests
  result.formats = table.OptionalTexts("formats");
  result.labels = table.OptionalTexts("labels");
  if (!result.labels.empty() && result.fills.firstRow == 0) table.ComplainAt("labels", "there is no row above");
  if (!result.formula.starts_with('=')) table.ComplainAt("formula", "a formula begins with =");
  const StoredFormula stored = StoreFormula(result.formula, reading.functions);
  result.stored = stored.text;
  result.spills = stored.callsAddin;
  if (!result.spills && result.fills.Rows() * result.fills.Columns() > 1)
    table.ComplainAt("fills", "a formula without a function of the add-in fills one cell");
  return result;
}

Example ReadExample(const Reading& reading, const toml::table& from) {
  const StrictTable table = reading.Table(from, "an example", {"row", "heading", "text", "input", "result"});
  Example example;
  example.place = table.OwnPlace();
  example.row = static_cast<int>(table.Integer("row", 1, kXlMaxRows)) - 1;
  example.heading = table.Text("heading");
  example.text = table.Text("text");
  for (const toml::table* input : table.OptionalTables("input")) example.inputs.push_back(ReadInput(reading, *input));
  for (const toml::table* result : table.OptionalTables("result"))
    example.results.push_back(ReadResult(reading, *result));
  return example;
}

Chart ReadChart(const Reading& reading, const toml::table& from) {
  const StrictTable table =
      reading.Table(from, "a chart", {"at", "title", "type", "series", "category_format", "label_every"});
  Chart chart;
  chart.at = AreaOf(table, "at");
  chart.title = table.Text("title");
  chart.type = table.Text("type");
  if (chart.type != "line" && chart.type != "column") table.ComplainAt("type", "a chart is a line or a column");
  chart.categoryFormat = table.OptionalText("category_format").value_or("");
  chart.labelEvery = static_cast<int>(table.OptionalInteger("label_every", 1, kXlMaxRows, 0));
  for (const toml::table* series : table.OptionalTables("series")) {
    const StrictTable one = reading.Table(*series, "a series", {"name", "values", "categories"});
    chart.series.push_back({one.Text("name"), one.Text("values"), one.OptionalText("categories").value_or("")});
  }
  return chart;
}

Sheet ReadSheet(const Reading& reading, const toml::table& from) {
  const StrictTable table = reading.Table(
      from, "a sheet",
      {"name", "about", "widths", "data", "texts", "dates", "formats", "hidden_rows", "example", "note", "chart"});
  Sheet sheet;
  sheet.place = table.OwnPlace();
  sheet.name = table.Text("name");
  sheet.about = table.Text("about");
  sheet.widths = table.Integers("widths");
  sheet.data = table.OptionalText("data").value_or("");
  sheet.textColumns = table.OptionalTexts("texts");
  sheet.dateColumns = table.OptionalTexts("dates");
  sheet.formats = table.OptionalTexts("formats");
  if (table.Has("hidden_rows")) sheet.hiddenRows = table.Integers("hidden_rows");
  for (const toml::table* example : table.OptionalTables("example"))
    sheet.examples.push_back(ReadExample(reading, *example));
  if (sheet.data.empty() == sheet.examples.empty()) table.ComplainAt("name", "a sheet has either data or examples");
  for (const toml::table* note : table.OptionalTables("note")) {
    const StrictTable one = reading.Table(*note, "a note", {"at", "text"});
    sheet.notes.push_back({AreaOf(one, "at"), one.Text("text")});
  }
  for (const toml::table* chart : table.OptionalTables("chart")) sheet.charts.push_back(ReadChart(reading, *chart));
  return sheet;
}

/// A picture is for the help pages: here it is only seen to that it can show what it should.
void CheckPicture(const Reading& reading, const toml::table& from, const Book& book) {
  const StrictTable table = reading.Table(from, "a picture", {"sheet", "range", "caption"});
  const std::string name = table.Text("sheet");
  const Area range = AreaOf(table, "range");
  table.Text("caption");
  if (range.Rows() > kPictureRows || range.Columns() > kPictureColumns)
    table.ComplainAt("range", "a picture has at most 14 rows and 9 columns");
  for (const Sheet& sheet : book.sheets) {
    if (sheet.name != name) continue;
    for (const Example& example : sheet.examples)
      for (const Result& result : example.results)
        if (range.Contains(result.fills.firstRow, result.fills.firstColumn)) return;
  }
  table.ComplainAt("range", "no formula of '" + name + "' begins in the picture");
}

}  // namespace

Book ReadBook(const std::string& path, std::string_view text, const std::set<std::string>& functions,
              Diagnostics& diagnostics) {
  Book book;
  const std::optional<toml::table> root = ParseToml(path, text, diagnostics);
  if (!root) return book;
  const Reading reading{path, functions, diagnostics};
  const StrictTable table =
      reading.Table(*root, "a book", {"title", "introduction", "try", "sources", "sheet", "picture"});
  book.title = table.Text("title");
  book.introduction = table.Texts("introduction");
  book.toTry = table.Texts("try");
  book.sources = table.Texts("sources");
  for (const toml::table* sheet : table.OptionalTables("sheet")) book.sheets.push_back(ReadSheet(reading, *sheet));
  for (const toml::table* picture : table.OptionalTables("picture")) CheckPicture(reading, *picture, book);
  return book;
}

}  // namespace samples
