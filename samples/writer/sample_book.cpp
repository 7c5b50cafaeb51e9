#include "samples/writer/sample_book.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <regex>
#include <stdexcept>

#include "host/files/csv.h"
#include "host/text/utf8.h"
#include "host/workbook/workbooks.h"
#include "samples/writer/styles.h"
#include "samples/writer/text_lines.h"

namespace samples {
namespace {

constexpr const char* kStart = "Start here";
constexpr int kStartNameWidth = 24, kStartTextWidth = 92;
constexpr double kLineHeight = 15;
constexpr double kPageWidth = 940, kPageHeight = 640;  // of A4 within its margins, in pixels, lying

/// A column is as wide as so many digits; of letters as they come in texts it takes a tenth more.
int CharactersIn(int width) { return width * 11 / 10; }

constexpr const char* kOfAddin =
    "The formulas call the add-in Quillmere4.xll: load it first. Without it Excel shows #NAME? as soon as it "
    "calculates them. In the pale yellow cells you can write values of your own; the pale green ones hold what "
    "formulas give.";

lxw_row_t Row(std::int32_t row) { return static_cast<lxw_row_t>(row); }
lxw_col_t Column(std::int32_t column) { return static_cast<lxw_col_t>(column); }

const std::string& FormatOf(const std::vector<std::string>& formats, std::int32_t column) {
  static const std::string none;
  return static_cast<std::size_t>(column) < formats.size() ? formats[static_cast<std::size_t>(column)] : none;
}

std::optional<lxw_datetime> ReadDate(const std::string& text) {
  static const std::regex pattern("(\\d{4})[-/](\\d\\d)[-/](\\d\\d)");
  std::smatch match;
  if (!std::regex_match(text, match, pattern)) return std::nullopt;
  return lxw_datetime{std::stoi(match[1]), std::stoi(match[2]), std::stoi(match[3]), 0, 0, 0};
}

class BookWriter {
 public:
  BookWriter(const Book& book, const std::string& dataFolder, const std::string& path, Diagnostics& diagnostics)
      : book_(book), data_(dataFolder), diagnostics_(diagnostics), to_(workbook_new(path.c_str())), styles_(to_) {}

  void Write() {
    lxw_doc_properties properties{};
    std::string title = book_.title, author = "Quillmere";
    properties.title = title.data();
    properties.author = author.data();
    properties.created = 1'000'000'000;
    workbook_set_properties(to_, &properties);
    WriteStart();
    for (const Sheet& sheet : book_.sheets) {
      lxw_worksheet* to = AddSheet(sheet.name);
      for (std::size_t column = 0; column < sheet.widths.size(); ++column)
        worksheet_set_column(to, Column(static_cast<int>(column)), Column(static_cast<int>(column)),
                             static_cast<double>(sheet.widths[column]), nullptr);
      sheet.data.empty() ? WriteExamples(sheet, to) : WriteData(sheet, to);
      WriteExtras(sheet, to);
    }
    if (const lxw_error error = workbook_close(to_)) throw std::runtime_error(lxw_strerror(error));
  }

 private:
  lxw_worksheet* AddSheet(const std::string& name) {
    lxw_worksheet* sheet = workbook_add_worksheet(to_, name.c_str());
    if (!sheet) throw std::runtime_error("no sheet can have the name '" + name + "'");
    worksheet_set_landscape(sheet);
    worksheet_set_paper(sheet, 9);  // A4
    worksheet_fit_to_pages(sheet, 1, 0);
    worksheet_set_footer(sheet, "&L&A&RPage &P of &N");
    return sheet;
  }

  void WriteText(lxw_worksheet* to, std::int32_t row, std::int32_t column, const std::string& text, Style style) {
    worksheet_write_string(to, Row(row), Column(column), text.c_str(), styles_.Get(style));
  }

