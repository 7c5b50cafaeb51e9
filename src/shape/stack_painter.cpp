#include "shape/stack_painter.h"

#include <algorithm>

namespace quillmere {
namespace {

/// Rows that are written of one piece before its neighbour has its turn: enough for the processor to see that a block
/// is read in order, few enough for what is written to stay in its cache.
constexpr std::int32_t kTileRows = 64;

/// A value that goes to many cells; its text is stored once.
class SharedValue {
 public:
  SharedValue(CXlArrayBuilder& builder, const XLOPER12& value) : builder_(&builder), value_(&value) {}

  void Write(XLOPER12* to, std::int32_t count) {
    if (count <= 0) return;
    if (!isStored_) stored_ = builder_->Store(*value_);
    isStored_ = true;
    builder_->Repeat(to, static_cast<std::size_t>(count), 1, stored_);
  }

 private:
  CXlArrayBuilder* builder_;
  const XLOPER12* value_;
  XLOPER12 stored_;
  bool isStored_ = false;
};

class Painter {
 public:
  Painter(CXlArrayBuilder& builder, const XLOPER12& fill) : builder_(&builder), fill_(builder, fill) {}

  /// Pieces of equal height next to each other, from a row of the result on.
  void PaintBand(std::int64_t firstRow, std::span<const StackPiece> pieces) {
    const std::int32_t rows = pieces[0].rows.length;
    if (rows == 0) return;
    if (pieces.size() == 1 && IsBlockAsItIs(pieces[0])) {
      const StackPiece& piece = pieces[0];
      builder_->CopyCells(builder_->Row(firstRow), piece.cells.Row(piece.rows.first),
                          static_cast<std::size_t>(piece.rows.length) * piece.columns.length);
      return;
    }
    std::vector<SharedValue> values;
    values.reserve(pieces.size());
    for (const StackPiece& piece : pieces) values.emplace_back(*builder_, *piece.cells.first);
    for (std::int32_t row = 0; row < rows; row += kTileRows) {
      XLOPER12* to = builder_->Row(firstRow + row);
      for (std::size_t i = 0; i < pieces.size(); ++i) {
        PaintTile(pieces[i], values[i], row, std::min(row + kTileRows, rows), to);
        to += pieces[i].columns.length;
      }
    }
  }

 private:
  /// Whether the piece is whole rows of its block, unchanged.
  static bool IsBlockAsItIs(const StackPiece& piece) {
    const auto whole = [](const AxisMap& axis) { return axis.places.empty() && axis.supplied == axis.length; };
    return !piece.isSingleValue && whole(piece.rows) && whole(piece.columns) &&
           piece.columns.length == piece.cells.columns;
  }

  void PaintTile(const StackPiece& piece, SharedValue& value, std::int32_t row, std::int32_t end, XLOPER12* to) {
    for (; row < end; ++row, to += builder_->Columns()) PaintRow(piece, value, row, to);
  }

  void PaintRow(const StackPiece& piece, SharedValue& value, std::int32_t row, XLOPER12* to) {
    const AxisMap& columns = piece.columns;
    const std::int32_t from = piece.rows.At(row);
    if (from < 0) {
      fill_.Write(to, columns.length);
    } else if (piece.isSingleValue) {
      value.Write(to, columns.supplied);
      fill_.Write(to + columns.supplied, columns.length - columns.supplied);
    } else if (columns.places.empty()) {
      builder_->CopyCells(to, piece.cells.Row(from) + columns.first, columns.supplied);
      fill_.Write(to + columns.supplied, columns.length - columns.supplied);
    } else {
      PaintMappedRow(piece.cells.Row(from), columns.places, to);
    }
  }

  /// Copies stretches of neighbouring columns, fills stretches that nothing supplies.
  void PaintMappedRow(const XLOPER12* from, const std::vector<std::int32_t>& places, XLOPER12* to) {
    const std::size_t count = places.size();
    for (std::size_t at = 0; at < count;) {
      const std::int32_t first = places[at];
      const std::int32_t step = first < 0 ? 0 : 1;
      std::int32_t length = 1;
      while (at + length < count && places[at + length] == first + length * step) ++length;
      if (first < 0) {
        fill_.Write(to + at, length);
      } else {
        builder_->CopyCells(to + at, from + first, length);
      }
      at += length;
    }
  }

  CXlArrayBuilder* builder_;
  SharedValue fill_;
};

}  // namespace

CXlOper PaintStack(std::span<const StackPiece> pieces, bool across, const XLOPER12& fill) {
  std::int64_t rows = across ? pieces[0].rows.length : 0;
  std::int64_t columns = across ? 0 : pieces[0].columns.length;
  for (const StackPiece& piece : pieces) (across ? columns : rows) += across ? piece.columns.length : piece.rows.length;
  CXlArrayBuilder builder(rows, columns);
  Painter painter(builder, fill);
  if (across) {
    painter.PaintBand(0, pieces);
  } else {
    std::int64_t row = 0;
    for (const StackPiece& piece : pieces) {
      painter.PaintBand(row, {&piece, 1});
      row += piece.rows.length;
    }
  }
  return builder.FinishCollapsed();
}

}  // namespace quillmere
