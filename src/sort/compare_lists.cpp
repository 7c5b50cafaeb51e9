// The distinct items of two lists, with how often each occurs in either.
//
// Serves COMPARE.LISTS.
#include <utility>
#include <vector>

#include "frame/values/array_builder.h"
#include "frame/values/scratch_list.h"
#include "implementations/sort.h"
#include "sort/distinct_arguments.h"
#include "sort/sort_rows.h"
#include "table/distinct_tuples.h"
#include "table/ignored_items.h"

namespace quillmere::sort {
namespace {

/// The items of two lists, the first before the second. A view.
class ListPair {
 public:
  /// Columns of items, together fewer than 2^30.
  ListPair(const CXlCells& first, const CXlCells& second) noexcept : first_(first), second_(second) {}

  bool IsInFirst(std::int32_t place) const noexcept { return place < first_.rows; }

  std::int32_t Count() const noexcept { return first_.rows + second_.rows; }
  std::size_t Parts() const noexcept { return 1; }
  const XLOPER12* CellAt(std::int32_t place, std::size_t) const noexcept {
    return IsInFirst(place) ? first_.Row(place) : second_.Row(place - first_.rows);
  }
  std::ptrdiff_t Stride() const noexcept { return 1; }
  std::int32_t RunEnd(std::int32_t place) const noexcept { return IsInFirst(place) ? first_.rows : Count(); }
  const XLOPER12& Meaning(const XLOPER12& cell) const noexcept { return cell; }

 private:
  CXlCells first_;
  CXlCells second_;
};

struct ItemCounts {
  std::int32_t inFirst;
  std::int32_t inSecond;
};

/// Distinct items in the order in which they first occur.
struct CountedItems {
  ScratchList<std::int32_t> firstPlaces;
  ScratchList<ItemCounts> counts;
};

template <TextCase textCase>
CountedItems CountItems(const ListPair& lists, const IgnoredItems& ignored) {
  CountedItems items;
  DistinctTuples<textCase, ListPair> distinct(lists);
  const auto isWanted = [&](std::int32_t place) { return !IsIgnored({lists.CellAt(place, 0), 1}, ignored); };
  distinct.AddAll(isWanted, [&](std::int32_t place, std::int32_t number) {
    const auto at = static_cast<std::size_t>(number);
    if (at == items.counts.size()) items.counts.Append({0, 0});
    ++(lists.IsInFirst(place) ? items.counts[at].inFirst : items.counts[at].inSecond);
  });
  items.firstPlaces = std::move(distinct).TakeFirstPlaces();
  return items;
}

/// The numbers of the items, in order.
RowOrder SortItems(const ListPair& lists, const CountedItems& items, const ListOrder& order) {
  std::vector<XLOPER12> cells;
  cells.reserve(items.counts.size());
  if (order.by == ListOrder::By::kItem)
    for (const std::int32_t place : items.firstPlaces) cells.push_back(*lists.CellAt(place, 0));
  else
    for (const ItemCounts& counts : items.counts) cells.push_back(NumberCell(counts.inFirst));
  const SortKey key{{cells.data(), static_cast<std::int32_t>(cells.size()), 1}, order.isDescending};
  return SortRows({&key, 1}, {}, SortMode::kCollatedByCase);
}

CXlOper ListItems(const ListPair& lists, const CountedItems& items, const ListOrder& order) {
  const std::size_t rows = items.counts.size();
  CheckArraySize(static_cast<std::int64_t>(rows), 3);
  RowOrder sorted;
  if (order.by != ListOrder::By::kFirstOccurrence) sorted = SortItems(lists, items, order);

  CXlArrayBuilder builder(static_cast<std::int64_t>(rows), 3);
  XLOPER12* to = builder.Row(0);
  for (std::size_t row = 0; row < rows; ++row) {
    const std::size_t number = sorted.empty() ? row : static_cast<std::size_t>(sorted[row]);
    builder.CopyCells(to++, lists.CellAt(items.firstPlaces[number], 0), 1);
    *to++ = NumberCell(items.counts[number].inFirst);
    *to++ = NumberCell(items.counts[number].inSecond);
  }
  return builder.Finish();
}

}  // namespace

void Functions::CompareLists(CXlOper& result, const CXlArgument& list1, const CXlArgument& list2,
                             const CXlScalarArgument<ElementKind::kInteger>& ignore,
                             const CXlScalarArgument<ElementKind::kBoolean>& caseSense,
                             const CXlScalarArgument<ElementKind::kInteger>& sort) {
  DistinctInput first(list1);
  DistinctInput second(list2);
  const IgnoredItems ignored = ReadIgnored(ignore);
  const TextCase textCase = ReadTextCase(caseSense);
  const ListOrder order = ReadOrder(sort);
  const CXlCells firstItems = first.ReadItems(false);
  const CXlCells secondItems = second.ReadItems(false);
  if (std::int64_t{firstItems.rows} + secondItems.rows > kMostItems) throw CXlArrayTooLargeException();

  const ListPair lists(firstItems, secondItems);
  const auto count = textCase == TextCase::kCounts ? CountItems<TextCase::kCounts> : CountItems<TextCase::kIgnored>;
  const CountedItems items = count(lists, ignored);
  if (items.counts.empty())
    result.SetError(xlerrNA);
  else
    result = ListItems(lists, items, order);
}

}  // namespace quillmere::sort
