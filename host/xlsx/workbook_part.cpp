#include "host/xlsx/workbook_part.h"

#include <cstdint>
#include <set>

#include "host/text/digits.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"
#include "host/xlsx/cell_text.h"
#include "host/xlsx/sheet_reader.h"
#include "host/xml/xml_fault.h"
#include "host/xml/xml_text.h"

namespace qcalc {

namespace {

// Excel sets no limit but memory. Finding one sheet among so many by its name takes microseconds, and books whose names
// have been copied along for decades stay below.
constexpr std::size_t kMostSheets = 4096;
constexpr std::size_t kMostNames = 200'000;

constexpr std::string_view kOwnNames = "_xlnm.";

// An attribute whose prefix is up to the file, `r:id`.
std::string_view PrefixedAttribute(const XmlNode& element, std::string_view name) {
  for (const auto* attribute = element.first_attribute(); attribute; attribute = attribute->next_attribute()) {
    const std::string_view key(attribute->name(), attribute->name_size());
    if (key.find(':') != key.npos && WithoutPrefix(key) == name) return {attribute->value(), attribute->value_size()};
  }
  return {};
}

void ReadSheets(const XmlNode& list, std::vector<ListedSheet>& sheets) {
  std::set<XString> known;
  ForEachChild(list, "sheet", [&](const XmlNode& element) {
    ListedSheet sheet{EscapedText(FindAttribute(element, "name").value_or("")),
                      ToUtf8(DecodeXml(PrefixedAttribute(element, "id")))};
    if (sheet.name.empty()) throw XmlFault("it has a sheet without a name");
    if (!known.insert(FoldCase(sheet.name)).second) throw XmlFault("it has two sheets \"" + ToUtf8(sheet.name) + "\"");
    sheets.push_back(std::move(sheet));
    if (sheets.size() > kMostSheets) throw XmlFault("it has more than " + std::to_string(kMostSheets) + " sheets");
  });
}

bool IsMacro(const XmlNode& name) {
  return IsTrue(FindAttribute(name, "function")) || IsTrue(FindAttribute(name, "vbProcedure")) ||
         IsTrue(FindAttribute(name, "xlm"));
}

void ReadNames(const XmlNode& list, std::size_t sheets, std::vector<StoredName>& names) {
  ForEachChild(list, "definedName", [&](const XmlNode& element) {
    const std::string_view written = FindAttribute(element, "name").value_or("");
    if (written.starts_with(kOwnNames) || IsMacro(element)) return;
    StoredName name{EscapedText(written), std::nullopt, ToUtf8(TextOf(element))};
    if (const auto place = FindAttribute(element, "localSheetId")) {
      name.sheet = ReadWhole<std::uint32_t>(*place);
      if (!name.sheet || *name.sheet >= sheets)
        throw XmlFault("the name \"" + ToUtf8(name.name) + "\" belongs to sheet " + std::string(*place) + ", of " +
                       std::to_string(sheets));
    }
    names.push_back(std::move(name));
    if (names.size() > kMostNames) throw XmlFault("it has more than " + std::to_string(kMostNames) + " names");
  });
}

int RowsOf(const XmlNode& table, std::string_view attribute, int otherwise) {
  const auto written = FindAttribute(table, attribute);
  const auto rows = written ? ReadWhole<int>(*written) : std::optional(otherwise);
  if (!rows || *rows < 0 || *rows > 1) throw XmlFault("its " + std::string(attribute) + " is none of a table");
  return *rows;
}

}  // namespace

WorkbookPart ReadWorkbookPart(const Package& package, const std::string& part) {
  WorkbookPart book;
  package.ReadTree(part, "the workbook", [&book](const XmlNode& root) {
    if (NameOf(root) != "workbook") throw XmlFault("it is no workbook");
    if (const XmlNode* properties = FindChild(root, "workbookPr"))
      book.uses1904 = IsTrue(FindAttribute(*properties, "date1904"));
    if (const XmlNode* sheets = FindChild(root, "sheets")) ReadSheets(*sheets, book.sheets);
    if (const XmlNode* names = FindChild(root, "definedNames")) ReadNames(*names, book.sheets.size(), book.names);
  });
  return book;
}

StoredTable ReadTablePart(const Package& package, const std::string& part, StoredSheet& sheet) {
  StoredTable table;
  table.sheet = sheet.sheet;
  package.ReadTree(part, "a table", [&](const XmlNode& root) {
    table.name = EscapedText(FindAttribute(root, "displayName").value_or(""));
    if (table.name.empty()) throw XmlFault("its table has no name");
    const auto area = AreaOfRef(FindAttribute(root, "ref").value_or(""));
    table.headerRows = RowsOf(root, "headerRowCount", 1);
    table.totalsRows = RowsOf(root, "totalsRowCount", 0);
    if (!area || area->Rows() < table.headerRows + table.totalsRows) throw XmlFault("its table has no area");
    table.area = *area;
    if (const XmlNode* columns = FindChild(root, "tableColumns"))
      ForEachChild(*columns, "tableColumn", [&table](const XmlNode& column) {
        table.columns.push_back(EscapedText(FindAttribute(column, "name").value_or("")));
      });
    if (table.columns.size() != static_cast<std::size_t>(area->Columns()))
      throw XmlFault("its table has " + std::to_string(table.columns.size()) + " columns, and an area of " +
                     std::to_string(area->Columns()));
    const XmlNode* filter = FindChild(root, "autoFilter");
    if (!filter || !FindChild(*filter, "filterColumn")) return;
    if (const auto filtered = AreaOfRef(FindAttribute(*filter, "ref").value_or(""))) sheet.sheet->AddFilter(*filtered);
  });
  return table;
}

}  // namespace qcalc
