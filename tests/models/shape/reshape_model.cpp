#include <algorithm>
#include <cstdlib>

#include "tests/models/shape/model.h"
#include "tests/models/sort/model.h"

namespace qcalc::shape {
namespace {

const Value kOutOfRange = Told(XTEXT("#ERROR: Index out of range"));
const Value kSeveralFills = Told(XTEXT("#Error: Fill has multiple Values"));

Value Resized(const FieldCall& call) {
  const Value& table = call.operands[0];
  const Grid cells = call.Cells(0);
  const std::int32_t firstRow = call.Number(3, 1) - 1, firstColumn = call.Number(4, 1) - 1;
  if (cells.rows == 0 || firstRow < 0 || firstColumn < 0) return kValueError;
  if (call.Cells(5).cells.size() > 1) return kSeveralFills;
  std::int32_t rows = call.Number(1, -1), columns = call.Number(2, -1);
  if (rows < 1) rows = cells.rows - firstRow;
  if (columns < 1) columns = cells.columns - firstColumn;
  if (table.IsReference() && rows >= call.place.rows && columns >= call.place.columns && rows <= cells.rows &&
      columns <= cells.columns)
    return Part(table.AsReference(), firstRow, firstColumn, rows, columns);
  const CellView fill = call.Cell(5, CellView::Number(0));
  return Grid::Of(std::max(rows, call.place.rows), std::max(columns, call.place.columns),
                  [&](std::int32_t row, std::int32_t column) {
                    const bool isShown = table.IsReference() ? row < rows && column < columns : table.IsArray();
                    row += firstRow, column += firstColumn;
                    return isShown && row < cells.rows && column < cells.columns ? cells.At(row, column) : fill;
                  })
      .Result();
}

Value Padded(const FieldCall& call) {
  const Grid cells = call.Cells(1);
  if (cells.rows == 0 || call.Cells(0).cells.size() > 1) return kValueError;
  const models::CallingPlace& place = call.place;
  std::int32_t rows = call.Number(2, -1), columns = call.Number(3, -1);
  if (rows < 1) rows = place.rows > 1 ? place.rows : cells.rows;
  if (columns < 1) columns = place.columns > 1 ? place.columns : cells.columns;
  const bool isSeveral = place.rows > 1 || place.columns > 1;
  const std::int32_t outRows = isSeveral ? place.rows : rows, outColumns = isSeveral ? place.columns : columns;
  if (std::min(rows, cells.rows) > outRows || std::min(columns, cells.columns) > outColumns) return kOutOfRange;
  return Grid::Of(outRows, outColumns,
                  [&](std::int32_t row, std::int32_t column) {
                    const bool isKept = row < std::min(rows, cells.rows) && column < std::min(columns, cells.columns);
                    return isKept ? cells.At(row, column) : call.Cell(0, CellView::Number(0));
                  })
      .Result();
}

/// Columns are spliced as rows of what is turned.
Value Spliced(const FieldCall& call, bool isRows) {
  const auto turned = [&](const Grid& grid) { return isRows ? grid : grid.Turned(); };
  const Grid cells = turned(call.Cells(0)), splice = turned(call.Cells(3));
  const std::int32_t remove = call.Number(2, 0);
  std::int32_t after = call.Number(1, -1);
  if (cells.cells.size() < 2 || after > cells.rows || remove > cells.rows) return kValueError;
  if (call.Cells(4).cells.size() > 1) return kSeveralFills;
  std::int32_t size = cells.rows + splice.rows, resume = cells.rows;
  if (remove > 0) size -= remove;
  if (remove < 0 && after > 0) size -= after;
  if (remove < 0 && after == 0) size = splice.rows;
  if (after < 0) after = cells.rows - std::max(remove, 0);
  if (remove >= 0) resume = after + remove;
  if (size < 1) return remove < 0 && after > 0 ? kOutOfRange : kValueError;
  if (after + splice.rows + std::max(cells.rows - resume, 0) > size) return kOutOfRange;
  const auto cellAt = [&](std::int32_t row, std::int32_t column) {
    if (row < after) return cells.At(row, column);
    row -= after;
    if (row < splice.rows && splice.columns == 1) return splice.At(row, 0);
    if (row < splice.rows)
      return column < splice.columns ? splice.At(row, column) : call.Cell(4, CellView::Error(xlerrNA));
    row += resume - splice.rows;
    return row < cells.rows ? cells.At(row, column) : CellView::Error(xlerrNA);
  };
  return turned(Grid::Of(size, cells.columns, cellAt)).Result();
}

Value WithCellsReplaced(const FieldCall& call) {
  Grid cells = call.Cells(0);
  if (cells.cells.size() < 2) return kValueError;
  for (std::size_t at = 1; at < call.operands.size(); at += 3) {
    if (call.operands[at + 2].IsMissing()) continue;
    for (const std::size_t place : {at, at + 1}) {
      const std::int32_t size = place == at ? cells.rows : cells.columns;
      if (call.Cells(place).cells.size() > 1 || !call.Cell(place, CellView::Number(1)).IsNumber()) return kValueError;
      if (call.Number(place, -1) == 0 || std::abs(call.Number(place, -1)) > size) return kValueError;
    }
    std::int32_t row = call.Number(at, -1), column = call.Number(at + 1, -1);
    row += row > 0 ? -1 : cells.rows;
    column += column > 0 ? -1 : cells.columns;
    cells.cells[static_cast<std::size_t>(row * cells.columns + column)] = call.Cell(at + 2, {});
  }
  return cells.Result();
}

Value Repeated(const FieldCall& call) {
  const Grid cells = call.Cells(0);
  const std::int32_t down = call.Number(1, 1), across = call.Number(2, 1);
  if (cells.rows == 0 || down < 1 || across < 1) return kValueError;
  return Grid::Of(
             cells.rows * down, cells.columns * across,
             [&](std::int32_t row, std::int32_t column) { return cells.At(row % cells.rows, column % cells.columns); })
      .Result();
}

Value Reversed(const FieldCall& call) {
  const Grid cells = call.Cells(0);
  if (cells.rows == 0) return kValueError;
  const bool isDown = call.Number(1, 1) != 0, isAcross = call.Number(2, 1) != 0;
  return Grid::Of(cells.rows, cells.columns,
                  [&](std::int32_t row, std::int32_t column) {
                    return cells.At(isDown ? cells.rows - 1 - row : row,
                                    isAcross ? cells.columns - 1 - column : column);
                  })
      .Result();
}

Value Unpivoted(const FieldCall& call) {
  const Grid cells = call.Cells(0);
  const std::int32_t labelColumns = call.Number(1, 1), labelRows = call.Number(2, 1);
  if (labelColumns < 0 || labelRows < 0 || labelRows >= cells.rows || labelColumns >= cells.columns) return kValueError;
  Grid result{0, labelColumns + labelRows + 1, {}};
  for (std::int32_t row = labelRows; row < cells.rows; ++row)
    for (std::int32_t column = labelColumns; column < cells.columns; ++column) {
      if (sort::IsIgnored({cells.At(row, column)}, call.Number(3, 2))) continue;
      for (std::int32_t label = 0; label < labelColumns; ++label) result.cells.push_back(cells.At(row, label));
      for (std::int32_t label = 0; label < labelRows; ++label) result.cells.push_back(cells.At(label, column));
      result.cells.push_back(cells.At(row, column));
      ++result.rows;
    }
  return result.rows == 0 ? Value::Error(xlerrNA) : result.Result();
}

Value Intersected(const FieldCall& call) {
  const Reference &one = call.operands[0].AsReference(), &other = call.operands[1].AsReference();
  const Area &a = one.areas[0], &b = other.areas[0];
  if (one.sheet != other.sheet || !a.Intersects(b)) return Value::Error(xlerrNA);
  return Value::OfReference({one.sheet,
                             {{std::max(a.firstRow, b.firstRow), std::min(a.lastRow, b.lastRow),
                               std::max(a.firstColumn, b.firstColumn), std::min(a.lastColumn, b.lastColumn)}}});
}

}  // namespace

Value ExpectedReshape(const FieldCall& call) {
  using Reshape = Value(const FieldCall&);
  Reshape* const reshapes[] = {Resized,
                               Padded,
                               [](const FieldCall& one) { return Spliced(one, true); },
                               [](const FieldCall& one) { return Spliced(one, false); },
                               WithCellsReplaced,
                               Repeated,
                               Reversed,
                               Unpivoted,
                               Intersected};
  return reshapes[std::find(std::begin(kReshapes), std::end(kReshapes), call.function) - std::begin(kReshapes)](call);
}

}  // namespace qcalc::shape
