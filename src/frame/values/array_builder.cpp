#include "frame/values/array_builder.h"

#include <utility>

#include "frame/errors/messages.h"
#include "frame/values/cell_copy.h"

namespace quillmere {
namespace {

/// 64 GB of cells. A system that promises more memory than it has would give it, and end the program as it is filled.
constexpr std::int64_t kMaxCells = (std::int64_t{64} << 30) / static_cast<std::int64_t>(sizeof(XLOPER12));

void CheckScalar(const XLOPER12& value) {
  const std::uint32_t type = TypeOf(value);
  if (type == xltypeMulti || type == xltypeRef || type == xltypeSRef)
    throw CXlIllegalArgumentException(MessageText(MessageId::kCellNeedsScalar));
}

}  // namespace

void CheckArraySize(std::int64_t rows, std::int64_t columns) {
  if (rows <= 0 || columns <= 0) throw CXlEmptyArrayException();
  if (rows > kXlMaxRows || columns > kXlMaxColumns || rows * columns > kMaxCells) throw CXlArrayTooLargeException();
}

/// The first and the last of `count` cells must lie in the array; those between then do.
inline void CXlArrayBuilder::CheckRun(const XLOPER12* to, std::size_t count, std::ptrdiff_t stride) const {
  const auto total = static_cast<std::uint64_t>(std::int64_t{rows_} * columns_);
  // Addresses, since pointers into different arrays have no difference.
  const std::uint64_t offset = reinterpret_cast<std::uintptr_t>(to) - reinterpret_cast<std::uintptr_t>(cells_);
  const std::uint64_t place = offset / sizeof(XLOPER12);
  if (offset % sizeof(XLOPER12) != 0 || place >= total) [[unlikely]]
    ThrowOutOfRange();
  if (stride == 1 && count <= total - place) [[likely]]
    return;
  std::int64_t last = 0;
  if (__builtin_mul_overflow(count - 1, stride, &last) || __builtin_add_overflow(last, place, &last) || last < 0 ||
      last >= static_cast<std::int64_t>(total))
    ThrowOutOfRange();
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
  XLOPER12* const to = At(row, column);
  CopyUnits(NewText(to, text.size()), text.data(), text.size());
}

void CXlArrayBuilder::Put(std::int64_t row, std::int64_t column, const XLOPER12& cell) {
  CheckScalar(cell);
  quillmere::CopyCells(texts_, At(row, column), &cell, 1, 1, 1);
}

void CXlArrayBuilder::Put(std::int64_t row, std::int64_t column, const CXlOper& value) {
  if (!value.IsSet()) ThrowUninitializedOper();
  Put(row, column, value.Raw());
}

void CXlArrayBuilder::CopyCells(XLOPER12* to, const XLOPER12* from, std::size_t count, std::ptrdiff_t toStride,
                                std::ptrdiff_t fromStride) {
  if (count == 0) return;
  CheckRun(to, count, toStride);
  quillmere::CopyCells(texts_, to, from, count, toStride, fromStride);
}

void CXlArrayBuilder::CopyRows(XLOPER12* to, const XLOPER12* from, std::int32_t rows, std::int32_t columns,
                               std::ptrdiff_t fromStride, std::ptrdiff_t step) {
  CheckRun(to, static_cast<std::size_t>(rows - 1) * columns_ + columns, 1);
  quillmere::CopyRows(texts_, {to, columns_, from, fromStride, step, rows, columns});
}

void CXlArrayBuilder::Fill(XLOPER12* to, std::size_t count, std::ptrdiff_t stride, const XLOPER12& value) {
  if (count == 0) return;
  CheckRun(to, count, stride);
  Repeat(to, count, stride, Store(value));
}

XLOPER12 CXlArrayBuilder::Store(const XLOPER12& value) {
  CheckScalar(value);
  // After Finish the texts' memory belongs to the array, which may be gone.
  if (cells_ == nullptr) ThrowOutOfRange();
  XLOPER12 stored;
  quillmere::CopyCells(texts_, &stored, &value, 1, 1, 1);
  return stored;
}

void CXlArrayBuilder::Repeat(XLOPER12* to, std::size_t count, std::ptrdiff_t stride, const XLOPER12& stored) {
  if (count == 0) return;
  CheckRun(to, count, stride);
  for (; count > 1; --count, to += stride) *to = stored;
  *to = stored;
}

CXlOper CXlArrayBuilder::Finish() noexcept {
  AttachChunks(cells_, std::exchange(texts_.chunks_, nullptr));
  XLOPER12 value{};
  value.val.array.lparray = std::exchange(cells_, nullptr);
  value.val.array.rows = std::exchange(rows_, 0);
  value.val.array.columns = std::exchange(columns_, 0);
  value.xltype = xltypeMulti;
  return CXlOper::TakeOwned(value);
}

CXlOper CXlArrayBuilder::FinishCollapsed() {
  return rows_ == 1 && columns_ == 1 ? CXlOper::FromCell(*cells_) : Finish();
}

}  // namespace quillmere
