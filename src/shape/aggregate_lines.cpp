#include "shape/aggregate_lines.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "frame/values/array_builder.h"
#include "table/row_blocks.h"

namespace quillmere::shape {
namespace {

/// Cells that are gone over together: so many are still in the processor's nearest cache when the next column is.
constexpr std::int32_t kTileCells = 1024;
constexpr std::int32_t kLeastTileRows = 16;

/// Whether a reference is picked from all over, so that all of it takes less than the callbacks for its pieces would.
bool IsSoonerReadWhole(const TableSlice& slice) {
  const std::int64_t cells = std::int64_t{slice.table.Rows()} * slice.table.Columns();
  const std::int64_t pieces = static_cast<std::int64_t>(slice.rows.Runs().size());
  return slice.table.IsReference() && pieces > 1 && cells <= pieces * kCellsWorthACallback;
}

/// Rows that are read together, and the runs that are picked of them.
struct Stretch {
  std::int32_t first;
  std::int32_t end;
  std::span<const PlaceRun> runs;
};

/// The rows of the first of `runs`, and of those behind it as far as they lie close and fit into one block with it, in
/// whatever order. Of an array all rows are at hand.
Stretch FirstStretch(const TableView& table, std::span<const PlaceRun> runs, std::int32_t columns) {
  if (!table.IsReference()) return {0, table.Rows(), runs};
  const std::int32_t mostRows = RowBlocks::kBlockCells / columns;
  const std::int32_t mostBetween = kCellsWorthACallback / columns;
  std::int32_t first = runs[0].first;
  std::int32_t end = first + runs[0].count;
  std::size_t count = 1;
  for (; count < runs.size(); ++count) {
    const PlaceRun& run = runs[count];
    const std::int32_t runEnd = run.first + run.count;
    const std::int32_t between = std::max(run.first - end, first - runEnd);
    if (between > mostBetween || std::max(end, runEnd) - std::min(first, run.first) > mostRows) break;
    first = std::min(first, run.first);
    end = std::max(end, runEnd);
  }
  return {first, end, runs.first(count)};
}

/// Calls `take(blocks, run)` for runs of picked rows, in the order in which they were picked; `run` counts from the
/// first row of the block, whose columns are `columns`.
template <class Take>
void ForEachRun(const TableSlice& slice, std::span<const std::int32_t> columns, const Take& take) {
  std::span<const PlaceRun> left = slice.rows.Runs();
  while (!left.empty()) {
    const Stretch stretch = FirstStretch(slice.table, left, static_cast<std::int32_t>(columns.size()));
    left = left.subspan(stretch.runs.size());
    const TableView rows = slice.table.SomeRows(stretch.first, stretch.end - stretch.first);
    // Several runs stand in one block: they may then go up and down in it.
    for (RowBlocks blocks(rows, columns); blocks.Next();) {
      const std::int32_t blockFirst = stretch.first + blocks.FirstRow();
      for (const PlaceRun& run : stretch.runs) {
        const std::int32_t first = std::max(run.first - blockFirst, 0);
        const std::int32_t end = std::min(run.first + run.count - blockFirst, blocks.Rows());
        take(blocks, PlaceRun{first, end - first});
      }
    }
  }
}

/// Writes the results of one line after the other. A function that is asked for again is worked out once a line.
class ResultWriter {
 public:
  ResultWriter(std::span<const AggregateFunction> functions, const AggregateResults& results)
      : functions_(functions), results_(results), next_(results.first), firstPlaces_(functions.size()) {
    std::array<std::size_t, kMostFunction + 1> places{};  // behind the first of each function
    for (std::size_t place = 0; place < functions.size(); ++place) {
      std::size_t& behind = places[static_cast<std::size_t>(functions[place])];
      if (behind == 0) behind = place + 1;
      firstPlaces_[place] = behind - 1;
    }
  }

  void Write(LineAggregate& line) {
    const bool isWithout = results_.withoutNumber && !line.HoldsNumber();
    XLOPER12* to = next_;
    for (std::size_t place = 0; place < functions_.size(); ++place) {
      if (isWithout)
        *to = *results_.withoutNumber;
      else if (firstPlaces_[place] != place)
        *to = next_[static_cast<std::ptrdiff_t>(firstPlaces_[place]) * results_.functionStep];
      else
        line.WriteResult(functions_[place], *to);
      to += results_.functionStep;
    }
    next_ += results_.lineStep;
  }

