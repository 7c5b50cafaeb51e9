#include "frame/values/xl_oper.h"

#include <algorithm>
#include <utility>

#include "frame/entry/excel_entry.h"
#include "frame/errors/messages.h"
#include "frame/values/array_builder.h"
#include "xlcall/callback_list.h"

namespace quillmere {
namespace {

/// The value without what no cell holds: a number that is not finite, a truth value beside 0 and 1, an error's code
/// that is none. Who hands on what Excel, or somebody in its place, passed has not looked at it.
XLOPER12 Cleaned(const XLOPER12& value) noexcept {
  switch (value.xltype) {
    case xltypeNum:
      return NumberCell(value.val.num);
    case xltypeBool:
      return BooleanCell(value.val.xbool != 0);
    case xltypeErr:
      return ErrorCell(KnownErrorCode(value.val.err));
    default:
      return value;
  }
}

bool IsSheetArea(const XLREF12& area) {
  return area.rwFirst >= 0 && area.rwFirst <= area.rwLast && area.rwLast < kXlMaxRows && area.colFirst >= 0 &&
         area.colFirst <= area.colLast && area.colLast < kXlMaxColumns;
}

bool AreSheetAreas(const XLMREF12& areas) {
  for (std::uint16_t index = 0; index < areas.count; ++index)
    if (!IsSheetArea(areas.reftbl[index])) return false;
  return areas.count != 0;
}

/// Whether a value is of a kind that functions can meet, with what it points to in order.
bool IsWellFormed(const XLOPER12& value) {
  switch (TypeOf(value)) {
    case xltypeNum:
    case xltypeBool:
    case xltypeErr:
    case xltypeMissing:
    case xltypeNil:
    case xltypeInt:
      return true;
    case xltypeStr:
      return value.val.str != nullptr && value.val.str[0] <= kXlMaxText;
    case xltypeMulti:
      return value.val.array.lparray != nullptr && value.val.array.rows > 0 && value.val.array.rows <= kXlMaxRows &&
             value.val.array.columns > 0 && value.val.array.columns <= kXlMaxColumns;
    case xltypeSRef:
      return value.val.sref.count == 1 && IsSheetArea(value.val.sref.ref);
    case xltypeRef:
      return value.val.mref.lpmref != nullptr && AreSheetAreas(*value.val.mref.lpmref);
    default:
      return false;
  }
}

/// Whether values of that kind point to memory that somebody must free.
bool PointsToMemory(std::uint32_t type) noexcept {
  return type == xltypeStr || type == xltypeMulti || type == xltypeRef;
}

void FreeByExcel(XLOPER12 value) noexcept {
  XLOPER12* arguments[] = {&value};
  Excel12v(xlFree, nullptr, 1, arguments);
}

}  // namespace

CXlOper::CXlOper(CXlOper&& other) noexcept
    : value_(std::exchange(other.value_, XLOPER12{})), owner_(std::exchange(other.owner_, Owner::kNobody)) {}

CXlOper& CXlOper::operator=(CXlOper&& other) noexcept {
  CXlOper taken(std::move(other));
  std::swap(value_, taken.value_);
  std::swap(owner_, taken.owner_);
  return *this;
}

void CXlOper::Release() noexcept {
  if (owner_ == Owner::kOurs) {
    value_.xltype |= xlbitDLLFree;
    ReleaseOwned(value_);
  } else {
    FreeByExcel(value_);
  }
}

CXlOper CXlOper::Borrow(const XLOPER12* value) {
  if (value == nullptr) return {};
  if (!IsWellFormed(*value)) ThrowBadOperType();
  return {*value, Owner::kBorrowed};
}

CXlOper CXlOper::TakeFromExcel(const XLOPER12& value) {
  // A sheet's identifier comes as a reference without areas.
  const bool isSheetOnly = TypeOf(value) == xltypeRef && value.val.mref.lpmref == nullptr;
  if (!isSheetOnly && !IsWellFormed(value)) {
    FreeByExcel(value);
    ThrowBadOperType();
  }
  return {value, PointsToMemory(TypeOf(value)) ? Owner::kExcel : Owner::kNobody};
}

CXlOper CXlOper::TakeOwned(const XLOPER12& value) noexcept {
  return {value, PointsToMemory(TypeOf(value)) ? Owner::kOurs : Owner::kNobody};
}

CXlOper CXlOper::Number(double number) noexcept { return {NumberCell(number), Owner::kNobody}; }
CXlOper CXlOper::Boolean(bool value) noexcept { return {BooleanCell(value), Owner::kNobody}; }
CXlOper CXlOper::Error(std::int32_t code) noexcept { return {ErrorCell(code), Owner::kNobody}; }
CXlOper CXlOper::Integer(std::int32_t value) noexcept { return {IntegerCell(value), Owner::kNobody}; }
CXlOper CXlOper::Missing() noexcept { return {MissingCell(), Owner::kNobody}; }
CXlOper CXlOper::Empty() noexcept { return {EmptyCell(), Owner::kNobody}; }

CXlOper CXlOper::Text(XStringView text) {
  XLOPER12 value{};
  value.val.str = AllocateText(text);
  value.xltype = xltypeStr;
  return {value, Owner::kOurs};
}

CXlOper CXlOper::Reference(const XLREF12& area) noexcept {
  XLOPER12 value{};
  value.val.sref.count = 1;
  value.val.sref.ref = area;
  value.xltype = xltypeSRef;
  return {value, Owner::kNobody};
}

CXlOper CXlOper::Reference(IDSHEET sheet, std::span<const XLREF12> areas) {
  if (areas.size() > UINT16_MAX) ThrowOutOfRange();
  XLOPER12 value{};
  value.val.mref.idSheet = sheet;
  value.xltype = xltypeRef;
  if (!areas.empty()) {
    value.val.mref.lpmref = AllocateAreas(static_cast<std::uint16_t>(areas.size()));
    std::copy(areas.begin(), areas.end(), value.val.mref.lpmref->reftbl);
  }
  return {value, Owner::kOurs};
}

CXlOper CXlOper::FromCell(const XLOPER12& cell) {
  const std::uint32_t type = TypeOf(cell);
  if (type == xltypeMulti || type == xltypeRef || type == xltypeSRef)
    throw CXlIllegalArgumentException(MessageText(MessageId::kSourceNeedsScalar));
  return BorrowCell(cell).Clone();
}

CXlOper CXlOper::BorrowCell(const XLOPER12& cell) {
  if (CellType(cell) == xltypeStr) TextOf(cell);
  return {cell, Owner::kBorrowed};
}

CXlOper CXlOper::Clone() const {
  switch (Type()) {
    case xltypeStr:
      return Text(AsText());
    case xltypeRef:
      return value_.val.mref.lpmref == nullptr ? Reference(Sheet(), {}) : Reference(Sheet(), Areas());
    case xltypeMulti: {
      CXlArrayBuilder copy(value_.val.array.rows, value_.val.array.columns);
      copy.CopyCells(copy.Row(0), value_.val.array.lparray, static_cast<std::size_t>(Cells().Count()));
      return copy.Finish();
    }
    default:
      return {value_, Owner::kNobody};
  }
}

const XLOPER12& CXlOper::Checked(std::uint32_t type) const {
  if (Type() != type) {
    if (!IsSet()) ThrowUninitializedOper();
    ThrowBadOperType();
  }
  return value_;
}

double CXlOper::AsNumber() const { return IsInteger() ? value_.val.w : Checked(xltypeNum).val.num; }
XStringView CXlOper::AsText() const { return TextOf(Checked(xltypeStr)); }
bool CXlOper::AsBoolean() const { return Checked(xltypeBool).val.xbool != 0; }
std::int32_t CXlOper::AsErrorCode() const { return Checked(xltypeErr).val.err; }
std::int32_t CXlOper::AsInteger() const { return Checked(xltypeInt).val.w; }

std::span<const XLREF12> CXlOper::Areas() const {
  if (Type() == xltypeSRef) return {&value_.val.sref.ref, 1};
  const XLMREF12* const areas = Checked(xltypeRef).val.mref.lpmref;
  if (areas == nullptr) ThrowBadOperType();
  return {areas->reftbl, areas->count};
}

IDSHEET CXlOper::Sheet() const { return Type() == xltypeSRef ? 0 : Checked(xltypeRef).val.mref.idSheet; }

CXlCells CXlOper::Cells() const {
  if (IsArray()) return {value_.val.array.lparray, value_.val.array.rows, value_.val.array.columns};
  if (!IsSet()) ThrowUninitializedOper();
  if (IsReference()) ThrowBadOperType();
  return {&value_, 1, 1};
}

const XLOPER12& CXlOper::CellAt(std::int64_t row, std::int64_t column) const {
  const CXlCells cells = Cells();
  if (row < 0 || row >= cells.rows || column < 0 || column >= cells.columns) ThrowOutOfRange();
  return cells.At(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column));
}

const XLOPER12& CXlOper::Raw() const noexcept {
  static constexpr XLOPER12 kMissing = {.val = {}, .xltype = xltypeMissing};
  return IsSet() ? value_ : kMissing;
}

void CXlOper::ReturnInto(XLOPER12& slot) noexcept {
  const bool isSheetAlone = Type() == xltypeRef && value_.val.mref.lpmref == nullptr;
  if (!IsSet() || isSheetAlone) {
    Reset();
    slot = ErrorCell(xlerrValue);
    return;
  }
  slot = Cleaned(value_);
  if (owner_ == Owner::kOurs) slot.xltype |= xlbitDLLFree;
  if (owner_ == Owner::kExcel) slot.xltype |= xlbitXLFree;
  value_ = XLOPER12{};
  owner_ = Owner::kNobody;
}

}  // namespace quillmere
