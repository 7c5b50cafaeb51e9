#include "host/workbook/workbooks.h"

#include <algorithm>

#include "host/formulas/reference_text.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"

namespace qcalc {

namespace {

// Ids are opaque to the add-in: neither small nor consecutive, so that nobody takes them for an index.
constexpr IDSHEET kFirstSheetId = 0x51C0'0010;
constexpr IDSHEET kSheetIdStep = 0x10;

constexpr Area kWholeSheet{0, kXlMaxRows - 1, 0, kXlMaxColumns - 1};

}  // namespace

Sheet* Book::FindSheet(XStringView name) const {
  const auto found = sheetsByName_.find(name);
  return found == sheetsByName_.end() ? nullptr : found->second;
}

Sheet& Book::SheetNamed(XStringView name) {
  if (Sheet* sheet = FindSheet(name)) return *sheet;
  const IDSHEET id = workbooks_.TakeSheetId();
  sheets_.push_back(std::make_unique<Sheet>(*this, id, XString(name)));
  sheetsByName_.emplace(name, sheets_.back().get());
  workbooks_.sheetsById_.emplace(id, sheets_.back().get());
  // Formulas that name it were #REF! so far.
  sheets_.back()->NoteChange(kWholeSheet);
  return *sheets_.back();
}

Book* Workbooks::FindBook(XStringView name) const {
  const auto found = std::find_if(books_.begin(), books_.end(),
                                  [name](const auto& book) { return EqualsIgnoringCase(book->Name(), name); });
  return found == books_.end() ? nullptr : found->get();
}

Book& Workbooks::BookNamed(XStringView name) {
  if (Book* book = FindBook(name)) return *book;
  return *books_.emplace_back(std::make_unique<Book>(*this, XString(name)));
}

Workbooks::Workbooks() : nextSheetId_(kFirstSheetId) {}

void Workbooks::Close(const Book& book) {
  const XString name = book.Name();
  for (const auto& sheet : book.Sheets()) sheetsById_.erase(sheet->Id());
  std::erase_if(books_, [&](const auto& other) { return other.get() == &book; });
  const auto isThere = [&](const ReferenceText& text) { return EqualsIgnoringCase(text.book, name); };
  for (const auto& other : books_)
    for (const auto& sheet : other->Sheets())
      for (const auto& [position, cell] : sheet->Formulas()) {
        const std::vector<ReferenceText> references = ReferencesIn(cell.formula);
        if (std::any_of(references.begin(), references.end(), isThere)) sheet->MarkDirty(position, true);
      }
}

IDSHEET Workbooks::TakeSheetId() { return std::exchange(nextSheetId_, nextSheetId_ + kSheetIdStep); }

Sheet* Workbooks::FindSheet(IDSHEET id) const {
  const auto found = sheetsById_.find(id);
  return found == sheetsById_.end() ? nullptr : found->second;
}

Sheet* Workbooks::FindSheet(XStringView book, XStringView sheet, const Sheet* current) const {
  const Book* in = book.empty() ? (current ? &current->ItsBook() : nullptr) : FindBook(book);
  if (sheet.empty()) return book.empty() && current ? FindSheet(current->Id()) : nullptr;
  return in ? in->FindSheet(sheet) : nullptr;
}

Sheet& Workbooks::SheetNamed(XStringView book, XStringView sheet, Sheet& current) {
  if (sheet.empty()) return current;
  return (book.empty() ? current.ItsBook() : BookNamed(book)).SheetNamed(sheet);
}

Reference ResolveReference(const ReferenceText& text, Workbooks& workbooks, Sheet& current) {
  return {workbooks.SheetNamed(text.book, text.sheet, current).Id(), {text.area}};
}

Value Dereference(const Value& value, const Workbooks& workbooks) {
  if (!value.IsReference()) return value;
  const Reference& reference = value.AsReference();
  const Sheet* sheet = workbooks.FindSheet(reference.sheet);
  if (!sheet) return Value::Error(xlerrRef);
  return reference.areas.size() == 1 ? sheet->Read(reference.areas[0]) : Value::Error(xlerrValue);
}

std::string ReferenceToText(const Reference& reference, const Workbooks& workbooks) {
  const Sheet* sheet = workbooks.FindSheet(reference.sheet);
  const std::string prefix = (sheet ? ToUtf8(sheet->FullName()) : "#REF") + "!";
  std::string text;
  for (const Area& area : reference.areas) text += (text.empty() ? "" : ",") + prefix + AreaToText(area);
  return reference.areas.size() == 1 ? text : "(" + text + ")";
}

}  // namespace qcalc