 private:
  std::span<const AggregateFunction> functions_;
  AggregateResults results_;
  XLOPER12* next_;
  ScratchArray<std::size_t> firstPlaces_;  ///< of each function in the list, where it stands first
};

/// Goes down the picked rows by tiles, which are gone over column by column.
void AggregateColumns(const TableSlice& slice, const Measures& measures, ResultWriter& writer) {
  const ScratchArray<std::int32_t> columns = slice.columns.Places();
  const std::int32_t tileRows = std::max(kTileCells / slice.columns.Count(), kLeastTileRows);
  GatheredCells cells(static_cast<std::size_t>(tileRows));
  std::vector<LineAggregate> lines;
  lines.reserve(columns.size());
  for (std::size_t column = 0; column < columns.size(); ++column) lines.emplace_back(measures);
  ForEachRun(slice, {columns.data(), columns.size()}, [&](const RowBlocks& blocks, const PlaceRun& run) {
    const std::int32_t end = run.first + run.count;
    for (std::int32_t row = run.first; row < end; row += tileRows) {
      const std::int32_t rows = std::min(tileRows, end - row);
      for (std::size_t column = 0; column < lines.size(); ++column) {
        cells.Clear();
        cells.Gather(&blocks.At(row, column), rows, blocks.Column(column).stride,
                     tileRows * blocks.Column(column).stride);
        lines[column].Take(cells);
      }
    }
  });
  for (LineAggregate& line : lines) writer.Write(line);
}

/// The picked cells of one row after the other.
class RowCells {
 public:
  explicit RowCells(const TableSlice& slice)
      : runs_(slice.columns.Runs()), rowsAhead_(kTileCells / slice.columns.Count() + 1) {}

  /// Gathers those of a row of a block. Before each run of them `makeRoom` is told how many they are.
  template <class MakeRoom>
  void Gather(GatheredCells& cells, const RowBlocks& blocks, std::int32_t row, const MakeRoom& makeRoom) const {
    std::size_t column = 0;
    for (const PlaceRun& run : runs_) {
      const CellLine& line = blocks.Column(column);
      makeRoom(static_cast<std::size_t>(run.count));
      cells.Gather(&line.At(row), run.count, 1, rowsAhead_ * line.stride);
      column += static_cast<std::size_t>(run.count);
    }
  }

 private:
  std::span<const PlaceRun> runs_;
  std::ptrdiff_t rowsAhead_;
};

void AggregateRows(const TableSlice& slice, const Measures& measures, ResultWriter& writer) {
  const ScratchArray<std::int32_t> columns = slice.columns.Places();
  const RowCells rowCells(slice);
  GatheredCells cells(columns.size());
  LineAggregate line(measures);
  ForEachRun(slice, {columns.data(), columns.size()}, [&](const RowBlocks& blocks, const PlaceRun& run) {
    for (std::int32_t row = run.first; row < run.first + run.count; ++row) {
      cells.Clear();
      rowCells.Gather(cells, blocks, row, [](std::size_t) {});
      line.Clear();
      line.Take(cells);
      writer.Write(line);
    }
  });
}

void AggregateAll(const TableSlice& slice, const Measures& measures, ResultWriter& writer) {
  const ScratchArray<std::int32_t> columns = slice.columns.Places();
  const RowCells rowCells(slice);
  GatheredCells cells(std::max<std::size_t>(columns.size(), kTileCells));
  LineAggregate line(measures);
  const auto makeRoom = [&](std::size_t count) {
    if (cells.HasRoomFor(count)) return;
    line.Take(cells);
    cells.Clear();
  };
  ForEachRun(slice, {columns.data(), columns.size()}, [&](const RowBlocks& blocks, const PlaceRun& run) {
    for (std::int32_t row = run.first; row < run.first + run.count; ++row)
      rowCells.Gather(cells, blocks, row, makeRoom);
  });
  line.Take(cells);
  writer.Write(line);
}

}  // namespace

std::int32_t TableSlice::Lines(AggregateBy by) const noexcept {
  switch (by) {
    case AggregateBy::kColumns:
      return columns.Count();
    case AggregateBy::kRows:
      return rows.Count();
    case AggregateBy::kAll:
      break;
  }
  return 1;
}

void AggregateLines(const TableSlice& slice, AggregateBy by, std::span<const AggregateFunction> functions,
                    const AggregateResults& results) {
  if (IsSoonerReadWhole(slice)) {
    const CXlOper cells = slice.table.ReadAll();
    return AggregateLines({TableView(cells), slice.rows, slice.columns}, by, functions, results);
  }
  const Measures measures(functions);
  ResultWriter writer(functions, results);
  switch (by) {
    case AggregateBy::kAll:
      return AggregateAll(slice, measures, writer);
    case AggregateBy::kColumns:
      return AggregateColumns(slice, measures, writer);
    case AggregateBy::kRows:
      return AggregateRows(slice, measures, writer);
  }
}

CXlOper AggregateArray(const TableSlice& slice, AggregateBy by, std::span<const AggregateFunction> functions) {
  const std::int32_t lines = slice.Lines(by);
  const auto count = static_cast<std::int64_t>(functions.size());
  const bool isDown = by == AggregateBy::kRows;
  CXlArrayBuilder builder(isDown ? lines : count, isDown ? count : lines);
  AggregateLines(slice, by, functions,
                 isDown ? AggregateResults{builder.Row(0), count, 1} : AggregateResults{builder.Row(0), 1, lines});
  return builder.FinishCollapsed();
}

}  // namespace quillmere::shape
