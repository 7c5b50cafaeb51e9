#include "table/gathered_cells.h"

namespace quillmere {

void GatheredCells::Gather(const XLOPER12* first, std::int32_t count, std::ptrdiff_t stride, std::ptrdiff_t ahead) {
  // Every cell is written, and stays where it is a number: there is nothing to be guessed, whatever the cells are.
  double* const to = numbers_.data() + count_;
  std::size_t numbers = 0;
  std::int32_t empty = 0;
  for (std::int32_t at = 0; at < count; ++at) {
    const XLOPER12& cell = first[at * stride];
    PrefetchFarNeighbour(&cell + ahead);
    const std::uint32_t type = TypeOf(cell);
    to[numbers] = cell.val.num;
    numbers += type == xltypeNum;
    empty += type == xltypeNil;
  }
  count_ += numbers;
  filled_ += static_cast<std::int64_t>(numbers);
  if (numbers + empty != static_cast<std::size_t>(count)) GatherOthers(first, count, stride);
}

void GatheredCells::GatherOthers(const XLOPER12* first, std::int32_t count, std::ptrdiff_t stride) {
  for (std::int32_t at = 0; at < count; ++at) {
    const XLOPER12& cell = first[at * stride];
    const std::uint32_t type = CellType(cell);
    // Texts among numbers come in no order that could be foreseen; errors are few.
    filled_ += (type & (xltypeStr | xltypeBool | xltypeErr | xltypeInt)) != 0;
    if ((type & (xltypeErr | xltypeInt)) == 0) [[likely]]
      continue;
    if (type == xltypeInt)
      numbers_[count_++] = cell.val.w;
    else if (!error_)
      error_ = KnownErrorCode(cell.val.err);
  }
}

}  // namespace quillmere
