// Books with new values in their cells.
#include "host/xlsx/xlsx_writer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "host/process/output_file.h"
#include "host/xlsx/cell_markup.h"
#include "host/zip/zip_writer.h"
#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

class XlsxWriterTest : public ModelTest {
 protected:
  XlsxWriterTest() : path(std::filesystem::temp_directory_path() / "qcalc-rewritten.xlsx") {}
  ~XlsxWriterTest() override { std::filesystem::remove(path); }

  /// Notes that the formula at the first cell of `now`, calculated if so, filled `before` and fills `now`.
  void Result(std::string_view before, std::string_view now, bool isCalculated = true) {
    const Area area = AreaOf(now);
    results.formulas.push_back({{area.firstRow, area.firstColumn}, isCalculated, AreaOf(before), area});
  }

  /// What becomes of a book with that sheet, beside a part that stays.
  std::string Rewritten(std::string_view sheetText) {
    ZipEntry kept, part;
    kept.name = "kept.bin";
    part.name = "xl/s.xml";
    {
      OutputFile file(path);
      ZipWriter writer(file);
      writer.Begin(kept);
      writer.Write(std::string(100'000, 'k'));
      writer.End();
      writer.Begin(part);
      writer.Write(sheetText);
      writer.End();
      writer.Finish();
      file.Finish();
    }
    const CalculatedPart parts[] = {{"xl/s.xml", results}};
    RewriteXlsx(path, parts, path);
    const ZipReader reader(path);
    EXPECT_EQ(reader.ReadWhole(*reader.Find("kept.bin"), 1'000'000), std::string(100'000, 'k'));
    return reader.ReadWhole(*reader.Find("xl/s.xml"), 1'000'000);
  }

  std::filesystem::path path;
  SheetResults results{&sheet, {}};
};

TEST_F(XlsxWriterTest, CellsByTheirKinds) {
  const auto markup = [](const CellView& cell) {
    std::string out = "<c" + std::string(TypeAttribute(cell)) + ">";
    AppendCellValue(out, "x:", cell);
    return out;
  };
  const XString text =
      WideText("a<&>_x0041__x41_") + XTEXT('\r') + static_cast<XCHAR>(0xD800) + WideText("\u00E4\U0001F600");
  EXPECT_EQ(markup(CellView::Text(text)),
            "<c t=\"str\"><x:v>a&lt;&amp;&gt;_x005F_x0041__x41__x000D__xD800_\u00E4\U0001F600</x:v>");
  EXPECT_EQ(markup(CellView::Text(XTEXT("\n"))), "<c t=\"str\"><x:v xml:space=\"preserve\">\n</x:v>");
  EXPECT_EQ(markup(CellView::Number(-0.0)) + markup(CellView::Number(0.1)), "<c><x:v>0</x:v><c><x:v>0.1</x:v>");
  EXPECT_EQ(markup(CellView::Number(HUGE_VAL)), "<c t=\"e\"><x:v>#NUM!</x:v>");
  EXPECT_EQ(markup(CellView::Error(kErrorSpill)), "<c t=\"e\"><x:v>#VALUE!</x:v>");
  EXPECT_EQ(markup(CellView::Error(xlerrNA)), "<c t=\"e\"><x:v>#N/A</x:v>");
  EXPECT_EQ(markup(CellView::Boolean(true)) + markup({}), "<c t=\"b\"><x:v>1</x:v><c>");
}

// A spill that grew to the right and below, over a row and cells that the file has not; one that shrank; a formula that
// was not calculated; what stands beside them.
TEST_F(XlsxWriterTest, OnlyWhatWasCalculatedChanges) {
  Set("B2:C5", "{1,\"x\";2,TRUE;3,#N/A;4,5}");
  Set("E2", "7");
  Set("G2", "9");
  Result("B2:B3", "B2:C5");
  Result("E2:F2", "E2");
  Result("G2", "G2", false);
  EXPECT_EQ(
      Rewritten(
          "<?xml version=\"1.0\"?>\n<worksheet><dimension ref=\"A1:G2\"/><cols><col min=\"3\" max=\"4\" style=\"8\"/>"
          "</cols><sheetData>\n <row r=\"1\" spans=\"1:7\"><c r=\"A1\" t=\"s\"><v>0</v></c></row>\n"
          "<row r=\"2\" spans=\"1:7\" ht=\"20\"> <c r=\"B2\" s=\"3\" t=\"s\" cm=\"1\" vm='2'><f t=\"array\" "
          "ref=\"B2:B3\">"
          "F(&quot;&gt;&quot;)</f><v>0</v></c><c r=\"D2\"><v>1.50</v></c>"
          "<c r=\"E2\"><f>1</f><v>0</v><extLst><x/></extLst></c><c r=\"F2\" s=\"4\" t=\"str\"><v>old</v></c>"
          "<c r=\"G2\"><f>NO()</f><v>5</v></c></row><!-- -->\n"
          "<row r=\"4\" s=\"6\" customFormat=\"1\"/></sheetData><tail/></worksheet>"),
      "<?xml version=\"1.0\"?>\n<worksheet><dimension ref=\"A1:G5\"/><cols><col min=\"3\" max=\"4\" style=\"8\"/>"
      "</cols><sheetData>\n <row r=\"1\" spans=\"1:7\"><c r=\"A1\" t=\"s\"><v>0</v></c></row>\n"
      "<row r=\"2\" ht=\"20\"> <c r=\"B2\" s=\"3\" cm=\"1\"><f t=\"array\" ref=\"B2:C5\">"
      "F(&quot;&gt;&quot;)</f><v>1</v></c><c r=\"C2\" s=\"8\" t=\"str\"><v>x</v></c><c r=\"D2\"><v>1.50</v></c>"
      "<c r=\"E2\"><f>1</f><v>7</v><extLst><x/></extLst></c><c r=\"F2\" s=\"4\"/>"
      "<c r=\"G2\"><f>NO()</f><v>5</v></c></row>"
      "<row r=\"3\"><c r=\"B3\"><v>2</v></c><c r=\"C3\" s=\"8\" t=\"b\"><v>1</v></c></row><!-- -->\n"
      "<row r=\"4\" s=\"6\" customFormat=\"1\"><c r=\"B4\" s=\"6\"><v>3</v></c>"
      "<c r=\"C4\" s=\"6\" t=\"e\"><v>#N/A</v></c></row>"
      "<row r=\"5\"><c r=\"B5\"><v>4</v></c><c r=\"C5\" s=\"8\"><v>5</v></c></row></sheetData><tail/></worksheet>");
}

// Names behind a prefix, cells and rows without a place, a formula shared by many.
TEST_F(XlsxWriterTest, RareFormsOfMarkup) {
  Set("B2", "2");
  Set("C2", "\" \"");
  Result("B2", "B2");
  Result("C2", "C2");
  EXPECT_EQ(
      Rewritten("<x:worksheet xmlns:x=\"m\"><x:sheetData><x:row r=\"1\"/><x:row><x:c/><x:c><x:f t=\"shared\" si=\"0\" "
                "ref=\"B2:C2\">A1</x:f></x:c><x:c t='inlineStr'><x:f t=\"shared\" si=\"0\"/><x:is><x:t>a</x:t></x:is>"
                "</x:c></x:row></x:sheetData></x:worksheet>"),
      "<x:worksheet xmlns:x=\"m\"><x:sheetData><x:row r=\"1\"/><x:row><x:c/><x:c><x:f t=\"shared\" si=\"0\" "
      "ref=\"B2:C2\">A1</x:f><x:v>2</x:v></x:c><x:c t=\"str\"><x:f t=\"shared\" si=\"0\"/>"
      "<x:v xml:space=\"preserve\"> </x:v></x:c></x:row></x:sheetData></x:worksheet>");
}

}  // namespace
}  // namespace qcalc
