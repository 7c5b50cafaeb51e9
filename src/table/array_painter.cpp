#include "table/array_painter.h"

#include <algorithm>

namespace quillmere {
namespace {

/// Rows that are written of one piece before its neighbour has its turn: enough for the processor to see that a block
/// is read in order, few enough for what is written to stay in its cache.
constexpr std::int32_t kTileRows = 64;

/// How many rows ahead memory is asked for where rows lie anywhere: the cells, and the texts of those that are then
/// there.
constexpr std::int32_t kRowsAhead = 48;
constexpr std::int32_t kTextRowsAhead = 16;
/// The rest of a wider row the processor sees coming itself.
constexpr std::int32_t kCellsAskedFor = 8;

/// Asks for each line of the cache that neighbouring cells lie in; to ask twice would cost as much as to wait.
void PrefetchCells(const XLOPER12* cells, std::int32_t count) noexcept {
  constexpr std::ptrdiff_t kLine = 64;
  const char* const last = reinterpret_cast<const char*>(cells + count) - 1;
  for (const char* at = reinterpret_cast<const char*>(cells); at < last; at += kLine) __builtin_prefetch(at);
  __builtin_prefetch(last);
}

void PrefetchTexts(const XLOPER12* cells, std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i) PrefetchText(cells[i]);
}

/// Whether the piece is whole rows of its block, unchanged, and as wide as the array.
bool IsBlockAsItIs(const ArrayPiece& piece, std::int32_t width) {
  const auto isRun = [](const AxisMap& axis) {
    return axis.places.empty() && axis.step == 1 && axis.supplied == axis.length;
  };
  return isRun(piece.rows) && isRun(piece.columns) && piece.columns.length == piece.cells.columns &&
         piece.columns.length == width;
}

}  // namespace

/// Neighbouring positions of a row that are supplied alike.
struct ArrayPainter::ColumnRun {
  std::int32_t count;
  std::int32_t from;  ///< the place that supplies the first of them, or -1
  std::int32_t step;  ///< from each place to the next
};

/// Adds the runs of a piece's columns.
void ArrayPainter::AddRuns(const AxisMap& columns, std::vector<ColumnRun>& runs) {
  const std::span<const std::int32_t> places = columns.places;
  if (places.empty()) {
    if (columns.supplied > 0) runs.push_back({columns.supplied, columns.first, columns.step});
    if (columns.length > columns.supplied) runs.push_back({columns.length - columns.supplied, -1, 0});
    return;
  }
  for (std::size_t at = 0; at < places.size();) {
    const std::int32_t from = places[at];
    const std::int32_t change = at + 1 < places.size() ? places[at + 1] - from : 0;
    const std::int32_t step = from < 0 || change < -1 || change > 1 ? 0 : change;
    const auto goesOn = [&](std::size_t i) {
      return places[i] == places[i - 1] + step && (places[i] < 0) == (from < 0);
    };
    std::size_t end = at + 1;
    while (end < places.size() && goesOn(end)) ++end;
    runs.push_back({static_cast<std::int32_t>(end - at), from, step});
    at = end;
  }
}

void ArrayPainter::PaintBand(std::int64_t firstRow, std::span<const ArrayPiece> pieces, std::int32_t firstColumn) {
  const std::int32_t rows = pieces[0].rows.length;
  if (rows == 0) return;
  if (pieces.size() == 1 && IsBlockAsItIs(pieces[0], builder_->Columns())) {
    const ArrayPiece& piece = pieces[0];
    builder_->CopyCells(builder_->Row(firstRow), piece.cells.Row(piece.rows.first),
                        static_cast<std::size_t>(rows) * piece.columns.length);
    return;
  }
  std::vector<ColumnRun> runs;
  std::vector<std::size_t> ends;  // of each piece's runs
  runs.reserve(pieces.size() * 2);
  ends.reserve(pieces.size());
  std::int64_t width = 0;
  for (const ArrayPiece& piece : pieces) {
    AddRuns(piece.columns, runs);
    ends.push_back(runs.size());
    width += piece.columns.length;
  }
  builder_->At(firstRow + rows - 1, firstColumn + width - 1);  // the last cell lies within
  for (std::int32_t row = 0; row < rows; row += kTileRows) {
    XLOPER12* to = builder_->At(firstRow + row, firstColumn);
    for (std::size_t i = 0, begin = 0; i < pieces.size(); begin = ends[i++]) {
      PaintTile(pieces[i], std::span(runs).subspan(begin, ends[i] - begin), row, std::min(row + kTileRows, rows), to);
      to += pieces[i].columns.length;
    }
  }
}

