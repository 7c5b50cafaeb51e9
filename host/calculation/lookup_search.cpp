#include "host/calculation/lookup_search.h"

#include "host/calculation/lookup_pattern.h"
#include "host/values/value_order.h"

namespace qcalc {

namespace {

using FoundAt = std::optional<std::int32_t>;

// A search that ends within so many cells of a column asks for no index and leaves no trace.
constexpr std::int32_t kShortSearch = 64;

bool AcceptAny(const CellView&) { return true; }

FoundAt FindEqual(const CellView& key, const CellLine& line) {
  const auto equals = [&key](const CellView& cell) { return EqualsKey(key, cell); };
  const std::int32_t last = line.Size() - 1;
  const Sheet* sheet = line.ColumnSheet();
  if (!sheet || last < kShortSearch) return line.Find(0, last, key.Kind(), equals);
  if (const FoundAt near = line.Find(0, kShortSearch - 1, key.Kind(), equals)) return near;
  const CellStore& cells = sheet->Cells();
  const std::int32_t firstRow = line.FirstRow();
  if (const auto index = sheet->Indexes().Find(cells, line.SheetColumn())) {
    const auto row = index->FirstRow(cells, key, firstRow + kShortSearch, firstRow + last);
    return row ? FoundAt(*row - firstRow) : std::nullopt;
  }
  const FoundAt found = line.Find(kShortSearch, last, key.Kind(), equals);
  const std::int32_t end = std::min(found.value_or(last), cells.RowsReached(line.SheetColumn()) - firstRow);
  if (end > kShortSearch) sheet->Indexes().NoteScan(cells, line.SheetColumn(), end - kShortSearch);
  return found;
}

FoundAt FindUnsorted(const CellView& key, const CellLine& line) {
  if (!key.IsText()) return FindEqual(key, line);
  const LookupPattern pattern(key.AsText());
  if (pattern.HasWildcards())
    return line.Find(0, line.Size() - 1, CellKind::kText,
                     [&pattern](const CellView& cell) { return pattern.Matches(cell.AsText()); });
  const XString literal = pattern.Literal();
  return FindEqual(CellView::Text(literal), line);
}

// From a place that holds the key over those that do to the last one below `end`.
std::int32_t EndOfRun(const CellView& key, const CellLine& line, std::int32_t place, std::int32_t end) {
  const auto walk = [&](std::int32_t limit) {
    while (place + 1 < limit && EqualsKey(key, line.At(place + 1))) ++place;
  };
  const std::int32_t start = place;
  const Sheet* sheet = line.ColumnSheet();
  walk(sheet ? std::min(end, place + kShortSearch) : end);
  if (!sheet || place + 1 < start + kShortSearch || place + 1 >= end) return place;
  const CellStore& cells = sheet->Cells();
  if (const auto index = sheet->Indexes().Find(cells, line.SheetColumn()))
    return index->EndOfRun(cells, key, line.FirstRow() + place, line.FirstRow() + end - 1) - line.FirstRow();
  walk(end);
  sheet->Indexes().NoteScan(cells, line.SheetColumn(), place - start);
  return place;
}

FoundAt FindAscending(const CellView& key, const CellLine& line) {
  std::int32_t low = -1, high = line.Size();
  while (high - low > 1) {
    std::int32_t middle = low + (high - low) / 2;
    if (line.At(middle).Kind() != key.Kind()) {
      const FoundAt next = line.Find(middle + 1, high - 1, key.Kind(), AcceptAny);
      if (!next || (*next == high - 1 && CompareKey(key, line.At(*next)) < 0)) {
        high = middle;
        continue;
      }
      middle = *next;
    }
    const auto order = CompareKey(key, line.At(middle));
    if (order == 0) return EndOfRun(key, line, middle, high);
    (order < 0 ? high : low) = middle;
  }
  return low < 0 ? std::nullopt : FoundAt(low);
}

// Whether Excel goes through descending cells by halves, too, is not known. From the front on up to the first smaller
// one gives what it gives on sorted cells.
FoundAt FindDescending(const CellView& key, const CellLine& line) {
  FoundAt best;
  std::int32_t from = 0;
  while (const FoundAt next = line.Find(from, line.Size() - 1, key.Kind(), AcceptAny)) {
    const auto order = CompareKey(key, line.At(*next));
    if (order > 0) break;
    best = next;
    if (order == 0) break;
    from = *next + 1;
  }
  return best;
}

}  // namespace

std::optional<std::int32_t> FindInLine(const CellView& key, const CellLine& line, LookupOrder order) {
  switch (order) {
    case LookupOrder::kUnsorted:
      return FindUnsorted(key, line);
    case LookupOrder::kAscending:
      return FindAscending(key, line);
    case LookupOrder::kDescending:
      break;
  }
  return FindDescending(key, line);
}

}  // namespace qcalc
