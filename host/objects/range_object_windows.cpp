#include "host/objects/range_object_windows.h"

#include <limits>

#include "host/formulas/reference_text.h"
#include "host/objects/book_objects_windows.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

using Object = RangeObject;

constexpr LONG kStyleA1 = 1;
constexpr LONG kStyleR1C1 = -4150;

constexpr ObjectMember kMembers[] = {
    Member<Object, &Object::Row>(L"Row"),
    Member<Object, &Object::Column>(L"Column"),
    Member<Object, &Object::Rows>(L"Rows"),
    Member<Object, &Object::Columns>(L"Columns"),
    Member<Object, &Object::Count>(L"Count"),
    Member<Object, &Object::Address>(L"Address", DISPATCH_PROPERTYGET, 0, 4),
    Member<Object, &Object::Address>(L"AddressLocal", DISPATCH_PROPERTYGET, 0, 4),
    Member<Object, &Object::Worksheet>(L"Worksheet"),
    Member<Object, &Object::Worksheet>(L"Parent"),
};

}  // namespace

RangeObject::RangeObject(std::shared_ptr<ObjectOffice> office, IDSHEET sheet, const Area& area)
    : RangeObject(std::move(office), sheet, area, Unit::kCells) {}

RangeObject::RangeObject(std::shared_ptr<ObjectOffice> office, IDSHEET sheet, const Area& area, Unit unit)
    : DispatchObject(std::move(office), ObjectKind::kRange, kMembers), sheet_(sheet), area_(area), unit_(unit) {}

Variant RangeObject::Row(const ObjectCall&) { return Variant::OfLong(area_.firstRow + 1); }
Variant RangeObject::Column(const ObjectCall&) { return Variant::OfLong(area_.firstColumn + 1); }
Variant RangeObject::Rows(const ObjectCall&) { return Make<RangeObject>(sheet_, area_, Unit::kRows); }
Variant RangeObject::Columns(const ObjectCall&) { return Make<RangeObject>(sheet_, area_, Unit::kColumns); }

Variant RangeObject::Count(const ObjectCall&) {
  if (unit_ == Unit::kRows) return Variant::OfLong(area_.Rows());
  if (unit_ == Unit::kColumns) return Variant::OfLong(area_.Columns());
  const std::int64_t cells = std::int64_t{area_.Rows()} * area_.Columns();
  if (cells > std::numeric_limits<LONG>::max()) throw ObjectFailure{DISP_E_OVERFLOW};
  return Variant::OfLong(static_cast<LONG>(cells));
}

Variant RangeObject::Address(const ObjectCall& call) {
  const bool isAbsolute = call.BooleanAt(0, true);
  const LONG style = call.LongAt(2, kStyleA1);
  if (call.BooleanAt(1, true) != isAbsolute || (style != kStyleA1 && style != kStyleR1C1) ||
      (style == kStyleR1C1 && !isAbsolute))
    throw ObjectFailure{kExcelError, "the host does not write addresses so"};
  std::string text = style == kStyleA1 ? AreaToText(area_, isAbsolute) : AreaToR1C1(area_);
  if (call.BooleanAt(3, false)) {
    const Sheet* const sheet = Host().workbooks.FindSheet(sheet_);
    if (!sheet) throw ObjectFailure{kExcelError, "the sheet has been closed"};
    text = QualifiedSheetName(sheet->FullName()) + "!" + text;
  }
  return Variant::OfText(*FromUtf8(text));
}

Variant RangeObject::Worksheet(const ObjectCall&) { return Make<WorksheetObject>(sheet_); }

}  // namespace qcalc
