// The distinct items of two lists, with how often each occurs in either.
//
// Serves COMPARE.LISTS.
#include <span>
#include <vector>

#include "frame/values/array_builder.h"
#include "implementations/sort.h"
#include "sort/distinct_arguments.h"
#include "sort/sort_rows.h"
#include "table/distinct_tuples.h"

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

/// A distinct item, as it stands where it occurs first, and how often it occurs.
struct CountedItem {
  const XLOPER12* cell;
  std::int32_t inFirst;
  std::int32_t inSecond;
};

template <TextCase textCase>
std::vector<CountedItem> CountItems(const ListPair& lists, const IgnoredItems& ignored) {
  std::vector<CountedItem> items;
  DistinctTuples<textCase, ListPair> distinct(lists);
  const auto isWanted = [&](std::int32_t place) { return !IsIgnored({lists.CellAt(place, 0), 1}, ignored); };
  distinct.AddAll(isWanted, [&](std::int32_t place, std::int32_t number) {
    const auto at = static_cast<std::size_t>(number);
    if (at == items.size()) items.push_back({lists.CellAt(place, 0), 0, 0});
    ++(lists.IsInFirst(place) ? items[at].inFirst : items[at].inSecond);
  });
  return items;
}

/// The positions of the items, in order.
std::vector<std::int32_t> SortItems(std::span<const CountedItem> items, const ListOrder& order) {
  std::vector<XLOPER12> cells;
  cells.reserve(items.size());
  for (const CountedItem& item : items)
    cells.push_back(order.by == ListOrder::By::kItem ? *item.cell : NumberCell(item.inFirst));
  const SortKey key{{cells.data(), static_cast<std::int32_t>(cells.size()), 1}, order.isDescending};
  return SortRows({&key, 1}, {}, SortMode::kCollatedByCase);
}

CXlOper ListItems(std::span<const CountedItem> items, const ListOrder& order) {
  CheckArraySize(static_cast<std::int64_t>(items.size()), 3);
  std::vector<std::int32_t> sorted;
  if (order.by != ListOrder::By::kFirstOccurrence) sorted = SortItems(items, order);

  CXlArrayBuilder builder(static_cast<std::int64_t>(items.size()), 3);
  XLOPER12* to = builder.Row(0);
  for (std::size_t row = 0; row < items.size(); ++row) {
    const CountedItem& item = items[sorted.empty() ? row : static_cast<std::size_t>(sorted[row])];
    builder.CopyCells(to++, item.cell, 1);
    *to++ = NumberCell(item.inFirst);
    *to++ = NumberCell(item.inSecond);
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
  const std::vector<CountedItem> items = textCase == TextCase::kCounts ? CountItems<TextCase::kCounts>(lists, ignored)
                                                                       : CountItems<TextCase::kIgnored>(lists, ignored);
  if (items.empty())
    result.SetError(xlerrNA);
  else
    result = ListItems(items, order);
}

}  // namespace quillmere::sort