inline void ArrayPainter::PaintRow(std::span<const ColumnRun> runs, const XLOPER12* from, XLOPER12* to) {
  for (const ColumnRun& run : runs) {
    const auto count = static_cast<std::size_t>(run.count);
    if (run.from < 0)
      Fill(to, run.count);
    else if (run.step == 0 && count > 1)
      builder_->Fill(to, count, 1, from[run.from]);
    else
      builder_->CopyCells(to, from + run.from, count, 1, run.step);
    to += run.count;
  }
}

void ArrayPainter::PaintTile(const ArrayPiece& piece, std::span<const ColumnRun> runs, std::int32_t row,
                             std::int32_t end, XLOPER12* to) {
  // Copies: what is written might, for all the compiler knows, be what they are read from.
  const AxisMap rows = piece.rows;
  const CXlCells cells = piece.cells;
  const std::int32_t width = piece.columns.length;
  if (width == 0) return;
  const std::int32_t stride = builder_->Columns();
  const std::int32_t firstColumn = std::max(runs.front().from, 0);
  const std::int32_t toAskFor = rows.places.empty() ? 0 : rows.length - kRowsAhead;
  const std::int32_t asked = std::min({cells.columns - firstColumn, width, kCellsAskedFor});
  // Rows at even steps are copied by one call: one for each of them would cost as much as a cell or two.
  const bool isOneRun = runs.size() == 1 && runs[0].from >= 0 && (runs[0].step != 0 || width == 1);
  if (isOneRun && rows.places.empty() && rows.step != 0 && row < rows.supplied) {
    const std::int32_t count = std::min(rows.supplied, end) - row;
    const XLOPER12* const from = cells.Row(rows.At(row)) + firstColumn;
    const std::ptrdiff_t fromStride = std::ptrdiff_t{rows.step} * cells.columns;
    if (width == 1)
      builder_->CopyCells(to, from, static_cast<std::size_t>(count), stride, fromStride);
    else
      builder_->CopyRows(to, from, count, width, fromStride, runs[0].step);
    row += count;
    to += std::ptrdiff_t{count} * stride;
  }
  std::int32_t above = row == 0 ? -1 : rows.At(row - 1);
  for (; row < end; ++row, to += stride) {
    if (row < toAskFor) {
      const std::int32_t cellsRow = rows.places[row + kRowsAhead];
      const std::int32_t textsRow = rows.places[row + kTextRowsAhead];
      if (cellsRow >= 0) PrefetchCells(cells.Row(cellsRow) + firstColumn, asked);
      if (textsRow >= 0) PrefetchTexts(cells.Row(textsRow) + firstColumn, asked);
    }
    const std::int32_t from = rows.At(row);
    if (from < 0)
      Fill(to, width);
    else if (from == above)
      std::copy_n(to - stride, width, to);  // the texts of equal rows are stored once
    else
      PaintRow(runs, cells.Row(from), to);
    above = from;
  }
}

void ArrayPainter::Fill(XLOPER12* to, std::int32_t count) {
  if (!isFillStored_) storedFill_ = builder_->Store(*fill_);
  isFillStored_ = true;
  builder_->Repeat(to, static_cast<std::size_t>(count), 1, storedFill_);
}

CXlOper PaintStack(std::span<const ArrayPiece> pieces, bool across, const XLOPER12& fill) {
  std::int64_t rows = across ? pieces[0].rows.length : 0;
  std::int64_t columns = across ? 0 : pieces[0].columns.length;
  for (const ArrayPiece& piece : pieces) (across ? columns : rows) += across ? piece.columns.length : piece.rows.length;
  CXlArrayBuilder builder(rows, columns);
  ArrayPainter painter(builder, fill);
  if (across) {
    painter.PaintBand(0, pieces);
  } else {
    std::int64_t row = 0;
    for (const ArrayPiece& piece : pieces) {
      painter.PaintBand(row, {&piece, 1});
      row += piece.rows.length;
    }
  }
  return builder.FinishCollapsed();
}

}  // namespace quillmere
