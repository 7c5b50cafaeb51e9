#include "sort/distinct_items.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

#include "table/cell_type.h"
#include "table/distinct_tuples.h"

namespace quillmere::sort {
namespace {

/// Lengthens a list by zeros, many at once: where items first occur cannot be foreseen, when the list is to be
/// lengthened can. Not inlined, so that what asks for it is.
template <class T>
[[gnu::noinline]] void Lengthen(ScratchList<T>& values) {
  constexpr std::size_t kAtOnce = 1024;
  const std::size_t size = values.size();
  values.MakeRoomFor(kAtOnce);
  std::fill_n(values.Room() + size, kAtOnce, T{});
  values.SetSize(size + kAtOnce);
}

/// The value of an item, whose list may end right before it.
template <class T>
T& ValueOf(ScratchList<T>& values, std::size_t number) {
  if (number >= values.size()) [[unlikely]]
    Lengthen(values);
  return values[number];
}

[[gnu::noinline]] void AddValue(ScratchList<double>& sums, std::size_t number, const XLOPER12& value) {
  double& sum = ValueOf(sums, number);
  if (CellTypeOf(value) == cell_type::kNumber) sum += CellNumber(value);
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
    if (counts) ++ValueOf(found.counts, at);
    if (sums) AddValue(found.sums, at, values->At(place));
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
