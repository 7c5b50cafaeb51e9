// Reading the arguments of a lookup, the first of its three steps: reading, searching, building.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/convert/argument.h"
#include "frame/values/xl_oper.h"
#include "lookup/lookup_memory.h"
#include "table/sort_order.h"
#include "table/table_view.h"

namespace quillmere::lookup {

/// Which of several matches of a key is wanted; a positive number n is the n-th.
namespace wanted_match {
constexpr std::int32_t kDefault = 0;  ///< the first; in an ascending table the last of equal rows
constexpr std::int32_t kFirst = -1;
constexpr std::int32_t kLast = -2;
constexpr std::int32_t kAll = -3;
}  // namespace wanted_match

/// The arguments of a lookup as the worksheet functions pass them. Null stands for an argument that a function has not.
struct LookupArguments {
  const CXlArgument& lookupValues;
  const CXlArgument& lookupTable;
  const CXlArgument* answerColumns;  ///< null: row positions are wanted, not values
  const CXlArgument& lookupColumns;
  const CXlArgument* memory = nullptr;  ///< null: no memory
  std::int32_t position = wanted_match::kDefault;
};

/// How the table is ordered and what is asked of a match.
struct MatchRules {
  SortOrder order = SortOrder::kUnsorted;
  bool exact = true;
  XLOPER12 notFound = ErrorCell(xlerrNA);  ///< what a key without a match returns
  bool caseSensitive = false;
};

/// A lookup read and checked. It views the arguments.
struct LookupPlan {
  TableView data;                           ///< the rows that are searched: without the header
  CXlCells keys;                            ///< a key a row, its parts in the columns
  std::vector<std::int32_t> lookupColumns;  ///< 0-based, one per key part
  std::vector<std::int32_t> answerColumns;  ///< 0-based; empty: row positions are wanted
  MemoryChoice memory;
  std::int32_t position;

  bool WantsPositions() const noexcept { return answerColumns.empty(); }
};

/// Reads what all lookups share, those by regular expression too. Every fault of an argument is CXlErrorException with
/// #VALUE!: keys or table missing or empty, a selector of several rows or one that does not resolve, as many lookup
/// columns as key parts not given, keys wider than the table, a position below -3, no known memory.
LookupPlan ReadLookup(const LookupArguments& arguments);

/// Reads the arguments Sorted and Exact_Match: an error value is #VALUE!.
MatchRules ReadMatchRules(const CXlOper& sorted, const CXlOper& exactMatch, bool caseSensitive);

}  // namespace quillmere::lookup
