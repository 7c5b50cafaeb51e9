// Workbook files into sheets.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "host/formulas/reference_text.h"
#include "host/values/literal.h"
#include "host/xlsx/xlsx_reader.h"
#include "tests/host/case_table.h"
#include "tests/host/zip_builder.h"

namespace qcalc {
namespace {

const std::string kSheet1 = "xl/worksheets/sheet1.xml";

class XlsxTest : public testing::Test {
 protected:
  XlsxTest() {
    const std::string kinds = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
    const auto relationship = [&](const std::string& id, const std::string& kind, const std::string& target) {
      return "<Relationship Id='" + id + "' Type='" + kinds + kind + "' Target='" + target + "'/>";
    };
    parts["_rels/.rels"] =
        "<Relationships>" + relationship("a", "officeDocument", "xl/workbook.xml") + "</Relationships>";
    parts["xl/_rels/workbook.xml.rels"] =
        "<Relationships>" + relationship("s1", "worksheet", "worksheets/sheet1.xml") +
        relationship("s2", "worksheet", "/xl/worksheets/sheet2.xml") + relationship("c", "chartsheet", "chart.xml") +
        relationship("t", "sharedStrings", "./x/../texts.xml") + relationship("f", "styles", "styles.xml") +
        relationship("m", "sheetMetadata", "metadata.xml") + "</Relationships>";
    parts["xl/workbook.xml"] = Workbook("");
    parts["xl/texts.xml"] =
        "<sst><si><t>one</t></si><si><r><t>t</t></r><r><rPr/><t xml:space='preserve'>w </t></r><rPh><t>X</t></rPh>"
        "</si><si><t xml:space='preserve'>  </t></si><si><t/></si></sst>";
    parts["xl/styles.xml"] =
        "<styleSheet><numFmts><numFmt numFmtId='164' formatCode='[h]:mm'/><numFmt numFmtId='165' "
        "formatCode='&quot;day&quot; yyyy\\-mm\\-dd hh:mm'/><numFmt numFmtId='166' formatCode='0.0 &quot;d&quot;'/>"
        "</numFmts><cellXfs><xf/><xf numFmtId='14'/><xf numFmtId='164'/><xf numFmtId='165'/><xf numFmtId='166'/>"
        "</cellXfs></styleSheet>";
    parts["xl/metadata.xml"] =
        "<metadata><metadataTypes><metadataType name='XLDAPR'/></metadataTypes><futureMetadata name='XLDAPR'><bk>"
        "<extLst><ext><a:dynamicArrayProperties fDynamic='1'/></ext></extLst></bk></futureMetadata>"
        "<cellMetadata><bk><rc t='1' v='0'/></bk></cellMetadata></metadata>";
    Rows("");
    parts["xl/worksheets/sheet2.xml"] = "<worksheet><sheetData/></worksheet>";
  }

  static std::string Workbook(const std::string& rest) {
    return "<?xml version='1.0' encoding='UTF-8'?><workbook xmlns:r='x'><sheets><sheet name='Data' r:id='s1'/>"
           "<sheet name='Chart' r:id='c'/><sheet name='A &amp; B' state='hidden' r:id='s2'/></sheets>" +
           rest + "</workbook>";
  }
  void Rows(const std::string& rows, const std::string& behind = "") {
    parts[kSheet1] = "<worksheet><sheetData>" + rows + "</sheetData>" + behind + "</worksheet>";
  }
  /// One row of cells, each given as what stands behind "<c".
  void Cells(const std::string& cells) { Rows("<row>" + cells + "</row>"); }

