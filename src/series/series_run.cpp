#include "series/series_run.h"

#include <algorithm>
#include <cmath>

#include "frame/values/array_builder.h"
#include "frame/values/scratch_array.h"
#include "table/row_blocks.h"

namespace quillmere::series {
namespace {

/// Asks for a cell that is soon to be written.
void PrefetchToWrite(XLOPER12* cell) noexcept {
  constexpr int kForWriting = 1;
  constexpr int kSecondCache = 2;
  __builtin_prefetch(cell, kForWriting, kSecondCache);
}

/// A run in progress. Columns go down side by side, tile by tile, each with a state of its own; rows are gone through
/// one after the other, and share one.
class SeriesRun {
 public:
  SeriesRun(const SeriesTable& table, const SeriesShape& shape, const SeriesMethod& method)
      : table_(table),
        shape_(shape),
        method_(method),
        edges_(method.Edges()),
        tile_(shape.TileLength()),
        builder_(shape.rows, shape.columns),
        numbers_(static_cast<std::size_t>(tile_)),
        stateSize_(method.StateSize()),
        states_(stateSize_ * static_cast<std::size_t>(shape.isDown ? shape.columns : 1)),
        isScaled_(shape.isDown ? static_cast<std::size_t>(shape.columns) : 1) {}

  CXlOper Run() {
    for (RowBlocks blocks(table_.View()); blocks.Next();) shape_.isDown ? RunDown(blocks) : RunAcross(blocks);
    return builder_.FinishCollapsed();
  }

 private:
  void RunDown(const RowBlocks& blocks) {
    const std::ptrdiff_t stride = blocks.Column(0).stride;
    for (std::int32_t row = 0; row < blocks.Rows(); row += tile_) {
      const std::int32_t rows = std::min(tile_, blocks.Rows() - row);
      for (std::int32_t column = 0; column < shape_.columns; ++column)
        RunTile(column, blocks.FirstRow() + row, {&blocks.At(row, column), rows, stride}, column);
    }
  }

  void RunAcross(const RowBlocks& blocks) {
    for (std::int32_t row = 0; row < blocks.Rows(); ++row)
      for (std::int32_t column = 0; column < shape_.columns; column += tile_)
        RunTile(blocks.FirstRow() + row, column, {&blocks.At(row, column), std::min(tile_, shape_.columns - column), 1},
                0);
  }

  /// Goes on with a series at a place of it, where `cells` stand.
  void RunTile(std::int32_t series, std::int32_t place, const CellLine& cells, std::size_t slot) {
    double* const state = states_.data() + slot * stateSize_;
    if (place == 0) Begin(series, state, slot);
    const bool isLarge = ReadNumbers(cells, table_.Name(), tile_ * cells.stride, numbers_.data());
    if (isLarge) ScaleState(state, slot);
    const std::span<double> numbers(numbers_.data(), static_cast<std::size_t>(cells.count));
    if (isScaled_[slot]) Multiply(numbers, kScale);
    method_.Run(place, numbers, state);
    if (isScaled_[slot]) Multiply(numbers, 1 / kScale);

    const std::int32_t without = std::clamp(edges_.before - place, 0, cells.count);
    if (without == cells.count) return;
    const std::span<const double> results = numbers.subspan(static_cast<std::size_t>(without));
    XLOPER12* const to = ResultAt(series, place + without - edges_.later);
    isScaled_[slot] ? WriteScaled(results, to) : Write(results, to);
  }

  void Begin(std::int32_t series, double* state, std::size_t slot) {
    std::fill_n(state, stateSize_, 0);
    *state = method_.Start(series);
    isScaled_[slot] = false;
    if (std::fabs(*state) > kMostUnscaled) ScaleState(state, slot);
    if (!shape_.isDown || series == 0) FillEdges(series);
  }

  void ScaleState(double* state, std::size_t slot) {
    if (isScaled_[slot]) return;
    isScaled_[slot] = true;
    Multiply({state, stateSize_}, kScale);
  }

  /// Writes results that are finite.
  void Write(std::span<const double> results, XLOPER12* to) const {
    const std::ptrdiff_t stride = ResultStride();
    for (const double result : results) {
      // The processor foresees cells that follow each other itself.
      if (stride != 1) PrefetchToWrite(to + tile_ * stride);
      to->val.num = result;
      to->xltype = xltypeNum;
      to += stride;
    }
  }

  void WriteScaled(std::span<const double> results, XLOPER12* to) const {
    for (std::size_t at = 0; at < results.size(); ++at)
      to[static_cast<std::ptrdiff_t>(at) * ResultStride()] = NumberCell(results[at]);
  }

  /// Fills where there are no results: of the row that a series is, or at once of all columns.
  void FillEdges(std::int32_t row) {
    const std::ptrdiff_t width = ResultStride();
    const std::ptrdiff_t first = std::min(edges_.before - edges_.later, shape_.Length()) * width;
    const std::ptrdiff_t last = edges_.later * width;
    XLOPER12* const to = builder_.Row(row);
    builder_.Fill(to, static_cast<std::size_t>(first), 1, edges_.filler);
    builder_.Fill(to + shape_.Length() * width - last, static_cast<std::size_t>(last), 1, edges_.filler);
  }

  XLOPER12* ResultAt(std::int32_t series, std::int32_t place) {
    return shape_.isDown ? builder_.At(place, series) : builder_.At(series, place);
  }
  std::ptrdiff_t ResultStride() const noexcept { return shape_.isDown ? shape_.columns : 1; }

  static void Multiply(std::span<double> numbers, double by) noexcept {
    for (double& number : numbers) number *= by;
  }

  const SeriesTable& table_;
  const SeriesShape shape_;
  const SeriesMethod& method_;
  const SeriesEdges edges_;
  const std::int32_t tile_;
  CXlArrayBuilder builder_;
  ScratchArray<double> numbers_;
  const std::size_t stateSize_;
  ScratchArray<double> states_;
  ScratchArray<bool> isScaled_;
};

}  // namespace

CXlOper RunSeries(const SeriesTable& table, const SeriesShape& shape, const SeriesMethod& method) {
  return SeriesRun(table, shape, method).Run();
}

}  // namespace quillmere::series
