// Building an array result once, at its final size.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "frame/values/value_memory.h"
#include "frame/values/xl_oper.h"

namespace quillmere {

/// Raises CXlEmptyArrayException for no rows or no columns, CXlArrayTooLargeException beyond 1,048,576 x 16,384 and for
/// more cells than memory holds.
void CheckArraySize(std::int64_t rows, std::int64_t columns);

/// An array under construction. Its cells are unset until put: every cell must be put before Finish, and one that is
/// put again holds the last value. An exception midway frees everything. Places are zero-based; one outside the array,
/// or anything put or stored after Finish, raises CXlOutOfRangeException and leaves the array as it was.
class CXlArrayBuilder {
 public:
  /// Takes the memory for the cells: CheckArraySize's exceptions (before any memory is taken), std::bad_alloc.
  CXlArrayBuilder(std::int64_t rows, std::int64_t columns);
  ~CXlArrayBuilder();
  CXlArrayBuilder(const CXlArrayBuilder&) = delete;
  CXlArrayBuilder& operator=(const CXlArrayBuilder&) = delete;

  std::int32_t Rows() const noexcept { return rows_; }
  std::int32_t Columns() const noexcept { return columns_; }
  /// The first cell of a row, to write through.
  XLOPER12* Row(std::int64_t row) { return At(row, 0); }
  XLOPER12* At(std::int64_t row, std::int64_t column) {
    if (row < 0 || row >= rows_ || column < 0 || column >= columns_) [[unlikely]]
      ThrowOutOfRange();
    return cells_ + row * columns_ + column;
  }

  // Written in place: a cell that is put together elsewhere is read back before its stores are done.

  void PutNumber(std::int64_t row, std::int64_t column, double number) {
    XLOPER12* const to = At(row, column);
    if (!std::isfinite(number)) [[unlikely]]
      return PutError(row, column, xlerrNum);  // Excel takes no other numbers
    to->val.num = number;
    to->xltype = xltypeNum;
  }
  void PutBoolean(std::int64_t row, std::int64_t column, bool value) {
    XLOPER12* const to = At(row, column);
    to->val.xbool = value ? 1 : 0;
    to->xltype = xltypeBool;
  }
  /// A code that is none of Excel's becomes #VALUE!.
  void PutError(std::int64_t row, std::int64_t column, std::int32_t code) {
    XLOPER12* const to = At(row, column);
    to->val.err = KnownErrorCode(code);
    to->xltype = xltypeErr;
  }
  void PutEmpty(std::int64_t row, std::int64_t column) { *At(row, column) = EmptyCell(); }
  /// CXlStringTooLongException above 32,767 units.
  void PutText(std::int64_t row, std::int64_t column, XStringView text);
  /// Makes a cell of the array a text of `units` units and returns where they are to be written.
  /// CXlStringTooLongException above 32,767.
  XCHAR* NewText(XLOPER12* to, std::size_t units) {
    if (units > kXlMaxText) [[unlikely]]
      ThrowStringTooLong();
    XCHAR* const text = texts_.Allocate(units);
    *text = static_cast<XCHAR>(units);
    to->val.str = text;
    to->xltype = xltypeStr;
    return text + 1;
  }
  /// Room for counted texts, `units` units with their lengths, that cells of the array may point to.
  XCHAR* RoomForTexts(std::size_t units) { return texts_.Allocate(units - 1); }
  /// A copy of a cell; of anything but a single cell: "Right-hand side of cell assignment must be a scalar value".
  void Put(std::int64_t row, std::int64_t column, const XLOPER12& cell);
  void Put(std::int64_t row, std::int64_t column, const CXlOper& value);

  /// Copies `count` cells starting at `from` to the cells starting at `to`, texts included; strides count cells. Here
  /// and below the cells written must lie in the array; with a count of 0, `to` may be anything.
  void CopyCells(XLOPER12* to, const XLOPER12* from, std::size_t count, std::ptrdiff_t toStride = 1,
                 std::ptrdiff_t fromStride = 1);
  /// The same for rows of cells, one at least, from `to` on: `step` is from cell to cell of a row, `fromStride` from
  /// row to row of those that are copied.
  void CopyRows(XLOPER12* to, const XLOPER12* from, std::int32_t rows, std::int32_t columns, std::ptrdiff_t fromStride,
                std::ptrdiff_t step);
  /// Writes `value` to `count` cells; a text is stored once and shared by them. Refusals as Put.
  void Fill(XLOPER12* to, std::size_t count, std::ptrdiff_t stride, const XLOPER12& value);
  /// Stores the text of `value`, if it is one: what comes back may be repeated in this array. Refusals as Put.
  XLOPER12 Store(const XLOPER12& value);
  /// Writes what Store gave to `count` cells.
  void Repeat(XLOPER12* to, std::size_t count, std::ptrdiff_t stride, const XLOPER12& stored);

  /// The finished array; the builder is then empty.
  CXlOper Finish() noexcept;
  /// The same, but an array of one cell becomes that cell's value.
  CXlOper FinishCollapsed();

 private:
  void CheckRun(const XLOPER12* to, std::size_t count, std::ptrdiff_t stride) const;

  std::int32_t rows_ = 0;
  std::int32_t columns_ = 0;
  XLOPER12* cells_ = nullptr;
  TextArena texts_;
};

}  // namespace quillmere