  /// The title, then parts with a heading each: what is shown, the sheets, what to try, the sources.
  void WriteStart() {
    lxw_worksheet* to = AddSheet(kStart);
    worksheet_gridlines(to, LXW_HIDE_ALL_GRIDLINES);
    worksheet_fit_to_pages(to, 1, 1);
    worksheet_set_column(to, 0, 0, kStartNameWidth, nullptr);
    worksheet_set_column(to, 1, 1, kStartTextWidth, nullptr);
    WriteText(to, 0, 0, book_.title, Style::kTitle);
    worksheet_set_row(to, 0, 30, nullptr);
    std::int32_t row = 1;
    const auto paragraph = [&](const std::string& text) {
      worksheet_merge_range(to, Row(row), 0, Row(row), 1, text.c_str(), styles_.Get(Style::kText));
      worksheet_set_row(to, Row(row), kLineHeight * LinesOf(text, CharactersIn(kStartNameWidth + kStartTextWidth)) + 5,
                        nullptr);
      ++row;
    };
    const auto heading = [&](const char* text) {
      ++row;
      worksheet_merge_range(to, Row(row), 0, Row(row), 1, text, styles_.Get(Style::kHeading));
      worksheet_set_row(to, Row(row++), 21, nullptr);
    };
    for (const std::string& text : book_.introduction) paragraph(text);
    heading("The sheets");
    for (const Sheet& sheet : book_.sheets) {
      worksheet_write_url(to, Row(row), 0, ("internal:'" + sheet.name + "'!A1").c_str(), styles_.Get(Style::kLink));
      WriteText(to, row, 0, sheet.name, Style::kLink);
      WriteText(to, row, 1, sheet.about, Style::kText);
      worksheet_set_row(to, Row(row++), kLineHeight * LinesOf(sheet.about, CharactersIn(kStartTextWidth)) + 3, nullptr);
    }
    heading("What to try");
    for (const std::string& text : book_.toTry) paragraph("•  " + text);
    heading("Where the data are from");
    for (const std::string& text : book_.sources) paragraph(text);
    heading("The add-in");
    paragraph(kOfAddin);
  }

  void WriteData(const Sheet& sheet, lxw_worksheet* to) {
    qcalc::Workbooks workbooks;
    qcalc::Sheet& from = workbooks.BookNamed(XTEXT("b")).SheetNamed(XTEXT("s"));
    qcalc::CsvOptions options;
    options.textColumns.labels = sheet.textColumns;
    const std::string path = (std::filesystem::path(data_) / sheet.data).string();
    const auto loaded = qcalc::LoadCsvFile(path, from, 0, 0, options);
    if (const auto* error = std::get_if<qcalc::CsvError>(&loaded)) {
      diagnostics_.Add(sheet.place, error->ToString(path));
      return;
    }
    std::vector<bool> isDate(static_cast<std::size_t>(std::get<qcalc::CsvExtent>(loaded).columns));
    from.VisitUsed(from.UsedArea().value(), [&](std::int32_t row, std::int32_t column, const qcalc::CellView& cell) {
      const std::string& numbers = FormatOf(sheet.formats, column);
      lxw_format* format = styles_.Get(row == 0 ? Style::kDataHeader : Style::kData, numbers);
      if (cell.IsNumber()) {
        worksheet_write_number(to, Row(row), Column(column), cell.AsNumber(), format);
        return;
      }
      const std::string text = qcalc::ToUtf8(cell.AsText());
      const auto& dates = sheet.dateColumns;
      if (row == 0)
        isDate[static_cast<std::size_t>(column)] = std::find(dates.begin(), dates.end(), text) != dates.end();
      auto date = isDate[static_cast<std::size_t>(column)] ? ReadDate(text) : std::nullopt;
      if (date)
        worksheet_write_datetime(to, Row(row), Column(column), &*date, format);
      else
        worksheet_write_string(to, Row(row), Column(column), text.c_str(), format);
    });
    for (const std::int64_t row : sheet.hiddenRows) {
      lxw_row_col_options hidden{};
      hidden.hidden = LXW_TRUE;
      worksheet_set_row_opt(to, Row(static_cast<std::int32_t>(row) - 1), LXW_DEF_ROW_HEIGHT, nullptr, &hidden);
    }
    worksheet_freeze_panes(to, 1, 0);
    worksheet_repeat_rows(to, 0, 0);
  }

  void WriteExamples(const Sheet& sheet, lxw_worksheet* to) {
    worksheet_gridlines(to, LXW_HIDE_ALL_GRIDLINES);
    WriteText(to, 0, 0, sheet.name, Style::kTitle);
    worksheet_set_row(to, 0, 30, nullptr);
    worksheet_freeze_panes(to, 1, 0);
    std::int32_t free = 2;  // the first row that nothing stands in
    std::vector<lxw_row_t> breaks;
    const int rowsOfPage = SetScale(sheet, to);
    std::int32_t page = 0;  // where the last page begins
    for (const Example& example : sheet.examples) {
      if (example.row < free)
        diagnostics_.Add(example.place, "the example begins above row " + std::to_string(free + 1) +
                                            ", up to which the one before it reaches");
      free = WriteExample(sheet, example, to) + 2;
      if (free - page > rowsOfPage && example.row > 2) {
        page = example.row;
        breaks.push_back(Row(page));
      }
    }
    breaks.push_back(0);  // the library's end of a list
    worksheet_set_h_pagebreaks(to, breaks.data());
  }

