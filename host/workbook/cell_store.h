// The cells of one sheet, by columns of chunks: 16 bytes a cell where cells are, nothing where none are.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "host/values/area.h"
#include "host/values/cell_view.h"
#include "host/values/text_pool.h"

namespace qcalc {

/// Values alone; formulas and hidden rows belong to the sheet. Rows and columns are zero-based and within the sheet's
/// limits. Any number of threads may read while none writes.
class CellStore {
 public:
  /// So many rows of a column take memory at once, as soon as one of them holds anything.
  static constexpr std::int32_t kChunkRows = 1024;

  CellStore() : pool_(std::make_shared<TextPool>()) {}

  /// The cell's content; a text stays good until the next write.
  const CellView& Get(std::int32_t row, std::int32_t column) const {
    const Chunk* chunk = FindChunk(row / kChunkRows, column);
    return chunk ? chunk->cells[static_cast<std::size_t>(row % kChunkRows)] : kEmptyCell;
  }

  /// Writes one cell; a text is copied into the store.
  void Set(std::int32_t row, std::int32_t column, const CellView& cell);
  /// As Set, for a text that already lies in Pool() (or any other kind).
  void SetPooled(std::int32_t row, std::int32_t column, const CellView& cell);
  /// Empties the area.
  void Clear(const Area& area);

  /// The store's texts, for loaders that decode straight into it.
  TextPool& Pool() { return *pool_; }
  /// The same, to keep alive what was read.
  std::shared_ptr<const TextPool> SharedPool() const { return pool_; }

  /// The smallest area that holds every non-empty cell; nothing for an empty store.
  std::optional<Area> UsedArea() const;

  /// Grows with every write to the column.
  std::uint64_t Changes(std::int32_t column) const {
    const auto c = static_cast<std::size_t>(column);
    return c < columns_.size() ? columns_[c].changes : 0;
  }
  /// A row that no cell of the column was ever written at or beyond; so for the columns of the sheet.
  std::int32_t RowsReached(std::int32_t column) const {
    const auto c = static_cast<std::size_t>(column);
    return c < columns_.size() ? static_cast<std::int32_t>(columns_[c].chunks.size()) * kChunkRows : 0;
  }
  std::int32_t ColumnsReached() const { return static_cast<std::int32_t>(columns_.size()); }

  /// The first row from `first` to `last` whose cell in the column is of that kind (not empty) and one that
  /// `accept(const CellView&)` takes; nothing when there is none. Where 1,024 rows hold none of the kind they are
  /// passed over in one step.
  template <typename Accept>
  std::optional<std::int32_t> FindRow(std::int32_t column, std::int32_t first, std::int32_t last, CellKind kind,
                                      Accept&& accept) const {
    last = std::min(last, RowsReached(column) - 1);
    while (first <= last) {
      const std::int32_t index = first / kChunkRows;
      const std::int32_t end = std::min(last + 1, (index + 1) * kChunkRows);
      if (const Chunk* chunk = FindChunk(index, column); chunk && chunk->Count(kind) > 0)
        for (std::int32_t row = first; row < end; ++row)
          if (const CellView& cell = chunk->cells[static_cast<std::size_t>(row % kChunkRows)];
              cell.Kind() == kind && accept(cell))
            return row;
      first = end;
    }
    return std::nullopt;
  }

  /// Calls `visitor(const CellView&)` for each cell of the area, row by row, with one look-up per 1,024 rows of a
  /// column.
  template <typename Visitor>
  void VisitRowMajor(const Area& area, Visitor&& visitor) const {
    std::vector<const CellView*> columns(static_cast<std::size_t>(area.Columns()));
    for (std::int32_t start = area.firstRow; start <= area.lastRow;) {
      const std::int32_t index = start / kChunkRows;
      const std::int32_t end = std::min(area.lastRow + 1, (index + 1) * kChunkRows);
      for (std::size_t c = 0; c < columns.size(); ++c) {
        const Chunk* chunk = FindChunk(index, area.firstColumn + static_cast<std::int32_t>(c));
        columns[c] = chunk ? chunk->cells.data() : nullptr;
      }
      for (; start < end; ++start)
        for (const CellView* column : columns) visitor(column ? column[start % kChunkRows] : kEmptyCell);
    }
  }

  /// Calls `visitor(row, column, const CellView&)` for each non-empty cell of the area, column by column, skipping what
  /// was never written.
  template <typename Visitor>
  void VisitUsed(const Area& area, Visitor&& visitor) const {
    const std::int32_t lastColumn = std::min(area.lastColumn, static_cast<std::int32_t>(columns_.size()) - 1);
    for (std::int32_t column = area.firstColumn; column <= lastColumn; ++column) {
      for (std::int32_t start = area.firstRow; start <= area.lastRow;) {
        const std::int32_t index = start / kChunkRows;
        const std::int32_t end = std::min(area.lastRow + 1, (index + 1) * kChunkRows);
        if (const Chunk* chunk = FindChunk(index, column); chunk && chunk->IsUsed())
          for (std::int32_t row = start; row < end; ++row)
            if (const CellView& cell = chunk->cells[static_cast<std::size_t>(row % kChunkRows)]; !cell.IsEmpty())
              visitor(row, column, cell);
        start = end;
      }
    }
  }

 private:
  static constexpr CellView kEmptyCell{};
  struct Chunk {
    std::array<CellView, kChunkRows> cells;
    std::array<std::int32_t, 5> counts{kChunkRows};  ///< cells of each kind

    std::int32_t& Count(CellKind kind) { return counts[static_cast<std::size_t>(kind)]; }
    std::int32_t Count(CellKind kind) const { return counts[static_cast<std::size_t>(kind)]; }
    bool IsUsed() const { return Count(CellKind::kEmpty) < kChunkRows; }
  };
  struct Column {
    std::vector<std::unique_ptr<Chunk>> chunks;
    std::uint64_t changes = 0;
  };

  const Chunk* FindChunk(std::int32_t index, std::int32_t column) const {
    const auto c = static_cast<std::size_t>(column), i = static_cast<std::size_t>(index);
    return c < columns_.size() && i < columns_[c].chunks.size() ? columns_[c].chunks[i].get() : nullptr;
  }
  Chunk& MakeChunk(std::int32_t index, std::int32_t column);
  void DropText(const CellView& cell);
  void CompactTexts();

  std::vector<Column> columns_;
  std::shared_ptr<TextPool> pool_;
  std::size_t unitsDropped_ = 0;
};

}  // namespace qcalc
