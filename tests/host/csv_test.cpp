// CSV into cells.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "host/books/csv_book.h"
#include "host/files/csv_request.h"
#include "host/files/csv_rewriting.h"
#include "host/files/file_text.h"
#include "host/process/output_file.h"
#include "host/text/path_text.h"
#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

class CsvTest : public ModelTest {
 protected:
  /// What the sheet holds after loading at A1, or the error.
  std::string Loaded(std::string_view text, const std::string& options = "") {
    sheet.Clear({0, kXlMaxRows - 1, 0, kXlMaxColumns - 1});
    const auto result = LoadCsv(text, sheet, 0, 0, ParseCsvRequest("f.csv " + options)->options);
    if (const auto* error = std::get_if<CsvError>(&result)) return error->ToString("f.csv");
    const auto& extent = std::get<CsvExtent>(result);
    return extent.rows == 0 ? "nothing" : PrintLiteral(sheet.Read({0, extent.rows - 1, 0, extent.columns - 1}));
  }
};

TEST_F(CsvTest, TellsTypesApart) {
  EXPECT_EQ(Loaded("1,-2.5,+3,1e3,.5,5.,007,1e-320,-123456789.87654321,1234567890123456789e-2\n"),
            "{1,-2.5,3,1000,0.5,5,7,0,-123456789.876543,12345678901234500}");
  EXPECT_EQ(Loaded("1x, 1,1 ,0x1F,inf,nan,-,.,1e,1e999,--1,$5"),
            R"({"1x"," 1","1 ","0x1F","inf","nan","-",".","1e","1e999","--1","$5"})");
  EXPECT_EQ(Loaded("TRUE,false,True ,#N/A"), R"({TRUE,FALSE,"True ","#N/A"})");
  EXPECT_EQ(Loaded("a,,\"\",\"5\",\"true\"\n"), R"({"a",empty,empty,5,TRUE})");
}

TEST_F(CsvTest, ReadsQuotesAndLineEnds) {
  EXPECT_EQ(Loaded("\"a,b\",\"say \"\"hi\"\"\",\"\"\"\"\n"), R"({"a,b","say ""hi""",""""})");
  EXPECT_EQ(Loaded("\"two\r\nlines\",x\r\n1,2\r\n"), R"({"two"U+000DU+000A"lines","x";1,2})");
  EXPECT_EQ(Loaded("1\n2\r3\r\n4"), "{1;2;3;4}");
  EXPECT_EQ(Loaded("\xEF\xBB\xBF\"a\",b"), R"({"a","b"})");
  EXPECT_EQ(Loaded("1\n\n3\n\n"), "{1;empty;3;empty}");
  EXPECT_EQ(Loaded("a\"b,c\n"), R"({"a""b","c"})");
  EXPECT_EQ(Loaded("\u00E4,\u20AC\U0001F600\n"), "{\"\u00E4\",\"\u20AC\U0001F600\"}");
  EXPECT_EQ(Loaded(""), "nothing");
  EXPECT_EQ(Loaded("\xEF\xBB\xBF"), "nothing");
}

TEST_F(CsvTest, SaysWhereAFaultIs) {
  EXPECT_EQ(Loaded("1,2\n3,\"abc\n"), "f.csv:2:3: expected a closing quote for this field, found the end");
  EXPECT_EQ(Loaded("\"a\nb\nc\",\"x\"y\n"),
            "f.csv:3:7: expected ',' or the end of the record after the closing quote, found 'y'");
  EXPECT_EQ(Loaded("1\r\n2,\xFFz\r\n"), "f.csv:2:3: expected UTF-8 in this field");
  EXPECT_EQ(Loaded("\xEF\xBB\xBF,\xFF"), "f.csv:1:2: expected UTF-8 in this field");
  EXPECT_EQ(Loaded("x," + std::string(40'000, 'y')),
            "f.csv:1:3: expected at most 32767 characters in a cell, found 40000");
  EXPECT_EQ(Loaded(std::string(16'384, ',')), "f.csv:1:16385: expected at most 16384 fields in a record, found more");
  const auto late = LoadCsv("1\n2\n3\n", sheet, kXlMaxRows - 2, 0);
  EXPECT_EQ(std::get<CsvError>(late).line, 3);
  EXPECT_EQ(std::get<CsvError>(LoadCsvFile("no/such/file.csv", sheet, 0, 0)).ToString("x"),
            "x: it cannot be read: No such file or directory");
  EXPECT_EQ(std::get<CsvError>(LoadCsvFile(".", sheet, 0, 0)).line, 0);
}

TEST_F(CsvTest, KeepsTextsAndSplitsAsTold) {
  EXPECT_EQ(Loaded("No;b;c\n007;1,5;TRUE\n;\"x;\"\"y\";3", "separator ; text A,C"),
            R"({"No","b","c";"007","1,5","TRUE";empty,"x;""y","3"})");
  EXPECT_EQ(Loaded("1\t2\t3\n4,5\t6\t7", "text B:XFD separator tab"), R"({1,"2","3";"4,5","6","7"})");
  EXPECT_EQ(Loaded("\u00E4 no,B,\u00C4 NO\n1,2,3\n", "text \"\u00C4 no\""),
            "{\"\u00E4 no\",\"B\",\"\u00C4 NO\";\"1\",2,\"3\"}");
  EXPECT_EQ(Loaded("1\u00A72 3\u00A7", "separator \u00A7"), R"({1,"2 3",empty})");
  EXPECT_EQ(Loaded("a,b\n", "text \"c\""), "f.csv:1:1: expected a column labelled \"c\", found none; near names: a, b");
}

TEST_F(CsvTest, AnEndThatIsNoOptionBelongsToThePath) {
  for (const auto& [written, path] : CasesOf(R"(
      my data.csv separator ; -> my data.csv | data.csv separator ;; -> data.csv separator ;; | separator ; -> separator ;
      a text A text B -> a text A | "a.csv" separator " " text A -> a.csv | data.csv text A1 -> data.csv text A1
      "a text B" -> a text B | C:\x y\text.csv text "say ""text A""", B -> C:\x y\text.csv | x text XFE -> x text XFE
      context A -> context A | text A separator tab -> text A)"))
    EXPECT_EQ(ParseCsvRequest(written)->path, path);
  EXPECT_EQ(ParseCsvRequest("\"a.csv\" seperator ;").Error().ToString(),
            "line 1, column 9: expected separator C, text COLUMNS or the end behind the path, found 'seperator ;'");
}

TEST_F(CsvTest, ReplacesItsExtentOnly) {
  Set("A1:D4", "9");
  SetFormula("B2", "=1");
  LoadCsv("1\n2,3\n4", sheet, 1, 1);
  EXPECT_EQ(Held("A1:D5"), "{9,9,9,9;9,1,empty,9;9,2,3,9;9,4,empty,9;empty,empty,empty,empty}");
  EXPECT_EQ(sheet.FindFormula({1, 1}), nullptr);
}

// What a file becomes: each formula in it is a reference to a literal, by its place among these; "?" is not calculated.
TEST_F(CsvTest, KeepsWhatNoFormulaFills) {
  const auto path = std::filesystem::temp_directory_path() / "qcalc-rewritten.csv";
  const auto rewritten = [&](std::string_view text) {
    SheetResults results{&sheet, {}};
    CsvOptions options;
    std::vector<Value> values;
    options.takeFormula = [&](CellPosition at, std::string_view formula) {
      values.push_back(formula == "?" ? Value() : *ParseLiteral(formula));
      const Area cell = Area::OfCell(at.row, at.column);
      results.formulas.push_back({at, formula != "?", cell, cell});
      if (values.back().IsArray())
        results.formulas.back().fillsNow =
            Area::OfSize(at.row, at.column, values.back().AsArray()->Rows(), values.back().AsArray()->Columns());
    };
    sheet.Clear({0, kXlMaxRows - 1, 0, kXlMaxColumns - 1});
    LoadCsv(text, sheet, 0, 0, options);
    for (std::size_t i = 0; i < values.size(); ++i) sheet.Set(results.formulas[i].fillsNow, values[i]);
    OutputFile file(path);
    RewriteCsv(file, text, results);
    file.Finish();
    return std::get<std::string>(ReadFile(path));
  };
  EXPECT_EQ(rewritten("\xEF\xBB\xBF 007,\"1,50\",\"=\"\"a,b\"\"\"\r\n=,2026-01-02,=?\r\n"),
            "\xEF\xBB\xBF 007,\"1,50\",\"a,b\"\r\n=,2026-01-02,=?\r\n");
  EXPECT_EQ(rewritten("1\n\"={1,2;3,4}\"\n\n01,,\n"), "1\n1,2\n3,4\n01,,\n");
  EXPECT_EQ(rewritten("x,\"={1;2;3}\",\"={TRUE,#N/A}\""), "x,1,TRUE,#N/A\n,2\n,3");
  std::filesystem::remove(path);
}

TEST_F(CsvTest, AsABook) {
  const auto path = std::filesystem::temp_directory_path() / "qcalc [a]-a name that is longer than any.csv";
  const auto read = [&](const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
    return ReadCsvBook(path, workbooks, XTEXT("csv"));
  };
  const CsvBook book = read("\"=SUM(B1,\"\"x\"\")\",007,=\n2026-01-02,=1");
  const StoredSheet& stored = book.stored.sheets.at(0);
  EXPECT_EQ(stored.sheet->Name(), XTEXT("qcalc _a_-a name that is longer"));
  EXPECT_EQ(PrintLiteral(stored.sheet->Read(AreaOf("A1:C2"))), R"({empty,7,"=";"2026-01-02",empty,empty})");
  EXPECT_EQ(stored.formulas.size(), 2u);
  EXPECT_EQ(stored.formulas[0].text + stored.formulas[1].text, "SUM(B1,\"x\")1");
  workbooks.Close(*workbooks.FindBook(XTEXT("csv")));
  // A few cells in each of all columns, each of which would take the memory of 1,024.
  std::string wide, strewn;
  for (int column = 0; column < kXlMaxColumns; ++column) wide += column ? ",1" : "1";
  for (int block = 0; block < 3; ++block) strewn += wide + std::string(1024, '\n');
  for (const std::string& refused : {std::string("1,\"x"), std::string("=\xFF"), std::string(16'384, ','), strewn})
    EXPECT_THROW(read(refused), BookRefused);
  EXPECT_EQ(workbooks.FindBook(XTEXT("csv")), nullptr);
  std::filesystem::remove(path);
}

TEST_F(CsvTest, LoadsAFileWithWideName) {
  const auto path = std::filesystem::temp_directory_path() / u8"qcalc-\u00E4\u20AC.csv";
  std::ofstream(path, std::ios::binary) << "7,x\n";
  const std::u8string name = path.u8string();
  LoadCsvFile(PathOf(std::string(name.begin(), name.end())), sheet, 0, 0);
  std::filesystem::remove(path);
  EXPECT_EQ(Held("A1:B1"), R"({7,"x"})");
}

}  // namespace
}  // namespace qcalc
