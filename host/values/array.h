// Arrays: rectangles of values that no longer change.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "host/values/cell_view.h"
#include "host/values/text_pool.h"

namespace qcalc {

/// The most cells of one array: a gigabyte. Excel, too, ends somewhere below what its sheet could hold.
constexpr std::int64_t kMaxArrayCells = std::int64_t{1} << 26;

/// A rectangle of values, at least 1 x 1, never changed once built; handed round as ArrayPtr.
class Array {
 public:
  std::int32_t Rows() const { return rows_; }
  std::int32_t Columns() const { return columns_; }
  std::size_t Size() const { return cells_.size(); }
  /// Zero-based.
  const CellView& At(std::int32_t row, std::int32_t column) const {
    return cells_[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
                  static_cast<std::size_t>(column)];
  }
  /// All elements, row by row.
  std::span<const CellView> Cells() const { return cells_; }

 private:
  friend class ArrayBuilder;
  Array(std::int32_t rows, std::int32_t columns)
      : rows_(rows), columns_(columns), cells_(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns)) {}

  std::int32_t rows_;
  std::int32_t columns_;
  std::vector<CellView> cells_;
  std::vector<std::shared_ptr<const TextPool>> pools_;
};

using ArrayPtr = std::shared_ptr<const Array>;

/// Fills an array of a known size; elements not set are empty.
class ArrayBuilder {
 public:
  /// Throws std::length_error below 1, beyond 1,048,576 x 16,384 or with more than kMaxArrayCells.
  ArrayBuilder(std::int32_t rows, std::int32_t columns);
  std::int32_t Rows() const { return array_->rows_; }
  std::int32_t Columns() const { return array_->columns_; }
  /// Copies a text into the array's own pool.
  void Set(std::int32_t row, std::int32_t column, const CellView& cell) {
    Slot(row, column) = cell.IsText() ? CellView::Text(pool_->Add(cell.AsText())) : cell;
  }
  /// Stores the view as it is; its text must live in a pool named to Share, or be static.
  void SetShared(std::int32_t row, std::int32_t column, const CellView& cell) { Slot(row, column) = cell; }
  /// Keeps `pool` alive as long as the array.
  void Share(std::shared_ptr<const TextPool> pool);
  /// Keeps the texts of `array` alive as long as this one.
  void ShareTextsOf(const Array& array);
  /// The elements, row by row, to be written in place under the rule of SetShared.
  std::span<CellView> Cells() { return array_->cells_; }
  /// The finished array; the builder is used up.
  ArrayPtr Finish();

 private:
  CellView& Slot(std::int32_t row, std::int32_t column) {
    return array_->cells_[static_cast<std::size_t>(row) * static_cast<std::size_t>(array_->columns_) +
                          static_cast<std::size_t>(column)];
  }

  std::shared_ptr<Array> array_;
  std::shared_ptr<TextPool> pool_;
};

}  // namespace qcalc
