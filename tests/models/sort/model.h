// Slow and plain models of the sorts, distinct lists, joins and comparisons: what a call must give, worked out from the
// rules that the help pages state. They share nothing with the add-in.
#pragma once

#include "tests/models/sort/call.h"

namespace qcalc::sort {

enum class TextOrder { kUnits, kLanguageWithoutCase, kLanguage };

struct SortFunction {
  XStringView name;
  TextOrder order;
  bool isIndex;  ///< gives row numbers, not rows
};
inline constexpr SortFunction kSortFunctions[] = {{XTEXT("VSORTB"), TextOrder::kUnits, false},
                                                  {XTEXT("VSORTB.INDEX"), TextOrder::kUnits, true},
                                                  {XTEXT("VSORTC"), TextOrder::kLanguageWithoutCase, false},
                                                  {XTEXT("VSORTC.INDEX"), TextOrder::kLanguageWithoutCase, true},
                                                  {XTEXT("Case.VSORTC"), TextOrder::kLanguage, false},
                                                  {XTEXT("Case.VSORTC.INDEX"), TextOrder::kLanguage, true}};

/// A stable sort.
Value ExpectedSort(const Call& call);

/// Places among the settings. What a function has not is nowhere.
constexpr std::size_t kNowhere = 99;
enum class Figure { kNone, kCount, kSum, kAverage };
struct DistinctFunction {
  XStringView name;
  Figure figure;
  std::size_t byRows, caseSense, sort, fill;  ///< places; that of Ignore is 0
};
inline constexpr DistinctFunction kDistinctFunctions[] = {
    {XTEXT("LISTDISTINCTS"), Figure::kNone, 2, 1, 3, 4},
    {XTEXT("LISTDISTINCTS.COUNT"), Figure::kCount, 1, 2, 3, 4},
    {XTEXT("LISTDISTINCTS.SUM"), Figure::kSum, kNowhere, 1, 2, 3},
    {XTEXT("LISTDISTINCTS.AVG"), Figure::kAverage, kNowhere, 1, 2, 3},
    {XTEXT("COUNTDISTINCTS"), Figure::kNone, 1, 2, kNowhere, kNowhere},
    {XTEXT("COUNTDUPES"), Figure::kNone, 1, 2, kNowhere, kNowhere}};

/// Items in a map, in order of their first occurrence. A SumColumn or AvgColumn is a second table.
Value ExpectedDistinct(const Call& call);

inline constexpr XStringView kJoinFunctions[] = {XTEXT("MATCHES"), XTEXT("MISSMATCHES"), XTEXT("COMPARE.LISTS"),
                                                 XTEXT("COMPARE")};
enum JoinSetting : std::size_t { kMatchType, kLeftColumns, kRightColumns, kJoinCase, kFill, kJoinSettings };

/// Every row of one table against every row of the other.
Value ExpectedJoin(const Call& call);

// Rules that the models share.

/// The rows sorted by columns, which count from 1 and are below 0 for descending ones. Empty cells come last either
/// way; rows that are equal in all of them stay as they come.
Rows SortedRows(const Rows& rows, const std::vector<std::int32_t>& columns, TextOrder order);

/// A text that is the same for equal cells and for no others: -0 is 0, and A to Z are a to z unless case counts.
XString KeyOf(const Row& cells, bool caseSensitive);

/// The items, row by row: each row, or each cell.
Rows ItemsOf(const Array& table, bool byRows);

/// Whether the flags leave an item out: 1 for an error in it, 2 for nothing but empty cells and texts of length zero, 4
/// for nothing but zeros; flags outside 1 to 7 never.
bool IsIgnored(const Row& item, double flags);

}  // namespace qcalc::sort
