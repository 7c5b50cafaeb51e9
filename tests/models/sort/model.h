// Slow and plain models of the sorts, distinct lists, joins and comparisons: what a random call must give, worked out
// from the rules that the help pages state. They share nothing with the add-in.
#pragma once

#include <compare>
#include <cstdint>
#include <vector>

#include "host/values/value.h"
#include "tests/models/calling_place.h"

namespace qcalc::sort {

struct Call {
  XStringView function;
  std::vector<ArrayPtr> tables;  ///< the first arguments
  std::vector<Value> settings;   ///< all others; those that are left out are missing values
  models::CallingPlace place;
  bool isReference = false;  ///< the tables stand in a sheet
  bool isTall = false;       ///< and the references go down to the sheet's end
};

/// Draws the call of a number, which all follows from. What the rules leave open is avoided, and so are texts that the
/// native builds of add-in and host order each in its own way.
using Draw = Call(std::uint64_t seed, std::uint64_t number, const models::CallingPlaces& places);
/// What a call must give.
using Model = Value(const Call& call);

Draw DrawSort, DrawDistinct, DrawJoin;
Model ExpectedSort, ExpectedDistinct, ExpectedJoin;

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

enum class Figure { kNone, kCount, kSum, kAverage };
constexpr std::size_t kNowhere = 99;
struct DistinctFunction {
  XStringView name;
  Figure figure;                              ///< a sum or average has a second table, that of its numbers
  std::size_t byRows, caseSense, sort, fill;  ///< among the settings, or kNowhere; Ignore is the first
};
inline constexpr DistinctFunction kDistinctFunctions[] = {
    {XTEXT("LISTDISTINCTS"), Figure::kNone, 2, 1, 3, 4},
    {XTEXT("LISTDISTINCTS.COUNT"), Figure::kCount, 1, 2, 3, 4},
    {XTEXT("LISTDISTINCTS.SUM"), Figure::kSum, kNowhere, 1, 2, 3},
    {XTEXT("LISTDISTINCTS.AVG"), Figure::kAverage, kNowhere, 1, 2, 3},
    {XTEXT("COUNTDISTINCTS"), Figure::kNone, 1, 2, kNowhere, kNowhere},
    {XTEXT("COUNTDUPES"), Figure::kNone, 1, 2, kNowhere, kNowhere}};

inline constexpr XStringView kJoinFunctions[] = {XTEXT("MATCHES"), XTEXT("MISSMATCHES"), XTEXT("COMPARE.LISTS"),
                                                 XTEXT("COMPARE")};
enum JoinSetting : std::size_t { kMatchType, kLeftColumns, kRightColumns, kJoinCase, kFill, kJoinSettings };

// What the models share.

using Row = std::vector<CellView>;
using Rows = std::vector<Row>;

/// The array's rows, which view its texts.
Rows RowsOf(const Array& array);
/// An array as wide as the first row; as a result, a single cell is a plain value.
ArrayPtr ArrayOf(const Rows& rows);
Value ResultOf(const Rows& rows);

/// What a setting says, TRUE being 1, or what it stands for when it is left out.
double SettingOr(double leftOut, const Value& setting);

/// The order of texts in the user's language with regard to case, which the host itself has no use for.
std::weak_ordering CompareWithCase(XStringView left, XStringView right);

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
