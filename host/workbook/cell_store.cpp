#include "host/workbook/cell_store.h"

namespace qcalc {

namespace {

// Overwritten texts stay in the pool until they are most of it and worth the copying.
constexpr std::size_t kLeastUnitsToCompact = std::size_t{1} << 20;

}  // namespace

CellStore::Chunk& CellStore::MakeChunk(std::int32_t index, std::int32_t column) {
  const auto c = static_cast<std::size_t>(column), i = static_cast<std::size_t>(index);
  if (c >= columns_.size()) columns_.resize(c + 1);
  auto& chunks = columns_[c].chunks;
  if (i >= chunks.size()) chunks.resize(i + 1);
  if (!chunks[i]) chunks[i] = std::make_unique<Chunk>();
  return *chunks[i];
}

void CellStore::DropText(const CellView& cell) {
  if (cell.IsText()) unitsDropped_ += cell.AsText().size();
}

void CellStore::Set(std::int32_t row, std::int32_t column, const CellView& cell) {
  const auto keepsTextOfOwnCell = pool_;
  if (unitsDropped_ > kLeastUnitsToCompact && unitsDropped_ > pool_->UnitsUsed() / 2) CompactTexts();
  SetPooled(row, column, cell.IsText() ? CellView::Text(pool_->Add(cell.AsText())) : cell);
}

void CellStore::SetPooled(std::int32_t row, std::int32_t column, const CellView& cell) {
  if (cell.IsEmpty() && !FindChunk(row / kChunkRows, column)) return;
  Chunk& chunk = MakeChunk(row / kChunkRows, column);
  CellView& slot = chunk.cells[static_cast<std::size_t>(row % kChunkRows)];
  DropText(slot);
  --chunk.Count(slot.Kind());
  ++chunk.Count(cell.Kind());
  ++columns_[static_cast<std::size_t>(column)].changes;
  slot = cell;
}

void CellStore::Clear(const Area& area) {
  const auto lastColumn = std::min(area.lastColumn, static_cast<std::int32_t>(columns_.size()) - 1);
  for (std::int32_t column = area.firstColumn; column <= lastColumn; ++column) {
    const auto& chunks = columns_[static_cast<std::size_t>(column)].chunks;
    const auto rows = static_cast<std::int32_t>(chunks.size()) * kChunkRows;
    for (std::int32_t row = area.firstRow; row <= std::min(area.lastRow, rows - 1); ++row) {
      if (const auto& chunk = chunks[static_cast<std::size_t>(row / kChunkRows)]; !chunk || !chunk->IsUsed()) {
        row |= kChunkRows - 1;  // on to the chunk's last row
        continue;
      }
      SetPooled(row, column, {});
    }
  }
}

std::optional<Area> CellStore::UsedArea() const {
  std::optional<Area> used;
  for (std::size_t c = 0; c < columns_.size(); ++c) {
    const auto& chunks = columns_[c].chunks;
    const auto isUsed = [](const std::unique_ptr<Chunk>& chunk) { return chunk && chunk->IsUsed(); };
    const auto isFilled = [](const CellView& cell) { return !cell.IsEmpty(); };
    const auto first = std::find_if(chunks.begin(), chunks.end(), isUsed);
    if (first == chunks.end()) continue;
    const auto last = std::find_if(chunks.rbegin(), chunks.rend(), isUsed).base() - 1;
    const auto &front = (*first)->cells, &back = (*last)->cells;
    const auto firstRow =
        (first - chunks.begin()) * kChunkRows + (std::find_if(front.begin(), front.end(), isFilled) - front.begin());
    const auto lastRow = (last - chunks.begin()) * kChunkRows +
                         (std::find_if(back.rbegin(), back.rend(), isFilled).base() - 1 - back.begin());
    const auto column = static_cast<std::int32_t>(c);
    if (!used) used = Area{kXlMaxRows, 0, column, column};
    used->firstRow = std::min(used->firstRow, static_cast<std::int32_t>(firstRow));
    used->lastRow = std::max(used->lastRow, static_cast<std::int32_t>(lastRow));
    used->lastColumn = column;
  }
  return used;
}

void CellStore::CompactTexts() {
  auto pool = std::make_shared<TextPool>();
  for (Column& column : columns_)
    for (auto& chunk : column.chunks) {
      if (!chunk) continue;
      for (CellView& cell : chunk->cells)
        if (cell.IsText()) cell = CellView::Text(pool->Add(cell.AsText()));
    }
  pool_ = std::move(pool);
  unitsDropped_ = 0;
}

}  // namespace qcalc