  /// Makes the columns fit on a page, on which examples are to stay whole: breaks between them count in Excel only
  /// beside a scale of one's own. How many rows a page has then.
  int SetScale(const Sheet& sheet, lxw_worksheet* to) {
    std::int32_t last = 0;
    for (const Example& example : sheet.examples) {
      for (const Input& input : example.inputs) last = std::max(last, input.cells.lastColumn);
      for (const Result& result : example.results) last = std::max(last, result.fills.lastColumn);
    }
    const double scale = std::min(1.0, kPageWidth / PixelsOf(sheet, 0, last));
    worksheet_set_print_scale(to, static_cast<std::uint16_t>(scale * 100));
    worksheet_set_margins(to, 0.5, 0.5, 0.6, 0.6);
    return static_cast<int>(kPageHeight / scale / 20) - 2;  // headings are higher
  }

  static double PixelsOf(const Sheet& sheet, std::int32_t first, std::int32_t last) {
    double wide = 0;
    for (std::int32_t column = first; column <= last; ++column)
      wide += Column(column) < sheet.widths.size() ? static_cast<double>(sheet.widths[Column(column)]) * 7 + 5 : 64;
    return wide;
  }

  /// The last row that the example takes.
  std::int32_t WriteExample(const Sheet& sheet, const Example& example, lxw_worksheet* to) {
    const int width = sheet.widths.empty() ? 10 : static_cast<int>(sheet.widths[0]);
    WriteText(to, example.row, 0, example.heading, Style::kHeading);
    worksheet_set_row(to, Row(example.row), 21, nullptr);
    std::int32_t row = example.row + 1, last = example.row;
    const auto paragraph = [&](const std::string& text, Style style, int characters) {
      const std::int32_t end = row + LinesOf(text, characters) - 1;
      if (end > row)
        worksheet_merge_range(to, Row(row), 0, Row(end), 0, text.c_str(), styles_.Get(style));
      else
        WriteText(to, row, 0, text, style);
      row = end + 1;
    };
    paragraph(example.text, Style::kText, CharactersIn(width));
    for (const Input& input : example.inputs) {
      WriteInput(input, to);
      last = std::max(last, input.cells.lastRow);
    }
    for (const Result& result : example.results) {
      if (!result.isQuiet) paragraph(result.formula, Style::kFormulaText, width - 2);
      WriteResult(result, to);
      last = std::max(last, result.fills.lastRow);
    }
    return std::max(last, row - 1);
  }

  void WriteInput(const Input& input, lxw_worksheet* to) {
    for (std::int32_t row = 0; row < input.cells.Rows() && Row(row) < input.rows.size(); ++row)
      for (std::int32_t column = 0; column < input.cells.Columns(); ++column) {
        const auto& cells = input.rows[Row(row)];
        if (Column(column) >= cells.size()) break;
        const bool isHeader = input.hasHeader && row == 0;
        WriteConstant(to, input.cells.firstRow + row, input.cells.firstColumn + column, cells[Column(column)],
                      isHeader ? Style::kInputHeader : Style::kInput, FormatOf(input.formats, column));
      }
  }

  void WriteConstant(lxw_worksheet* to, std::int32_t row, std::int32_t column, const Constant& constant, Style style,
                     const std::string& numbers) {
    lxw_format* format = styles_.Get(style, numbers);
    if (const auto* number = std::get_if<double>(&constant)) {
      worksheet_write_number(to, Row(row), Column(column), *number, format);
    } else if (const auto* truth = std::get_if<bool>(&constant)) {
      worksheet_write_boolean(to, Row(row), Column(column), *truth, format);
    } else if (const auto* text = std::get_if<std::string>(&constant)) {
      auto date = ReadDate(*text);
      if (date)
        worksheet_write_datetime(to, Row(row), Column(column), &*date,
                                 styles_.Get(style, numbers.empty() ? "yyyy-mm-dd" : numbers));
      else
        worksheet_write_string(to, Row(row), Column(column), text->c_str(), format);
    } else {
      worksheet_write_blank(to, Row(row), Column(column), format);
    }
  }

