// CXlOper: one value of Excel's, with what it points to and who frees it.
#pragma once

#include <cstdint>
#include <span>

#include "frame/values/cell.h"
#include "xlcall/xlcall.h"

namespace quillmere {

/// The cells of a value, row-major; a single value is seen as one row of one column. A view: it owns nothing.
struct CXlCells {
  const XLOPER12* first;
  std::int32_t rows;
  std::int32_t columns;

  /// The cell at a zero-based place, which must lie within.
  const XLOPER12& At(std::int32_t row, std::int32_t column) const noexcept { return Row(row)[column]; }
  const XLOPER12* Row(std::int32_t row) const noexcept { return first + static_cast<std::int64_t>(row) * columns; }
  std::int64_t Count() const noexcept { return static_cast<std::int64_t>(rows) * columns; }
};

/// A value of any of Excel's kinds. It is in one of four states: never set; borrowed (an argument that Excel owns, read
/// only); ours (texts, arrays and areas are freed here); Excel's (freed by xlFree). Move-only; reading a value that was
/// never set is a CXlUninitializedOperException, reading the wrong kind a CXlBadOperTypeException.
class CXlOper {
 public:
  CXlOper() noexcept : value_(), owner_(Owner::kNobody) {}
  CXlOper(CXlOper&& other) noexcept;
  CXlOper& operator=(CXlOper&& other) noexcept;
  CXlOper(const CXlOper&) = delete;
  CXlOper& operator=(const CXlOper&) = delete;
  ~CXlOper() {
    if (owner_ > Owner::kBorrowed) Release();
  }

  /// Views an argument of Excel's without copying; null gives a value never set. A malformed value (unknown kind, null
  /// pointer, counts or lengths beyond the limits) is "Bad XLOPER type". The elements of an array are not looked at:
  /// frame/values/cell.h checks each where it is read.
  static CXlOper Borrow(const XLOPER12* value);
  /// Takes over a callback's result, to be freed by xlFree; a malformed one is freed at once and refused.
  static CXlOper TakeFromExcel(const XLOPER12& value);
  /// Takes over a value that the add-in allocated with frame/values/value_memory.h.
  static CXlOper TakeOwned(const XLOPER12& value) noexcept;

  static CXlOper Number(double number) noexcept;
  static CXlOper Text(XStringView text);
  static CXlOper Boolean(bool value) noexcept;
  static CXlOper Error(std::int32_t code) noexcept;
  static CXlOper Integer(std::int32_t value) noexcept;
  static CXlOper Missing() noexcept;
  static CXlOper Empty() noexcept;
  /// A reference on the current sheet.
  static CXlOper Reference(const XLREF12& area) noexcept;
  /// A reference on a sheet, of one or more areas (at most 65,535, else CXlOutOfRangeException).
  static CXlOper Reference(IDSHEET sheet, std::span<const XLREF12> areas);
  /// A copy of one cell (text copied); anything but a single cell is refused with `Source must be a scalar value`.
  static CXlOper FromCell(const XLOPER12& cell);
  /// A view of one cell, which must outlive it.
  static CXlOper BorrowCell(const XLOPER12& cell);

  void SetNumber(double number) noexcept { *this = Number(number); }
  void SetText(XStringView text) { *this = Text(text); }
  void SetBoolean(bool value) noexcept { *this = Boolean(value); }
  void SetError(std::int32_t code) noexcept { *this = Error(code); }
  void SetInteger(std::int32_t value) noexcept { *this = Integer(value); }
  void SetEmpty() noexcept { *this = Empty(); }
  /// Back to a value never set.
  void Reset() noexcept { *this = CXlOper(); }

  /// A copy that owns all it points to: texts, the array with its texts, the areas.
  CXlOper Clone() const;

  /// The kind, 0 for a value never set.
  std::uint32_t Type() const noexcept { return value_.xltype; }
  bool IsSet() const noexcept { return Type() != 0; }
  bool IsNumber() const noexcept { return Type() == xltypeNum; }
  bool IsText() const noexcept { return Type() == xltypeStr; }
  bool IsBoolean() const noexcept { return Type() == xltypeBool; }
  bool IsError() const noexcept { return Type() == xltypeErr; }
  bool IsInteger() const noexcept { return Type() == xltypeInt; }
  bool IsMissing() const noexcept { return Type() == xltypeMissing; }
  bool IsEmpty() const noexcept { return Type() == xltypeNil; }
  bool IsArray() const noexcept { return Type() == xltypeMulti; }
  bool IsReference() const noexcept { return Type() == xltypeRef || Type() == xltypeSRef; }
  /// Left out of the call: missing, or never set.
  bool IsAbsent() const noexcept { return IsMissing() || !IsSet(); }

  /// The number; an xltypeInt is taken as one.
  double AsNumber() const;
  XStringView AsText() const;
  bool AsBoolean() const;
  std::int32_t AsErrorCode() const;
  std::int32_t AsInteger() const;
  /// The areas of a reference; at least one.
  std::span<const XLREF12> Areas() const;
  /// The sheet of a reference; 0 for one on the current sheet that names none.
  IDSHEET Sheet() const;

  /// An array's cells, or a single value as one cell. A reference is "Bad XLOPER type": coerce it first.
  CXlCells Cells() const;
  /// The cell at a zero-based place of Cells(); CXlOutOfRangeException outside.
  const XLOPER12& CellAt(std::int64_t row, std::int64_t column) const;

  /// The value itself, its kind without ownership bits; Missing for a value never set.
  const XLOPER12& Raw() const noexcept;
  /// The same in the form of a callback's argument, which no callback but xlFree writes to.
  XLOPER12* ForCallback() const noexcept { return const_cast<XLOPER12*>(&Raw()); }

  /// Whether this is a view of the text that `owner` frees.
  bool ViewsTextOf(const CXlOper& owner) const noexcept {
    return owner_ == Owner::kBorrowed && owner.owner_ == Owner::kOurs && IsText() && owner.IsText() &&
           value_.val.str == owner.value_.val.str;
  }

  /// Hands the value back to Excel in `slot`, marked for xlAutoFree12 or xlFree where somebody must free it, and leaves
  /// this value never set. A number that is not finite becomes #NUM!; a value never set #VALUE!, and so does a sheet's
  /// identifier alone, which Excel may have answered with, and an error of a code that is none. A borrowed value is
  /// handed back as it is: Excel, or whoever else lent it, must still own it.
  void ReturnInto(XLOPER12& slot) noexcept;

 private:
  enum class Owner : std::uint32_t { kNobody, kBorrowed, kOurs, kExcel };

  /// Written in place, the type last: a copy made elsewhere and changed would be read back before its store is done,
  /// which costs a call of many arguments dear.
  CXlOper(const XLOPER12& value, Owner owner) noexcept : value_(value), owner_(owner) { value_.xltype = TypeOf(value); }
  void Release() noexcept;
  const XLOPER12& Checked(std::uint32_t type) const;

  XLOPER12 value_;  ///< xltype without the ownership bits
  Owner owner_;
};

}  // namespace quillmere
