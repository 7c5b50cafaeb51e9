#include "criteria/criteria_columns.h"

#include <algorithm>

namespace quillmere::criteria {

std::size_t CriteriaColumns::Add(const TableView& table, std::int32_t column, std::size_t source) {
  const auto isSame = [&](const Column& other) { return other.source == source && other.column == column; };
  const auto found = std::ranges::find_if(columns_, isSame);
  if (found != columns_.end()) return static_cast<std::size_t>(found - columns_.begin());
  columns_.push_back({table, column, source});
  lines_.emplace_back();
  return columns_.size() - 1;
}

std::int32_t CriteriaColumns::MostRows() const noexcept {
  const auto isReference = [](const Column& column) { return column.table.IsReference(); };
  const auto references = static_cast<std::int32_t>(std::ranges::count_if(columns_, isReference));
  return references == 0 ? kXlMaxRows : RowBlocks::kBlockCells / references;
}

void CriteriaColumns::Read(const RowInterval& rows) {
  blocks_.clear();
  std::vector<bool> isRead(columns_.size());
  for (std::size_t index = 0; index < columns_.size(); ++index) {
    const TableView some = columns_[index].table.SomeRows(rows.first, rows.Rows());
    if (!some.IsReference()) {
      lines_[index] = ColumnLine(some.Cells(), columns_[index].column);
      continue;
    }
    if (isRead[index]) continue;
    std::vector<std::size_t> together;
    std::vector<std::int32_t> numbers;
    for (std::size_t other = index; other < columns_.size(); ++other) {
      if (columns_[other].source != columns_[index].source) continue;
      together.push_back(other);
      numbers.push_back(columns_[other].column);
      isRead[other] = true;
    }
    RowBlocks& block = blocks_.emplace_back(some, numbers);
    block.Next();
    for (std::size_t place = 0; place < together.size(); ++place) lines_[together[place]] = block.Column(place);
  }
}

}  // namespace quillmere::criteria
