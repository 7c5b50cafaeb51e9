#include "shape/sliced_cells.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace quillmere::shape {
namespace {

/// The runs that hold all places of a slice, ascending and apart by more than `gap`.
std::vector<PlaceRun> RunsAround(const Slice& slice, std::int32_t gap) {
  std::vector<PlaceRun> sorted(slice.Runs().begin(), slice.Runs().end());
  std::ranges::sort(sorted, {}, &PlaceRun::first);
  std::vector<PlaceRun> around;
  for (const PlaceRun& run : sorted) {
    const std::int32_t end = run.first + run.count;
    if (around.empty() || run.first - gap > around.back().first + around.back().count)
      around.push_back(run);
    else
      around.back().count = std::max(around.back().count, end - around.back().first);
  }
  return around;
}

std::int32_t TotalOf(std::span<const PlaceRun> runs) {
  std::int32_t total = 0;
  for (const PlaceRun& run : runs) total += run.count;
  return total;
}

}  // namespace

SlicedCells::SlicedCells(const TableView& table, const Slice& rows, const Slice& columns) {
  std::vector<PlaceRun> rowsRead{{0, table.Rows()}};
  std::vector<PlaceRun> columnsRead{{0, table.Columns()}};
  if (table.IsReference()) {
    columnsRead = RunsAround(columns, kCellsWorthACallback / rows.Count());
    rowsRead = RunsAround(rows, kCellsWorthACallback / TotalOf(columnsRead));
    Read(table, rowsRead, columnsRead);
  } else {
    cells_ = table.Cells();
  }
  rows_ = Among(rowsRead, rows);
  columns_ = Among(columnsRead, columns);
}

void SlicedCells::Read(const TableView& table, std::span<const PlaceRun> rows, std::span<const PlaceRun> columns) {
  const auto read = [&](const PlaceRun& row, const PlaceRun& column) {
    values_.push_back(table.CoercePart(row.first, column.first, row.count, column.count));
    return values_.back().Cells();
  };
  if (rows.size() == 1 && columns.size() == 1) {
    cells_ = read(rows[0], columns[0]);
    return;
  }
  const std::int32_t height = TotalOf(rows);
  const std::int32_t width = TotalOf(columns);
  together_ = ScratchArray<XLOPER12>(static_cast<std::size_t>(height) * width);
  cells_ = {together_.data(), height, width};
  XLOPER12* to = together_.data();
  for (const PlaceRun& row : rows) {
    XLOPER12* toColumn = to;
    for (const PlaceRun& column : columns) {
      const CXlCells part = read(row, column);
      for (std::int32_t i = 0; i < part.rows; ++i)
        std::copy_n(part.Row(i), part.columns, toColumn + std::int64_t{i} * width);
      toColumn += column.count;
    }
    to += std::int64_t{row.count} * width;
  }
}

SlicedCells::Axis SlicedCells::Among(std::span<const PlaceRun> read, const Slice& slice) {
  std::vector<std::int32_t> before;  // of each run that was read, the places in those before it
  for (std::int32_t total = 0; const PlaceRun& run : read) {
    before.push_back(total);
    total += run.count;
  }
  const auto among = [&](std::int32_t place) {
    if (read.size() == 1) return place - read[0].first;
    const auto behind = std::ranges::upper_bound(read, place, {}, &PlaceRun::first);
    const std::size_t at = static_cast<std::size_t>(behind - read.begin()) - 1;
    return before[at] + place - read[at].first;
  };
  if (slice.IsContiguous()) return {{among(slice.Runs()[0].first), slice.Count()}, {}};
  Axis axis{{}, ScratchArray<std::int32_t>(static_cast<std::size_t>(slice.Count()))};
  std::int32_t* to = axis.places.data();
  for (const PlaceRun& run : slice.Runs()) {
    std::iota(to, to + run.count, among(run.first));
    to += run.count;
  }
  return axis;
}

AxisMap SlicedCells::Axis::Map() const noexcept {
  return places.empty() ? AxisMap::Run(run.first, run.count) : AxisMap::By({places.data(), places.size()});
}

ArrayPiece SlicedCells::Piece() const noexcept { return {cells_, rows_.Map(), columns_.Map()}; }

}  // namespace quillmere::shape
