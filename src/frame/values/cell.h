// Reading single cells: elements of an array, or a scalar value. Elements come from Excel as they are and are checked
// here, where they are read.
//
// What reads the host's memory is never noexcept: a bad pointer faults there, and the fault unwinds as an exception.
#pragma once

#include <cmath>
#include <cstdint>

#include "frame/errors/exceptions.h"
#include "xlcall/xlcall.h"

namespace quillmere {

/// The bits of xltype that say who frees what a value points to. All others name the kind.
constexpr std::uint32_t kOwnershipBits = xlbitXLFree | xlbitDLLFree;

constexpr std::uint32_t kCellTypes =
    xltypeNum | xltypeStr | xltypeBool | xltypeErr | xltypeMissing | xltypeNil | xltypeInt;

/// Whether `type` is one of the kinds that a single cell can have.
constexpr bool IsCellType(std::uint32_t type) { return (type & (type - 1)) == 0 && (type & kCellTypes) != 0; }

/// The kind of any value, single cell or not. A bit that no kind has makes it none of the known ones.
inline std::uint32_t TypeOf(const XLOPER12& value) { return value.xltype & ~kOwnershipBits; }

/// The kind of a single cell; a nested array, a reference or an unknown kind is "Bad XLOPER type".
inline std::uint32_t CellType(const XLOPER12& cell) {
  const std::uint32_t type = TypeOf(cell);
  if (!IsCellType(type)) [[unlikely]]
    ThrowBadOperType();
  return type;
}

inline bool IsNumberCell(const XLOPER12& cell) { return TypeOf(cell) == xltypeNum; }
inline bool IsTextCell(const XLOPER12& cell) { return TypeOf(cell) == xltypeStr; }
inline bool IsBooleanCell(const XLOPER12& cell) { return TypeOf(cell) == xltypeBool; }
inline bool IsErrorCell(const XLOPER12& cell) { return TypeOf(cell) == xltypeErr; }
inline bool IsEmptyCell(const XLOPER12& cell) { return TypeOf(cell) == xltypeNil; }

/// The text of a cell known to be one, viewed in place. A null pointer or a length beyond 32,767 is "Bad XLOPER type".
inline XStringView TextOf(const XLOPER12& cell) {
  const XCHAR* const text = cell.val.str;
  if (text == nullptr || text[0] > kXlMaxText) [[unlikely]]
    ThrowBadOperType();
  return {text + 1, text[0]};
}

/// The text of a cell; any other kind is "Bad XLOPER type".
inline XStringView CellText(const XLOPER12& cell) {
  if (!IsTextCell(cell)) [[unlikely]]
    ThrowBadOperType();
  return TextOf(cell);
}

/// The number of a cell, xltypeInt included; any other kind is "Bad XLOPER type".
inline double CellNumber(const XLOPER12& cell) {
  if (IsNumberCell(cell)) [[likely]]
    return cell.val.num;
  if (TypeOf(cell) != xltypeInt) ThrowBadOperType();
  return cell.val.w;
}

inline bool CellBoolean(const XLOPER12& cell) {
  if (!IsBooleanCell(cell)) [[unlikely]]
    ThrowBadOperType();
  return cell.val.xbool != 0;
}

/// The code as it is where it can be one of Excel's, newer ones included; what is none must not reach a cell.
constexpr std::int32_t KnownErrorCode(std::int32_t code) {
  constexpr std::int32_t kMost = 255;
  return code >= 0 && code <= kMost ? code : xlerrValue;
}

inline std::int32_t CellErrorCode(const XLOPER12& cell) {
  if (!IsErrorCell(cell)) [[unlikely]]
    ThrowBadOperType();
  return cell.val.err;
}

/// Asks the processor for a cell that is soon to be read. Its value and its kind may lie in two lines of the cache.
inline void PrefetchCell(const XLOPER12* cell) noexcept {
  __builtin_prefetch(&cell->val);
  __builtin_prefetch(&cell->xltype);
}

/// The same for a cell that is read much later, into a cache that holds more than the first.
inline void PrefetchFarCell(const XLOPER12* cell) noexcept {
  constexpr int kForReading = 0;
  constexpr int kSecondCache = 2;
  __builtin_prefetch(&cell->val, kForReading, kSecondCache);
  __builtin_prefetch(&cell->xltype, kForReading, kSecondCache);
}

/// The same for each cell of a line in turn: the one beside it asks for the rest of it.
inline void PrefetchFarNeighbour(const XLOPER12* cell) noexcept {
  constexpr int kForReading = 0;
  constexpr int kSecondCache = 2;
  __builtin_prefetch(&cell->val, kForReading, kSecondCache);
}

/// And for the text of a cell that is there already: it lies elsewhere.
inline void PrefetchText(const XLOPER12& cell) {
  if (IsTextCell(cell)) __builtin_prefetch(cell.val.str);
}

// Makers of single cells that point to nothing.

inline XLOPER12 ErrorCell(std::int32_t code) noexcept {
  XLOPER12 cell{};
  cell.val.err = code;
  cell.xltype = xltypeErr;
  return cell;
}

/// A number cell; one that is not finite becomes #NUM!, since Excel takes no other.
inline XLOPER12 NumberCell(double number) noexcept {
  if (!std::isfinite(number)) return ErrorCell(xlerrNum);
  XLOPER12 cell{};
  cell.val.num = number;
  cell.xltype = xltypeNum;
  return cell;
}

inline XLOPER12 BooleanCell(bool value) noexcept {
  XLOPER12 cell{};
  cell.val.xbool = value ? 1 : 0;
  cell.xltype = xltypeBool;
  return cell;
}

inline XLOPER12 IntegerCell(std::int32_t value) noexcept {
  XLOPER12 cell{};
  cell.val.w = value;
  cell.xltype = xltypeInt;
  return cell;
}

/// An empty cell.
inline XLOPER12 EmptyCell() noexcept {
  XLOPER12 cell{};
  cell.xltype = xltypeNil;
  return cell;
}

/// An argument left out.
inline XLOPER12 MissingCell() noexcept {
  XLOPER12 cell{};
  cell.xltype = xltypeMissing;
  return cell;
}

}  // namespace quillmere
