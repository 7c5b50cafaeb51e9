// The cells of some rows and columns of a table, ready to be painted.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "frame/values/scratch_array.h"
#include "shape/slice.h"
#include "table/array_painter.h"
#include "table/table_view.h"

namespace quillmere::shape {

/// Rows and columns of a table. An array's cells are taken where they stand. Of a reference no more is read than the
/// rectangles that hold them, however far they lie apart: neighbours by one callback, and with them small gaps, which
/// cost less than another callback.
class SlicedCells {
 public:
  /// Reads them: CXlErrorException with #VALUE! where a callback fails. What `table` was made from must outlive this.
  SlicedCells(const TableView& table, const Slice& rows, const Slice& columns);
  SlicedCells(const SlicedCells&) = delete;
  SlicedCells& operator=(const SlicedCells&) = delete;

  /// All rows and columns in their order; it must not outlive this.
  ArrayPiece Piece() const noexcept;

 private:
  /// Where the places of a slice stand among those that were read.
  struct Axis {
    PlaceRun run;
    ScratchArray<std::int32_t> places;  ///< empty for a run

    AxisMap Map() const noexcept;
  };

  static Axis Among(std::span<const PlaceRun> read, const Slice& slice);
  void Read(const TableView& table, std::span<const PlaceRun> rows, std::span<const PlaceRun> columns);

  CXlCells cells_{};
  Axis rows_;
  Axis columns_;
  std::vector<CXlOper> values_;      ///< of a reference, a rectangle each
  ScratchArray<XLOPER12> together_;  ///< the cells of several rectangles; their texts are where they were
};

}  // namespace quillmere::shape
