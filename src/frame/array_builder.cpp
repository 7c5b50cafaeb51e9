#include "frame/array_builder.h"

#include <utility>

#include "frame/host_copy.h"
#include "frame/messages.h"

namespace quillmere {
namespace {

void CheckScalar(const XLOPER12& value) {
  const std::uint32_t type = TypeOf(value);
  if (type == xltypeMulti || type == xltypeRef || type == xltypeSRef)
    throw CXlIllegalArgumentException(MessageText(MessageId::kCellNeedsScalar));
}

}  // namespace

void CheckArraySize(std::int64_t rows, std::int64_t columns) {
  if (rows <= 0 || columns <= 0) throw CXlEmptyArrayException();
  if (rows > kXlMaxRows || columns > kXlMaxColumns) throw CXlArrayTooLargeException();
}

CXlArrayBuilder::CXlArrayBuilder(std::int64_t rows, std::int64_t columns) {
  CheckArraySize(rows, columns);
  cells_ = AllocateArray(rows, columns);
  rows_ = static_cast<std::int32_t>(rows);
  columns_ = static_cast<std::int32_t>(columns);
}

CXlArrayBuilder::~CXlArrayBuilder() {
  ReleaseChunks(texts_.chunks_);
  ReleaseArray(cells_);
}

void CXlArrayBuilder::PutText(std::int64_t row, std::int64_t column, XStringView text) {
  if (text.size() > kXlMaxText) ThrowStringTooLong();
  XLOPER12 cell{};
  cell.val.str = texts_.Allocate(text.size());
  cell.xltype = xltypeStr;
  CopyText(cell.val.str, text.data(), text.size());
  *At(row, column) = cell;
}

void CXlArrayBuilder::Put(std::int64_t row, std::int64_t column, const XLOPER12& cell) {
  CheckScalar(cell);
  CopyCells(At(row, column), &cell, 1);
}

void CXlArrayBuilder::Put(std::int64_t row, std::int64_t column, const CXlOper& value) {
  if (!value.IsSet()) ThrowUninitializedOper();
  Put(row, column, value.Raw());
}

void CXlArrayBuilder::CopyCells(XLOPER12* to, const XLOPER12* from, std::size_t count, std::ptrdiff_t toStride,
                                std::ptrdiff_t fromStride) {
  quillmere::CopyCells(texts_, to, from, count, toStride, fromStride);
}

void CXlArrayBuilder::Fill(XLOPER12* to, std::size_t count, std::ptrdiff_t stride, const XLOPER12& value) {
  if (count == 0) return;
  CheckScalar(value);
  XLOPER12 cell;
  CopyCells(&cell, &value, 1);
  for (; count != 0; --count, to += stride) *to = cell;
}

CXlOper CXlArrayBuilder::Finish() noexcept {
  AttachChunks(cells_, std::exchange(texts_.chunks_, nullptr));
  XLOPER12 value{};
  value.val.array.lparray = std::exchange(cells_, nullptr);
  value.val.array.rows = rows_;
  value.val.array.columns = columns_;
  value.xltype = xltypeMulti;
  return CXlOper::TakeOwned(value);
}

CXlOper CXlArrayBuilder::FinishCollapsed() {
  return rows_ == 1 && columns_ == 1 ? CXlOper::FromCell(*cells_) : Finish();
}

}  // namespace quillmere
