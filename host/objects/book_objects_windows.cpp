#include "host/objects/book_objects_windows.h"

#include "host/objects/range_object_windows.h"

namespace qcalc {
namespace {

constexpr WORD kGetOrCall = DISPATCH_PROPERTYGET | DISPATCH_METHOD;

constexpr ObjectMember kWorkbooksMembers[] = {
    Member<WorkbooksObject, &WorkbooksObject::Item>(L"Item", kGetOrCall, 1),
    Member<WorkbooksObject, &WorkbooksObject::Count>(L"Count"),
};
constexpr ObjectMember kWorkbookMembers[] = {
    Member<WorkbookObject, &WorkbookObject::Name>(L"Name"),
    Member<DispatchObject, &DispatchObject::ItsApplication>(L"Parent"),
    Member<WorkbookObject, &WorkbookObject::Worksheets>(L"Worksheets"),
    Member<WorkbookObject, &WorkbookObject::Worksheets>(L"Sheets"),
};
constexpr ObjectMember kWorksheetsMembers[] = {
    Member<WorksheetsObject, &WorksheetsObject::Item>(L"Item", kGetOrCall, 1),
    Member<WorksheetsObject, &WorksheetsObject::Count>(L"Count"),
};
constexpr ObjectMember kWorksheetMembers[] = {
    Member<WorksheetObject, &WorksheetObject::Name>(L"Name"),
    Member<WorksheetObject, &WorksheetObject::Parent>(L"Parent"),
    Member<WorksheetObject, &WorksheetObject::UsedRange>(L"UsedRange"),
};

/// The item that the first argument names, or numbers from 1 on. `find` looks a name up. Throws ObjectFailure.
template <typename Item, typename Find>
Item& ItemOf(const std::vector<std::unique_ptr<Item>>& items, const ObjectCall& call, Find find) {
  const VARIANT* const which = call.At(0);
  if (!which) throw ObjectFailure{DISP_E_PARAMNOTOPTIONAL};
  if (which->vt == VT_BSTR) {
    if (Item* const item = find(XStringView(which->bstrVal, SysStringLen(which->bstrVal)))) return *item;
  } else if (const LONG number = call.LongAt(0, 0); number >= 1 && number <= static_cast<LONG>(items.size())) {
    return *items[static_cast<std::size_t>(number) - 1];
  }
  throw ObjectFailure{DISP_E_BADINDEX};
}

/// Throws ObjectFailure when the book was closed.
Book& BookOf(HostState& host, XStringView name) {
  if (Book* const book = host.workbooks.FindBook(name)) return *book;
  throw ObjectFailure{kExcelError, "the workbook has been closed"};
}

Sheet& SheetOf(HostState& host, IDSHEET id) {
  if (Sheet* const sheet = host.workbooks.FindSheet(id)) return *sheet;
  throw ObjectFailure{kExcelError, "the sheet has been closed"};
}

}  // namespace

WorkbooksObject::WorkbooksObject(std::shared_ptr<ObjectOffice> office)
    : DispatchObject(std::move(office), ObjectKind::kWorkbooks, kWorkbooksMembers) {}

Variant WorkbooksObject::Item(const ObjectCall& call) {
  const Workbooks& books = Host().workbooks;
  const Book& book = ItemOf(books.Books(), call, [&](XStringView name) { return books.FindBook(name); });
  return Make<WorkbookObject>(book.Name());
}

Variant WorkbooksObject::Count(const ObjectCall&) {
  return Variant::OfLong(static_cast<LONG>(Host().workbooks.Books().size()));
}

WorkbookObject::WorkbookObject(std::shared_ptr<ObjectOffice> office, XString book)
    : DispatchObject(std::move(office), ObjectKind::kWorkbook, kWorkbookMembers), book_(std::move(book)) {}

Variant WorkbookObject::Name(const ObjectCall&) { return Variant::OfText(BookOf(Host(), book_).Name()); }

Variant WorkbookObject::Worksheets(const ObjectCall&) { return Make<WorksheetsObject>(BookOf(Host(), book_).Name()); }

WorksheetsObject::WorksheetsObject(std::shared_ptr<ObjectOffice> office, XString book)
    : DispatchObject(std::move(office), ObjectKind::kWorksheets, kWorksheetsMembers), book_(std::move(book)) {}

Variant WorksheetsObject::Item(const ObjectCall& call) {
  const Book& book = BookOf(Host(), book_);
  const Sheet& sheet = ItemOf(book.Sheets(), call, [&](XStringView name) { return book.FindSheet(name); });
  return Make<WorksheetObject>(sheet.Id());
}

Variant WorksheetsObject::Count(const ObjectCall&) {
  return Variant::OfLong(static_cast<LONG>(BookOf(Host(), book_).Sheets().size()));
}

WorksheetObject::WorksheetObject(std::shared_ptr<ObjectOffice> office, IDSHEET sheet)
    : DispatchObject(std::move(office), ObjectKind::kWorksheet, kWorksheetMembers), sheet_(sheet) {}

Variant WorksheetObject::Name(const ObjectCall&) { return Variant::OfText(SheetOf(Host(), sheet_).Name()); }

Variant WorksheetObject::Parent(const ObjectCall&) {
  return Make<WorkbookObject>(SheetOf(Host(), sheet_).ItsBook().Name());
}

Variant WorksheetObject::UsedRange(const ObjectCall&) {
  return Make<RangeObject>(sheet_, SheetOf(Host(), sheet_).UsedArea().value_or(Area{}));
}

}  // namespace qcalc
