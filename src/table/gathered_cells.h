// Taking the numbers out of cells.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "frame/values/cell.h"
#include "frame/values/scratch_array.h"

namespace quillmere {

/// Cells on their way into sums and the like: their numbers beside each other, and what else was met. Each cell is
/// looked at once, whatever is made of the numbers.
class GatheredCells {
 public:
  /// Room for so many numbers. std::bad_alloc.
  explicit GatheredCells(std::size_t room) : numbers_(room) {}

  void Clear() noexcept {
    count_ = 0;
    filled_ = 0;
    error_.reset();
  }
  /// Takes in cells that stand `stride` cells apart, behind those that it has; there must be room. Asks for the
  /// cells `ahead` of them, which come next. What is no cell: "Bad XLOPER type".
  void Gather(const XLOPER12* first, std::int32_t count, std::ptrdiff_t stride, std::ptrdiff_t ahead = 0);
  bool HasRoomFor(std::size_t count) const noexcept { return count <= numbers_.size() - count_; }

  std::span<const double> Numbers() const noexcept { return {numbers_.data(), count_}; }
  /// The cells that are not empty.
  std::int64_t Filled() const noexcept { return filled_; }
  /// The code of the first error.
  std::optional<std::int32_t> Error() const noexcept { return error_; }

 private:
  void GatherOthers(const XLOPER12* first, std::int32_t count, std::ptrdiff_t stride);

  ScratchArray<double> numbers_;
  std::size_t count_ = 0;
  std::int64_t filled_ = 0;
  std::optional<std::int32_t> error_;
};

}  // namespace quillmere
