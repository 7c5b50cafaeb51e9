#include "host/workbook/column_index.h"

#include <algorithm>
#include <bit>
#include <mutex>

#include "host/text/letter_case.h"
#include "host/values/value_order.h"

namespace qcalc {

namespace {

std::uint32_t Mixed(std::uint64_t bits) {
  bits = (bits ^ (bits >> 32)) * 0x9E3779B97F4A7C15;
  bits = (bits ^ (bits >> 29)) * 0xBF58476D1CE4E5B9;
  return static_cast<std::uint32_t>(bits >> 32);
}

// Equal for all that EqualsKey takes for equal.
std::uint32_t HashOf(const CellView& cell) {
  if (cell.IsNumber()) return Mixed(cell.AsNumber() == 0 ? 0 : std::bit_cast<std::uint64_t>(cell.AsNumber()));
  if (cell.IsBoolean()) return cell.AsBoolean() ? 1 : 2;
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const XCHAR unit : cell.AsText()) hash = (hash ^ static_cast<std::uint16_t>(FoldUnit(unit))) * 0x100000001B3;
  return Mixed(hash);
}

bool CanBeFound(const CellView& cell) { return !cell.IsEmpty() && !cell.IsError(); }

}  // namespace

template <typename RowOfGroup>
std::size_t ColumnIndex::FindSlot(const CellStore& cells, const CellView& key, std::uint32_t hash,
                                  RowOfGroup&& rowOf) const {
  std::size_t i = hash & (slots_.size() - 1);
  while (slots_[i].group != 0 &&
         (slots_[i].hash != hash || !EqualsKey(key, cells.Get(rowOf(slots_[i].group - 1), column_))))
    i = (i + 1) & (slots_.size() - 1);
  return i;
}

ColumnIndex::ColumnIndex(const CellStore& cells, std::int32_t column) : column_(column) {
  const Area whole{0, kXlMaxRows - 1, column, column};
  std::size_t count = 0;
  cells.VisitUsed(whole, [&](std::int32_t, std::int32_t, const CellView& cell) { count += CanBeFound(cell) ? 1 : 0; });
  slots_.resize(std::bit_ceil(2 * count + 1));
  std::vector<std::uint32_t> groups;  // of the rows that can be found, in order
  std::vector<std::int32_t> firstRows;
  groups.reserve(count);
  cells.VisitUsed(whole, [&](std::int32_t row, std::int32_t, const CellView& cell) {
    if (!CanBeFound(cell)) return;
    const std::uint32_t hash = HashOf(cell);
    Slot& slot = slots_[FindSlot(cells, cell, hash, [&](std::uint32_t group) { return firstRows[group]; })];
    if (slot.group == 0) {
      firstRows.push_back(row);
      slot = {hash, static_cast<std::uint32_t>(firstRows.size())};
    }
    groups.push_back(slot.group - 1);
  });
  // Counts, then the starts that they give, then the rows in place.
  starts_.resize(firstRows.size() + 1);
  for (const std::uint32_t group : groups) ++starts_[group + 1];
  for (std::size_t i = 1; i < starts_.size(); ++i) starts_[i] += starts_[i - 1];
  std::vector<std::uint32_t> next(starts_.begin(), starts_.end());
  rows_.resize(count);
  auto group = groups.begin();
  cells.VisitUsed(whole, [&](std::int32_t row, std::int32_t, const CellView& cell) {
    if (CanBeFound(cell)) rows_[next[*group++]++] = row;
  });
}

ColumnIndex::Rows ColumnIndex::RowsOf(const CellStore& cells, const CellView& key) const {
  const std::size_t slot =
      FindSlot(cells, key, HashOf(key), [this](std::uint32_t group) { return rows_[starts_[group]]; });
  if (slots_[slot].group == 0) return {nullptr, nullptr};
  const std::uint32_t group = slots_[slot].group - 1;
  return {rows_.data() + starts_[group], rows_.data() + starts_[group + 1]};
}

std::optional<std::int32_t> ColumnIndex::FirstRow(const CellStore& cells, const CellView& key, std::int32_t first,
                                                  std::int32_t last) const {
  const Rows rows = RowsOf(cells, key);
  const std::int32_t* row = std::lower_bound(rows.begin, rows.end, first);
  return row != rows.end && *row <= last ? std::optional(*row) : std::nullopt;
}

std::int32_t ColumnIndex::EndOfRun(const CellStore& cells, const CellView& key, std::int32_t row,
                                   std::int32_t last) const {
  const Rows rows = RowsOf(cells, key);
  const std::int32_t* start = std::lower_bound(rows.begin, rows.end, row);
  // Along a run each next row is greater by one, behind it by more.
  const std::int32_t* end = std::partition_point(
      start, rows.end, [&](const std::int32_t& next) { return next <= last && next - row == &next - start; });
  return *(end - 1);
}

std::shared_ptr<const ColumnIndex> ColumnIndexes::Find(const CellStore& cells, std::int32_t column) const {
  const std::shared_lock lock(mutex_);
  const auto found = entries_.find(column);
  return found != entries_.end() && found->second.changes == cells.Changes(column) ? found->second.index : nullptr;
}

void ColumnIndexes::NoteScan(const CellStore& cells, std::int32_t column, std::int64_t count) {
  // Building costs about as much as reading the column so often.
  constexpr std::int64_t kScansWorthAnIndex = 8;
  const std::unique_lock lock(mutex_);
  Entry& entry = entries_[column];
  if (entry.changes != cells.Changes(column)) entry = {cells.Changes(column), 0, nullptr};
  entry.scanned += count;
  if (!entry.index && entry.scanned >= kScansWorthAnIndex * cells.RowsReached(column))
    entry.index = std::make_shared<const ColumnIndex>(cells, column);
}

}  // namespace qcalc
