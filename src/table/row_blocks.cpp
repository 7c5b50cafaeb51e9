#include "table/row_blocks.h"

#include <algorithm>
#include <numeric>

namespace quillmere {
namespace {

std::vector<std::int32_t> AllColumns(const TableView& table) {
  std::vector<std::int32_t> columns(static_cast<std::size_t>(table.Columns()));
  std::iota(columns.begin(), columns.end(), 0);
  return columns;
}

}  // namespace

RowBlocks::RowBlocks(const TableView& table) : RowBlocks(table, AllColumns(table)) {}

RowBlocks::RowBlocks(const TableView& table, std::span<const std::int32_t> columns)
    : table_(table), columns_(columns.begin(), columns.end()), lines_(columns.size()), rowsPerBlock_(table.Rows()) {
  if (table.IsReference()) FindRuns();
}

void RowBlocks::FindRuns() {
  std::vector<std::int32_t> sorted = columns_;
  std::sort(sorted.begin(), sorted.end());
  sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
  for (const std::int32_t column : sorted) {
    if (runs_.empty() || column != runs_.back().first + runs_.back().count) runs_.push_back({column, 0, {}});
    ++runs_.back().count;
  }
  rowsPerBlock_ = kBlockCells / std::max(1, static_cast<std::int32_t>(sorted.size()));
}

bool RowBlocks::Next() {
  firstRow_ += rows_;
  rows_ = std::min(rowsPerBlock_, table_.Rows() - firstRow_);
  // Given back first: Excel may then use the same memory again.
  for (Run& run : runs_) run.cells.Reset();
  if (rows_ == 0) return false;
  Fetch();
  return true;
}

void RowBlocks::Fetch() {
  if (!table_.IsReference()) {
    for (std::size_t i = 0; i < columns_.size(); ++i) lines_[i] = ColumnLine(table_.Cells(), columns_[i]);
    return;
  }
  for (Run& run : runs_) run.cells = table_.CoercePart(firstRow_, run.first, rows_, run.count);
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const auto isBehind = [](std::int32_t column, const Run& run) { return column < run.first; };
    const Run& run = *(std::upper_bound(runs_.begin(), runs_.end(), columns_[i], isBehind) - 1);
    lines_[i] = ColumnLine(run.cells.Cells(), columns_[i] - run.first);
  }
}

}  // namespace quillmere