  std::string File(const ZipClaim& claim = {}) const { return ZipOf({parts.begin(), parts.end()}, claim); }
  StoredBook Read() { return ReadXlsx(ZipReader(std::string_view(file = File())), workbooks, XTEXT("Book")); }
  /// What the first sheet holds, or "!" and why the book is refused. No book is left behind.
  std::string Held() { return HeldIn(File()); }
  std::string HeldIn(const std::string& bytes) {
    try {
      const StoredBook book = ReadXlsx(ZipReader(std::string_view(bytes)), workbooks, XTEXT("Book"));
      const Sheet& sheet = *book.sheets.at(0).sheet;
      const auto used = sheet.UsedArea();
      std::string held = used ? AreaToText(*used) + " " + PrintLiteral(sheet.Read(*used)) : "nothing";
      for (const std::string& remark : book.remarks) held += "; " + remark;
      workbooks.Close(sheet.ItsBook());
      return held;
    } catch (const std::runtime_error& refused) {
      EXPECT_EQ(workbooks.FindBook(XTEXT("Book")), nullptr);
      return std::string("!") + refused.what();
    }
  }

  std::map<std::string, std::string> parts;
  std::string file;
  Workbooks workbooks;
};

TEST_F(XlsxTest, ReadsCellsOfEveryType) {
  const auto check = [this](std::string_view cases) {
    for (const auto& [cells, held] : CasesOf(cases)) {
      Cells(cells);
      EXPECT_EQ(Held(), held) << cells;
    }
  };
  check(R"(<c><v>1.5</v></c><c r="C1" t="n"><v> -2E-3 </v></c><c t="b"><v>1</v></c> -> A1:D1 {1.5,empty,-0.002,TRUE}
<c t="s"><v>0</v></c><c t="s"><v>1</v></c><c t="s"><v>2</v></c><c t="s"><v>3</v></c> -> A1:D1 {"one","tw ","  ",""}
<c t="str"><f>A1</f><v>a&lt;&#x1F600;&amp;<![CDATA[<b>]]>c</v></c> -> A1 "a<😀&<b>c"
<c t="inlineStr"><is><t>x_x000a_y_x005F_x0041__xD800_</t></is></c> -> A1 "x"U+000A"y_x0041_"U+D800
<c t="inlineStr"><is><r><t>a</t></r><r><t>b</t></r></is></c><c t="inlineStr"><is><t/></is></c> -> A1:B1 {"ab",""}
<c t="e"><v>#DIV/0!</v></c><c t="e"><v>#SPILL!</v></c><c t="e"><v>#GETTING_DATA</v></c> -> A1:C1 {#DIV/0!,#SPILL!,#GETTING_DATA}
<c r="B1" t="e"><v>#PYTHON!</v></c> -> B1 #VALUE!; Data!B1: the error "#PYTHON!" is taken for #VALUE!
<c t="d"><v>1900-03-01</v></c><c t="d"><v>2024-02-29T18:00:00.000Z</v></c><c t="d"><v>06:00</v></c> -> A1:C1 {61,45351.75,0.25}
<c s="1"/><c><v/></c><c t="s"/><c><f/></c> -> nothing
<c><v>1e-320</v></c><c><v>1e-999</v></c><c><v>1.7976931348623157E+308</v></c> -> A1:C1 {0,0,1.7976931348623157e+308})");
  check(R"(<c><v>NaN</v></c> -> !Data!A1: "NaN" is no number that a cell can hold
<c><v>1e999</v></c> -> !Data!A1: "1e999" is no number that a cell can hold
<c r="B1" t="s"><v>4</v></c> -> !Data!B1: shared string 4, of 4
<c t="s"><v>-1</v></c> -> !Data!A1: shared string -1, of 4
<c s="5"/> -> !Data!A1: cell format "5", of 5
<c t="x"><v>1</v></c> -> !Data!A1: its type "x" is none that a cell can have
<c t="d"><v>2023-02-29</v></c> -> !Data!A1: "2023-02-29" is no date that a cell can hold
<c t="b"><v>2</v></c> -> !Data!A1: "2" is neither TRUE nor FALSE
<c r="A2"/> -> !Data!A1: cell "A2" stands in another row
<c r="B1"/><c r="A1"/> -> !Data!B1: cell "A1" stands behind it
<c r="XFE1"/> -> !Data!A1: the next cell is "XFE1", which no sheet has
<c t="str"><v>&e;</v></c> -> !Data!A1: it holds the entity &e;, which XML does not declare
<c><v>1</v> -> !xl/worksheets/sheet1.xml: it is not well formed: invalid closing tag name)");
  Cells("<c t='str'><v>" + std::string(32'767, 'x') + "</v></c>");
  EXPECT_TRUE(Held().starts_with("A1 \"xxx"));
  Cells("<c t='str'><v>" + std::string(32'768, 'x') + "</v></c>");
  EXPECT_EQ(Held(), "!Data!A1: a text has 32768 characters, of at most 32767");
}

TEST_F(XlsxTest, ReadsRowsAndWhatIsHidden) {
  const auto hidden = [this](const std::string& text) {
    parts[kSheet1] = text;
    const StoredBook book = Read();
    const Sheet& sheet = *book.sheets[0].sheet;
    std::string lines;
    for (int row = 0; row < 10; ++row) lines += sheet.IsRowFiltered(row) ? 'f' : sheet.IsRowHidden(row) ? 'h' : '.';
    for (int column = 0; column < 4; ++column) lines += sheet.IsColumnHidden(column) ? 'H' : '_';
    workbooks.Close(sheet.ItsBook());
    return lines;
  };
  // Prefixes, comments and instructions make no difference.
  EXPECT_EQ(
      hidden("\xEF\xBB\xBF<x:worksheet xmlns:x='u'><?pi > ?><!-- <sheetData> --><x:sheetData><x:row hidden='1'/><!-- "
             "<row/> --><x:row r='3' hidden='true'/><x:row a='/>' hidden='1'></x:row><x:row/></x:sheetData>"
             "<customSheetViews><autoFilter ref='A1'><filterColumn/></autoFilter></customSheetViews><x:autoFilter "
             "ref='A1:B4'><x:filterColumn/></x:autoFilter></x:worksheet>"),
      "h.ff......____");
  EXPECT_EQ(hidden("<worksheet><sheetFormatPr zeroHeight='1'/><cols><col min='2' max='3' "
                   "hidden='1'/></cols><sheetData><row r='3'/><row r='5'/></sheetData>"
                   "<autoFilter ref='A1:B4'/></worksheet>"),
            "hh.h......_HH_");
  Rows("<row r='7'><c><v>1</v></c></row><row r='7'/>");
  EXPECT_EQ(Held(), "!xl/worksheets/sheet1.xml: its row 7 stands behind row 7");
  Rows("<row r='1048577'/>");
  EXPECT_EQ(Held(), "!xl/worksheets/sheet1.xml: it has a row \"1048577\", which no sheet has");
}

TEST_F(XlsxTest, ReadsFormulas) {
  Cells(
      "<c><f>&quot;a&quot;&amp;_xlfn.NOW()</f><v>1</v></c><c cm='1'><f t='array' ref='B1:B3'>X()</f></c>"
      "<c><f t='array' ref='C1:D1'>Y()</f></c><c r='E1'><f t='shared' si='7' ref='E1:F1'>A1</f></c>"
      "<c><f t='shared' si='7'/><v>5</v></c><c><f t='dataTable' ref='G1'/><v>6</v></c>");
  const StoredBook book = Read();
  std::string told;
  for (const StoredFormula& formula : book.sheets[0].formulas)
    told += AreaToText(formula.fills) + "=" + formula.text +
            (formula.master ? "<" + std::to_string(*formula.master) : std::string()) + "/" +
            std::to_string(static_cast<int>(formula.form)) + " ";
  EXPECT_EQ(told, "A1=\"a\"&_xlfn.NOW()/1 B1:B3=X()/0 C1:D1=Y()/2 E1=A1/1 F1=<3/1 ");
  EXPECT_EQ(book.remarks,
            std::vector<std::string>{"Data!G1: a data table is not calculated; its values stay as they are"});
  workbooks.Close(book.sheets[0].sheet->ItsBook());
  for (const auto& [cells, held] : CasesOf(
           R"(<c><f t="shared" si="1"/></c> -> !Data!A1: shared formula 1 has no text above this cell
<c><f t="array" ref="A1:XFE1">1</f></c> -> !Data!A1: its array formula fills "A1:XFE1", which does not begin here
<c><f t="array" ref="A1:XFD1048576">1</f></c> -> !it holds more than fits into 720 MiB of memory
<c cm="2"><f t="array" ref="A1">1</f></c> -> !Data!A1: cell metadata "2", of 1
<c><f t="odd">1</f></c> -> !Data!A1: its formula is of the type "odd", which no formula has)")) {
    Cells(cells);
    EXPECT_EQ(Held(), held) << cells;
  }
}

TEST_F(XlsxTest, ReadsDatesNamesAndTables) {
  Cells("<c s='1'/><c s='2'><v>1</v></c><c s='3'><v>1</v></c><c s='4'/><c r='F1' t='d'><v>1904-01-02</v></c>");
  parts["xl/workbook.xml"] = Workbook(
      "<definedNames><definedName name='_xlnm.Print_Area'>A1</definedName><definedName name='Rate'>0.5"
      "</definedName><definedName name='Here' localSheetId='2'>Data!$A$1&amp;1</definedName><definedName "
      "name='OnChart' localSheetId='1'>1</definedName></definedNames>");
  parts["xl/worksheets/_rels/sheet2.xml.rels"] =
      "<Relationships><Relationship Id='r' Type='http://purl.oclc.org/ooxml/officeDocument/relationships/table' "
      "Target='../table1.xml'/><Relationship Id='h' Type='x/hyperlink' TargetMode='External' "
      "Target='x'/></Relationships>";
  parts["xl/table1.xml"] =
      "<table displayName='Tab' ref='B2:C5' totalsRowCount='1'><autoFilter "
      "ref='B2:C4'><filterColumn/></autoFilter><tableColumns><tableColumn name='a'/>"
      "<tableColumn name='b_x000a_c'/></tableColumns></table>";
  const StoredBook book = Read();
  std::string kinds;
  for (int column = 0; column < 6; ++column)
    kinds += std::to_string(static_cast<int>(book.sheets[0].dates.At(0, column)));
  EXPECT_EQ(kinds,
            "123"
            "000");
  ASSERT_EQ(book.names.size(), 2);
  EXPECT_EQ(book.names[0].text, "0.5");
  EXPECT_EQ(book.names[1].text, "Data!$A$1&1");
  EXPECT_EQ(book.names[1].sheet, 1);
  ASSERT_EQ(book.tables.size(), 1);
  EXPECT_EQ(AreaToText(book.tables[0].area), "B2:C5");
  EXPECT_EQ(book.tables[0].sheet->Name(), XTEXT("A & B"));
  EXPECT_EQ(book.tables[0].totalsRows, 1);
  book.sheets[1].sheet->HideRows(1, 4, true);
  EXPECT_TRUE(book.sheets[1].sheet->IsRowFiltered(3) && !book.sheets[1].sheet->IsRowFiltered(4));
  EXPECT_EQ(book.tables[0].columns, (std::vector<XString>{XTEXT("a"), XTEXT("b\nc")}));
}

TEST_F(XlsxTest, RefusesHostileFiles) {
  const auto with = [this](const std::string& part, const std::string& text) {
    const auto kept = parts;
    parts[part] = text;
    const std::string held = Held();
    parts = kept;
    return held;
  };
  std::string deep;
  for (int i = 0; i < 300; ++i) deep += "<a>";
  std::string strewn;
  for (int row = 1; row <= 4; ++row) {
    strewn += "<row r='" + std::to_string(row * 2000) + "'>";
    for (int i = 0; i < kXlMaxColumns; ++i) strewn += "<c><v>1</v></c>";
    strewn += "</row>";
  }
  EXPECT_EQ(with(kSheet1, "<worksheet><sheetData><row>" + deep),
            "!" + kSheet1 + ": its elements are nested more than 256 deep");
  EXPECT_EQ(with(kSheet1, "<worksheet><sheetData>" + strewn + "</sheetData></worksheet>"),
            "!it holds more than fits into 720 MiB of memory");
  EXPECT_EQ(with(kSheet1, "<worksheet><sheetData><row>"), "!" + kSheet1 + ": it ends in the middle");
  EXPECT_EQ(with(kSheet1, "<!DOCTYPE a [<!ENTITY b 'c'>]><worksheet/>"),
            "!" + kSheet1 + ": it declares a document type, as no workbook does");
  EXPECT_EQ(with("xl/styles.xml", std::string("\xFF\xFE<\0a\0", 6)),
            "!xl/styles.xml: it holds a zero byte, as UTF-16 does; only UTF-8 is read");
  EXPECT_EQ(with("xl/workbook.xml", "<?xml version='1.0' encoding='latin1'?><workbook/>"),
            "!xl/workbook.xml: it is written in latin1; only UTF-8 is read");
  EXPECT_EQ(with("xl/workbook.xml", "<workbook/>"), "!it has no worksheet");
  EXPECT_EQ(with("_rels/.rels", "<a><Relationship Type='x/officeDocument' Target='../../b'/></a>"),
            "!it is no workbook: nothing in it says where one is");
  EXPECT_EQ(with("_rels/.rels", "<Relationships><Relationship Type='x/officeDocument' Target='../b'/></Relationships>"),
            "!_rels/.rels: it refers to a part outside the file");
  EXPECT_EQ(with("xl/_rels/workbook.xml.rels",
                 "<Relationships><Relationship Id='s1' Type='x/worksheet' TargetMode='External' Target='http://x'/>"
                 "</Relationships>"),
            "!its sheet \"Data\" lies outside the file");
  parts.erase("xl/worksheets/sheet2.xml");
  EXPECT_EQ(Held(), "!it has no part xl/worksheets/sheet2.xml, a worksheet");
}

TEST_F(XlsxTest, RefusesDamagedZipFiles) {
  // The last entry is that of the second sheet.
  EXPECT_EQ(Held(), "nothing");
  const std::string entry = "!its entry \"xl/worksheets/sheet2.xml\" ", good = File();
  EXPECT_EQ(HeldIn(File({.flags = 1})), entry + "is encrypted");
  EXPECT_EQ(HeldIn(File({.method = 14})), entry + "is packed by an unknown method");
  EXPECT_EQ(HeldIn(File({.method = 8})), entry + "does not inflate");
  EXPECT_EQ(HeldIn(File({.size = 3})), entry + "has two sizes");
  EXPECT_EQ(HeldIn(File({.size = 0xFFFF'0000})), "!it would inflate to more than 1024 MiB");
  EXPECT_EQ(HeldIn(File({.size = 0x3000'0000})).substr(0, 21), "!it would inflate to ");
  EXPECT_EQ(HeldIn(good.substr(0, good.size() - 1)), "!it is no zip file, or its end is missing");
  EXPECT_EQ(HeldIn("x" + good), "!its directory ends before its last entry");
  std::string damaged = good;
  damaged[good.find("<sheetData/></worksheet>") + 1] = 'S';
  EXPECT_EQ(HeldIn(damaged), entry + "is damaged: its checksum is another");
  damaged = good;
  damaged[good.rfind("PK\1\2") + 42] = '\0';
  EXPECT_EQ(HeldIn(damaged).substr(0, 12), "!its entry \"");
  EXPECT_EQ(HeldIn(""), "!it is no zip file, or its end is missing");
}

}  // namespace
}  // namespace qcalc
