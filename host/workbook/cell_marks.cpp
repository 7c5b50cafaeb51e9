#include "host/workbook/cell_marks.h"

#include <algorithm>
#include <bit>

namespace qcalc {

namespace {

// The bits from `first` to `last`, from 0 to 63.
std::uint64_t Bits(std::int32_t first, std::int32_t last) {
  return (~std::uint64_t{0} >> (63 - last + first)) << first;
}

}  // namespace

// The first marked row of the page from `first` to `last`; -1 when there is none.
int CellMarks::Page::First(std::int32_t first, std::int32_t last) const {
  std::uint64_t open = used & Bits(first / kWordRows, last / kWordRows);
  for (; open != 0; open &= open - 1) {
    const int word = std::countr_zero(open);
    const std::int32_t start = word * kWordRows;
    const std::uint64_t bits =
        words[static_cast<std::size_t>(word)] & Bits(std::max(first - start, 0), std::min(last - start, kWordRows - 1));
    if (bits != 0) return start + std::countr_zero(bits);
  }
  return -1;
}

// The same from the end.
int CellMarks::Page::Last(std::int32_t first, std::int32_t last) const {
  std::uint64_t open = used & Bits(first / kWordRows, last / kWordRows);
  while (open != 0) {
    const int word = 63 - std::countl_zero(open);
    const std::int32_t start = word * kWordRows;
    const std::uint64_t bits =
        words[static_cast<std::size_t>(word)] & Bits(std::max(first - start, 0), std::min(last - start, kWordRows - 1));
    if (bits != 0) return start + 63 - std::countl_zero(bits);
    open &= ~(std::uint64_t{1} << word);
  }
  return -1;
}

// How many marks came, or went (negative).
std::int64_t CellMarks::Page::Set(std::int32_t first, std::int32_t last, bool marked) {
  std::int64_t change = 0;
  for (std::int32_t word = first / kWordRows; word <= last / kWordRows; ++word) {
    const std::int32_t start = word * kWordRows;
    std::uint64_t& bits = words[static_cast<std::size_t>(word)];
    const std::uint64_t there = bits;
    const std::uint64_t meant = Bits(std::max(first - start, 0), std::min(last - start, kWordRows - 1));
    bits = marked ? bits | meant : bits & ~meant;
    change += std::popcount(bits) - std::popcount(there);
    const std::uint64_t own = std::uint64_t{1} << word;
    used = bits != 0 ? used | own : used & ~own;
  }
  return change;
}

void CellMarks::Set(const Area& area, bool marked) {
  for (std::int32_t c = area.firstColumn; c <= area.lastColumn; ++c) {
    const auto found = columns_.find(c);
    if (found == columns_.end() && !marked) continue;
    Column& column = found == columns_.end() ? columns_[c] : found->second;
    for (std::int32_t row = area.firstRow; row <= area.lastRow;) {
      const std::int32_t start = row - row % kPageRows;
      const std::int32_t last = std::min(area.lastRow, start + kPageRows - 1);
      const auto index = static_cast<std::size_t>(row / kPageRows);
      if (marked && index >= column.pages.size()) column.pages.resize(index + 1);
      if (marked && !column.pages[index]) column.pages[index] = std::make_unique<Page>();
      if (index < column.pages.size() && column.pages[index]) {
        const std::int64_t change = column.pages[index]->Set(row - start, last - start, marked);
        column.count += change;
        count_ += change;
      }
      row = last + 1;
    }
  }
}

std::int32_t CellMarks::FirstRow(const Column& column, std::int32_t first, std::int32_t last) {
  last = std::min(last, static_cast<std::int32_t>(column.pages.size()) * kPageRows - 1);
  for (std::int32_t row = first; row <= last; row += kPageRows - row % kPageRows) {
    const auto& page = column.pages[static_cast<std::size_t>(row / kPageRows)];
    const std::int32_t start = row - row % kPageRows;
    const int found = page ? page->First(row - start, std::min(last - start, kPageRows - 1)) : -1;
    if (found >= 0) return start + found;
  }
  return -1;
}

std::int32_t CellMarks::LastRow(const Column& column, std::int32_t first, std::int32_t last) {
  last = std::min(last, static_cast<std::int32_t>(column.pages.size()) * kPageRows - 1);
  for (std::int32_t row = last; row >= first; row -= row % kPageRows + 1) {
    const auto& page = column.pages[static_cast<std::size_t>(row / kPageRows)];
    const std::int32_t start = row - row % kPageRows;
    const int found = page ? page->Last(std::max(first - start, 0), row - start) : -1;
    if (found >= 0) return start + found;
  }
  return -1;
}

std::optional<CellPosition> CellMarks::FindFirst(const Area& area) const {
  std::optional<CellPosition> best;
  if (count_ == 0) return best;
  std::int32_t last = area.lastRow;
  for (auto column = columns_.lower_bound(area.firstColumn);
       column != columns_.end() && column->first <= area.lastColumn; ++column) {
    if (column->second.count == 0) continue;
    const std::int32_t row = FirstRow(column->second, area.firstRow, last);
    if (row < 0 || (best && row == best->row)) continue;
    best = {row, column->first};
    last = row;
  }
  return best;
}

std::optional<CellPosition> CellMarks::FindLast(const Area& area) const {
  std::optional<CellPosition> best;
  if (count_ == 0) return best;
  std::int32_t first = area.firstRow;
  for (auto column = columns_.lower_bound(area.firstColumn);
       column != columns_.end() && column->first <= area.lastColumn; ++column) {
    if (column->second.count == 0) continue;
    const std::int32_t row = LastRow(column->second, first, area.lastRow);
    if (row < 0) continue;
    best = {row, column->first};
    first = row;
  }
  return best;
}

}  // namespace qcalc
