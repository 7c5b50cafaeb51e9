#include "sort/distinct_items.h"

#include <algorithm>
#include <numeric>
#include <span>
#include <utility>

#include "frame/values/cell.h"
#include "table/cell_type.h"
#include "table/distinct_tuples.h"

namespace quillmere::sort {
namespace {

bool IsBlank(const XLOPER12& cell) { return !IsTextCell(cell) || TextOf(cell).empty(); }

bool IsZero(const XLOPER12& cell) { return CellNumber(cell) == 0; }

/// Whether an item is ignored. The types of all its cells, taken together, tell for most.
bool IsIgnored(std::span<const XLOPER12> item, const IgnoredItems& ignored) {
  std::uint32_t types = 0;
  for (const XLOPER12& cell : item) types |= TypeOf(cell);
  if (ignored.errors && (types & xltypeErr) != 0) return true;
  if (ignored.blanks && (types & ~(xltypeStr | xltypeNil | xltypeMissing)) == 0 && std::ranges::all_of(item, IsBlank))
    return true;
  return ignored.zeros && (types & ~(xltypeNum | xltypeInt)) == 0 && std::ranges::all_of(item, IsZero);
}

template <TextCase textCase>
DistinctItems Find(const CXlCells& items, const IgnoredItems& ignored, const CellLine* values) {
  std::vector<std::int32_t> columns(static_cast<std::size_t>(items.columns));
  std::iota(columns.begin(), columns.end(), 0);
  const RowTuples rows(items, columns);
  DistinctTuples<textCase, RowTuples> distinct(rows);
  DistinctItems found;
  const auto isWanted = [&](std::int32_t place) { return !IsIgnored({items.Row(place), columns.size()}, ignored); };
  distinct.AddAll(isWanted, [&](std::int32_t place, std::int32_t number) {
    const auto at = static_cast<std::size_t>(number);
    if (at == found.counts.size()) {
      found.counts.push_back(0);
      if (values) found.sums.push_back(0);
    }
    ++found.counts[at];
    if (values && CellTypeOf(values->At(place)) == cell_type::kNumber) found.sums[at] += CellNumber(values->At(place));
  });
  found.firstPlaces = std::move(distinct).TakeFirstPlaces();
  return found;
}

}  // namespace

DistinctItems FindDistinctItems(const CXlCells& items, TextCase textCase, const IgnoredItems& ignored,
                                const CellLine* values) {
  return textCase == TextCase::kCounts ? Find<TextCase::kCounts>(items, ignored, values)
                                       : Find<TextCase::kIgnored>(items, ignored, values);
}

}  // namespace quillmere::sort
