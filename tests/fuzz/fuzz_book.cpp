// Any bytes as a workbook file, as one part of a workbook that is good otherwise, or in place of some bytes of one.
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>

#include "host/xlsx/xlsx_reader.h"
#include "tests/host/zip_builder.h"

namespace {

struct Part {
  std::string name, text;
};
const Part kParts[] = {
    {"xl/worksheets/sheet1.xml",
     "<worksheet><sheetData><row><c t='s'><v>0</v></c><c cm='1'><f t='array' "
     "ref='B1'>1</f></c></row></sheetData></worksheet>"},
    {"xl/sharedStrings.xml", "<sst><si><t>a</t></si></sst>"},
    {"xl/styles.xml", "<styleSheet><cellXfs><xf numFmtId='14'/></cellXfs></styleSheet>"},
    {"xl/metadata.xml", "<metadata><cellMetadata><bk/></cellMetadata></metadata>"},
    {"xl/workbook.xml", "<workbook><sheets><sheet name='Data' r:id='0'/></sheets></workbook>"},
    {"xl/tables/table1.xml",
     "<table displayName='T' ref='A1:A2'><tableColumns><tableColumn name='a'/></tableColumns></table>"},
    {"_rels/.rels", "<Relationships><Relationship Type='/officeDocument' Target='xl/workbook.xml'/></Relationships>"},
    {"xl/_rels/workbook.xml.rels",
     "<Relationships><Relationship Id='0' Type='/worksheet' Target='worksheets/sheet1.xml'/><Relationship "
     "Type='/sharedStrings' Target='sharedStrings.xml'/><Relationship Type='/styles' "
     "Target='styles.xml'/><Relationship "
     "Type='/sheetMetadata' Target='metadata.xml'/></Relationships>"},
    {"xl/worksheets/_rels/sheet1.xml.rels",
     "<Relationships><Relationship Type='/table' Target='/xl/tables/table1.xml'/></Relationships>"},
};

void Expect(bool holds) {
  if (!holds) std::abort();
}

// What is told of a book may be relied on by whoever calculates it.
void Check(const qcalc::StoredBook& book) {
  for (const auto& sheet : book.sheets) {
    for (std::size_t i = 0; i < sheet.formulas.size(); ++i) {
      const auto& formula = sheet.formulas[i];
      Expect(formula.fills.IsOnSheet() && formula.fills.Contains(formula.position.row, formula.position.column));
      Expect(!formula.text.empty() != formula.master.has_value());
      Expect(!formula.master || (*formula.master < i && !sheet.formulas[*formula.master].text.empty()));
      Expect(i == 0 || sheet.formulas[i - 1].position < formula.position);
    }
    if (const auto used = sheet.sheet->UsedArea())
      sheet.sheet->VisitUsed(*used, [](std::int32_t, std::int32_t, const qcalc::CellView& cell) {
        Expect(!cell.IsText() || cell.AsText().size() <= 32'767);
      });
  }
  for (const auto& name : book.names) Expect(!name.sheet || *name.sheet < book.sheets.size());
  for (const auto& table : book.tables)
    Expect(table.area.IsOnSheet() && table.columns.size() == static_cast<std::size_t>(table.area.Columns()));
}

// Each three bytes of the text are a place from the file's end on, where its directory is, and what to put there.
void Patch(std::string& file, std::string_view text) {
  for (; text.size() >= 3; text.remove_prefix(3)) {
    const std::size_t place = static_cast<unsigned char>(text[0]) * 256u + static_cast<unsigned char>(text[1]);
    if (place < file.size()) file[file.size() - 1 - place] = text[2];
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  std::string file(text);
  if (const std::size_t chosen = data[0] % (std::size(kParts) + 2); chosen <= std::size(kParts)) {
    qcalc::ZipContent content;
    for (const Part& part : kParts)
      content.emplace_back(part.name, chosen < std::size(kParts) && &part == &kParts[chosen] ? file : part.text);
    file = qcalc::ZipOf(content);
    if (chosen == std::size(kParts)) Patch(file, text);
  }
  qcalc::Workbooks workbooks;
  try {
    Check(qcalc::ReadXlsx(qcalc::ZipReader(std::string_view(file)), workbooks, XTEXT("Book")));
  } catch (const qcalc::BookRefused&) {
    Expect(workbooks.Books().empty());
  } catch (const qcalc::ZipFault&) {
    Expect(workbooks.Books().empty());
  }
  return 0;
}
