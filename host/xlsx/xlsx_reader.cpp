#include "host/xlsx/xlsx_reader.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <utility>

#include "host/text/utf8.h"
#include "host/xlsx/cell_formats.h"
#include "host/xlsx/cell_metadata.h"
#include "host/xlsx/sheet_reader.h"
#include "host/xlsx/workbook_part.h"

namespace qcalc {

namespace {

// What old workbooks begin with, and encrypted new ones, which lie in a file of that kind.
constexpr std::string_view kCompoundFileMark = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";

void RefuseCompoundFile(const std::filesystem::path& path) {
  FileBytes file(path);
  std::array<char, kCompoundFileMark.size()> start{};
  if (file.Size() < start.size()) return;
  file.Read(0, start);
  if (std::string_view(start.data(), start.size()) == kCompoundFileMark)
    throw BookRefused("it is protected by a password, or it is an old .xls");
}

class XlsxReader {
 public:
  XlsxReader(const ZipReader& zip, Book& book) : zip_(zip), package_(zip), book_(book) {}

  StoredBook Read() {
    const std::string workbook = FindWorkbook();
    WorkbookPart listed = ReadWorkbookPart(package_, workbook);
    stored_.uses1904 = parts_.uses1904 = listed.uses1904;
    const auto relationships =
        package_.RelationshipsOf(workbook, {"worksheet", "chartsheet", "dialogsheet", "xlMacrosheet",
                                            "xlIntlMacrosheet", "styles", "sharedStrings", "sheetMetadata"});
    MakeSheets(listed, relationships);
    ReadBookParts(relationships);
    for (StoredSheet& sheet : stored_.sheets) {
      ReadTables(sheet);
      SheetReader(sheet, parts_, limit_, remarks_).Read(package_);
    }
    stored_.remarks = remarks_.Take();
    return std::move(stored_);
  }

 private:
  std::string FindWorkbook() const {
    const auto found = package_.RelationshipsOf("", {"officeDocument"});
    if (found.empty()) throw BookRefused("it is no workbook: nothing in it says where one is");
    if (found[0].target.ends_with(".bin")) throw BookRefused("it is a binary workbook (.xlsb)");
    return found[0].target;
  }

  // The worksheets in their order; names of others' are dropped with them.
  void MakeSheets(WorkbookPart& listed, const std::vector<Relationship>& relationships) {
    std::vector<std::optional<std::size_t>> places;
    std::unordered_map<std::string_view, const Relationship*> byId;
    for (const Relationship& relationship : relationships) byId.emplace(relationship.id, &relationship);
    for (const ListedSheet& sheet : listed.sheets) {
      const auto found = byId.find(sheet.relationship);
      if (found == byId.end()) throw BookRefused("its sheet \"" + ToUtf8(sheet.name) + "\" has no part");
      const auto& [id, kind, part] = *found->second;
      places.push_back(std::nullopt);
      if (kind.ends_with("Macrosheet")) remarks_.Add(ToUtf8(sheet.name) + ": a sheet of macros is not calculated");
      if (kind != "worksheet") continue;
      if (part.empty()) throw BookRefused("its sheet \"" + ToUtf8(sheet.name) + "\" lies outside the file");
      places.back() = stored_.sheets.size();
      stored_.sheets.push_back({&book_.SheetNamed(sheet.name), part});
    }
    if (stored_.sheets.empty()) throw BookRefused("it has no worksheet");
    for (StoredName& name : listed.names) {
      if (name.sheet && !places[*name.sheet]) continue;
      if (name.sheet) name.sheet = places[*name.sheet];
      limit_.Take(sizeof(StoredName) + name.text.size() + name.name.size() * sizeof(XCHAR));
      stored_.names.push_back(std::move(name));
    }
  }

  void ReadBookParts(const std::vector<Relationship>& relationships) {
    for (const Relationship& relationship : relationships) {
      const std::string& part = relationship.target;
      if (part.empty()) continue;
      if (relationship.kind == "styles") parts_.formats = ReadCellFormats(package_, part);
      if (relationship.kind == "sheetMetadata") parts_.isDynamic = ReadCellMetadata(package_, part);
      if (relationship.kind == "sharedStrings" && parts_.texts.Size() == 0)
        parts_.texts.Read(package_, part, LargestSheet().Cells().Pool());
    }
  }

  // The one whose cells are to view the shared texts where they are.
  Sheet& LargestSheet() const {
    const auto size = [this](const StoredSheet& sheet) {
      const ZipEntry* entry = zip_.Find(sheet.part);
      return entry ? entry->size : 0;
    };
    return *std::max_element(stored_.sheets.begin(), stored_.sheets.end(), [&size](const auto& a, const auto& b) {
              return size(a) < size(b);
            })->sheet;
  }

  void ReadTables(StoredSheet& sheet) {
    for (const Relationship& relationship : package_.RelationshipsOf(sheet.part, {"table"})) {
      if (relationship.target.empty()) continue;
      stored_.tables.push_back(ReadTablePart(package_, relationship.target, sheet));
      std::size_t bytes = sizeof(StoredTable);
      for (const XString& column : stored_.tables.back().columns)
        bytes += sizeof(XString) + column.size() * sizeof(XCHAR);
      limit_.Take(bytes);
    }
  }

  const ZipReader& zip_;
  Package package_;
  Book& book_;
  StoredBook stored_;
  Remarks remarks_;
  MemoryLimit limit_;
  BookParts parts_{SharedTexts(limit_)};
};

}  // namespace

StoredBook ReadXlsx(const std::filesystem::path& path, Workbooks& workbooks, const XString& name) {
  try {
    RefuseCompoundFile(path);
    return ReadXlsx(ZipReader(path), workbooks, name);
  } catch (const ZipFault& fault) {
    throw BookRefused(fault.what());
  }
}

StoredBook ReadXlsx(const ZipReader& zip, Workbooks& workbooks, const XString& name) {
  Book& book = workbooks.BookNamed(name);
  try {
    return XlsxReader(zip, book).Read();
  } catch (...) {
    workbooks.Close(book);
    throw;
  }
}

}  // namespace qcalc