  void WriteResult(const Result& result, lxw_worksheet* to) {
    const Area& fills = result.fills;
    const auto format = [&](std::int32_t row, std::int32_t column) {
      const bool isHeader = result.hasHeader && row == fills.firstRow;
      return styles_.Get(isHeader ? Style::kResultHeader : Style::kResult,
                         FormatOf(result.formats, column - fills.firstColumn));
    };
    for (std::size_t column = 0; column < result.labels.size(); ++column)
      worksheet_write_string(to, Row(fills.firstRow - 1), Column(fills.firstColumn + static_cast<int>(column)),
                             result.labels[column].c_str(),
                             styles_.Get(Style::kResultHeader, FormatOf(result.formats, static_cast<int>(column))));
    lxw_format* first = format(fills.firstRow, fills.firstColumn);
    if (!result.spills) {
      worksheet_write_formula(to, Row(fills.firstRow), Column(fills.firstColumn), result.stored.c_str(), first);
      return;
    }
    worksheet_write_dynamic_array_formula(to, Row(fills.firstRow), Column(fills.firstColumn), Row(fills.lastRow),
                                          Column(fills.lastColumn), result.stored.c_str(), first);
    // The library has put zeros into the other cells.
    for (std::int32_t row = fills.firstRow; row <= fills.lastRow; ++row)
      for (std::int32_t column = fills.firstColumn; column <= fills.lastColumn; ++column)
        if (row != fills.firstRow || column != fills.firstColumn)
          worksheet_write_blank(to, Row(row), Column(column), format(row, column));
  }

  void WriteExtras(const Sheet& sheet, lxw_worksheet* to) {
    for (const Note& note : sheet.notes)
      worksheet_write_comment(to, Row(note.at.firstRow), Column(note.at.firstColumn), note.text.c_str());
    for (const Chart& chart : sheet.charts) {
      lxw_chart* drawn = workbook_add_chart(to_, chart.type == "line" ? LXW_CHART_LINE : LXW_CHART_COLUMN);
      for (const Series& series : chart.series) {
        lxw_chart_series* line = chart_add_series(
            drawn, series.categories.empty() ? nullptr : series.categories.c_str(), series.values.c_str());
        chart_series_set_name(line, series.name.c_str());
        // What was measured stands back behind what is made of it.
        const bool isFirst = &series == &chart.series.front();
        lxw_chart_line look{};
        look.color = isFirst ? 0x9DB7DD : 0xC55A11;
        look.width = isFirst ? 1.0F : 2.25F;
        if (chart.type == "line") chart_series_set_line(line, &look);
      }
      chart_axis_set_label_position(drawn->x_axis, LXW_CHART_AXIS_LABEL_POSITION_LOW);
      if (!chart.categoryFormat.empty()) chart_axis_set_num_format(drawn->x_axis, chart.categoryFormat.c_str());
      if (chart.labelEvery > 0) {
        chart_axis_set_interval_unit(drawn->x_axis, static_cast<std::uint16_t>(chart.labelEvery));
        chart_axis_set_interval_tick(drawn->x_axis, static_cast<std::uint16_t>(chart.labelEvery));
      }
      chart_title_set_name(drawn, chart.title.c_str());
      chart_legend_set_position(drawn, LXW_CHART_LEGEND_BOTTOM);
      InsertChart(sheet, chart.at, drawn, to);
    }
  }

  /// Over just those cells: a chart is measured in pixels, of which its own size is 480 by 288.
  void InsertChart(const Sheet& sheet, const Area& at, lxw_chart* chart, lxw_worksheet* to) {
    lxw_chart_options options{};
    options.x_scale = PixelsOf(sheet, at.firstColumn, at.lastColumn) / 480;
    options.y_scale = at.Rows() * 20 / 288.0;
    worksheet_insert_chart_opt(to, Row(at.firstRow), Column(at.firstColumn), chart, &options);
  }

  const Book& book_;
  const std::string data_;
  Diagnostics& diagnostics_;
  lxw_workbook* to_;
  Styles styles_;
};

}  // namespace

void WriteBook(const Book& book, const std::string& dataFolder, const std::string& path, Diagnostics& diagnostics) {
  BookWriter(book, dataFolder, path, diagnostics).Write();
  if (!diagnostics.All().empty()) std::filesystem::remove(path);
}

}  // namespace samples
