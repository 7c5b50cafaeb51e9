#include "sort/distinct_items.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

#include "table/cell_type.h"
#include "table/distinct_tuples.h"

namespace quillmere::sort {
namespace {

/// Lengthens a list of zeros, many at once, until it has that place. Where items first occur cannot be foreseen, when
/// the list is to be lengthened can.
template <class T>
void ReachTo(std::size_t place, ScratchList<T>& values) {
  constexpr std::size_t kAtOnce = 1024;
  const std::size_t size = values.size();
  if (place < size) return;
  values.MakeRoomFor(kAtOnce);
  std::fill_n(values.Room() + size, kAtOnce, T{});
  values.SetSize(size + kAtOnce);
}

template <TextCase textCase>
DistinctItems Find(const CXlCells& items, const IgnoredItems& ignored, ItemFigure figure, const CellLine* values) {
  std::vector<std::int32_t> columns(static_cast<std::size_t>(items.columns));
  std::iota(columns.begin(), columns.end(), 0);
  const RowTuples rows(items, columns);
  DistinctTuples<textCase, RowTuples> distinct(rows);
  const bool counts = figure == ItemFigure::kCount || figure == ItemFigure::kAverage;
  const bool sums = figure == ItemFigure::kSum || figure == ItemFigure::kAverage;
  DistinctItems found;
  const auto isWanted = [&](std::int32_t place) { return !IsIgnored({items.Row(place), columns.size()}, ignored); };
  distinct.AddAll(isWanted, [&](std::int32_t place, std::int32_t number) {
    const auto at = static_cast<std::size_t>(number);
    ++found.all;
    if (counts) {
      ReachTo(at, found.counts);
      ++found.counts[at];
    }
    if (!sums) return;
    ReachTo(at, found.sums);
    if (CellTypeOf(values->At(place)) == cell_type::kNumber) found.sums[at] += CellNumber(values->At(place));
  });
  found.firstPlaces = std::move(distinct).TakeFirstPlaces();
  if (counts) found.counts.SetSize(found.firstPlaces.size());
  if (sums) found.sums.SetSize(found.firstPlaces.size());
  return found;
}

}  // namespace

DistinctItems FindDistinctItems(const CXlCells& items, TextCase textCase, const IgnoredItems& ignored,
                                ItemFigure figure, const CellLine* values) {
  return textCase == TextCase::kCounts ? Find<TextCase::kCounts>(items, ignored, figure, values)
                                       : Find<TextCase::kIgnored>(items, ignored, figure, values);
}

}  // namespace quillmere::sort
