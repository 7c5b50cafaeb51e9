// A slow and plain model of the sorts: what a call must give, worked out from the rules that the help pages state. It
// shares nothing with the add-in.
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

/// The rows sorted by columns, which count from 1 and are below 0 for descending ones. Empty cells come last either
/// way; rows that are equal in all of them stay as they come.
Rows SortedRows(const Rows& rows, const std::vector<std::int32_t>& columns, TextOrder order);

}  // namespace qcalc::sort
