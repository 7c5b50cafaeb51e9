// Tuples of cells, such as the rows of a table or keys of several parts, as engines that compare or index them see
// them.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>

#include "frame/values/xl_oper.h"

namespace quillmere {

/// A list of tuples of cells, viewed where they are. Tuples are numbered from 0 by their places, and so are the parts
/// that each of them has.
template <class T>
concept CellTuples = requires(const T& tuples, std::int32_t place, std::size_t part, const XLOPER12& cell) {
  { tuples.Count() } -> std::same_as<std::int32_t>;
  { tuples.Parts() } -> std::same_as<std::size_t>;
  /// A part as it stands in memory.
  { tuples.CellAt(place, part) } -> std::same_as<const XLOPER12*>;
  /// From such a cell to that of the next tuple, in cells.
  { tuples.Stride() } -> std::same_as<std::ptrdiff_t>;
  /// The place behind the last tuple that such steps reach from this one.
  { tuples.RunEnd(place) } -> std::same_as<std::int32_t>;
  /// What a cell of a tuple stands for.
  { tuples.Meaning(cell) } -> std::same_as<const XLOPER12&>;
};

/// The rows of an array as tuples of the cells in some of its columns, which may be any, in any order.
class RowTuples {
 public:
  /// Columns count from 0. Cells and columns are viewed and must outlive this.
  RowTuples(const CXlCells& cells, std::span<const std::int32_t> columns) noexcept
      : first_(cells.first), stride_(cells.columns), count_(cells.rows), columns_(columns) {}

  /// The same rows from the last to the first.
  RowTuples Reversed() const noexcept {
    RowTuples reversed = *this;
    if (count_ != 0) reversed.first_ += (count_ - 1) * stride_;
    reversed.stride_ = -stride_;
    return reversed;
  }

  std::int32_t Count() const noexcept { return count_; }
  std::size_t Parts() const noexcept { return columns_.size(); }
  const XLOPER12* CellAt(std::int32_t place, std::size_t part) const noexcept {
    return first_ + place * stride_ + columns_[part];
  }
  std::ptrdiff_t Stride() const noexcept { return stride_; }
  std::int32_t RunEnd(std::int32_t) const noexcept { return count_; }
  const XLOPER12& Meaning(const XLOPER12& cell) const noexcept { return cell; }

  const XLOPER12& At(std::int32_t place, std::size_t part) const noexcept { return *CellAt(place, part); }

 private:
  const XLOPER12* first_;
  std::ptrdiff_t stride_;
  std::int32_t count_;
  std::span<const std::int32_t> columns_;
};

}  // namespace quillmere
