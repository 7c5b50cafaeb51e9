// A slow and plain model of the lookup functions: what a call must give, worked out row by row from the rules that the
// help pages state, without a thought for speed. It shares nothing with the add-in.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/values/value.h"
#include "tests/models/calling_place.h"

namespace qcalc::lookup {

/// Excel's MATCH and VLOOKUP take no longer texts to look for; those the add-in searches itself.
constexpr std::size_t kExcelMatchUnits = 255;

/// Which rows a function returns.
enum class Wanted { kFirst, kAll, kNth };

struct LookupFunction {
  XStringView name;
  Wanted wanted;
  bool returnsValues;  ///< from answer columns; else row numbers
};
inline constexpr LookupFunction kLookupFunctions[] = {
    {XTEXT("AVLOOKUP2"), Wanted::kFirst, true}, {XTEXT("AVLOOKUPS2"), Wanted::kAll, true},
    {XTEXT("AVLOOKUPNTH"), Wanted::kNth, true}, {XTEXT("AMATCH2"), Wanted::kFirst, false},
    {XTEXT("AMATCHES2"), Wanted::kAll, false},  {XTEXT("AMATCHNTH"), Wanted::kNth, false}};

/// One call with all its arguments; those that are left out are missing values.
struct LookupCall {
  const LookupFunction* function = nullptr;
  bool byExpression = false;  ///< texts of keys are regular expressions, and no table is taken for sorted
  bool caseSensitive = false;
  Value keys;
  ArrayPtr table;              ///< its cells, a header row included
  bool isReference = false;    ///< the table stands in a sheet
  std::int32_t rowsBelow = 0;  ///< empty rows that the reference has below the table's cells
  Value answerColumns = Value::Missing();
  Value sorted = Value::Missing();
  Value exactMatch = Value::Missing();  ///< or what is returned where no expression matches
  Value lookupColumns = Value::Missing();
  Value memory = Value::Missing();
  std::optional<std::int32_t> position;
  models::CallingPlace caller;

  XString Name() const {
    return (byExpression ? XTEXT("Rgx.") : XString()) + (caseSensitive ? XTEXT("Case.") : XString()) +
           XString(function->name);
  }
};

/// Where a cell comes in a sorted table compared with what is looked for: below 0 before it, 0 equal, above 0 after.
/// Numbers, booleans, errors, empty cells, texts; texts by their units, A to Z as a to z unless case counts.
int Compare(const CellView& cell, const CellView& key, bool caseSensitive);

/// The rows that unsorted lookups remember, by calling place.
class MemoryModel {
 public:
  std::optional<std::int32_t> Find(const std::string& place) const;
  void Remember(const std::string& place, std::int32_t row) { rows_[place] = row; }

 private:
  std::map<std::string, std::int32_t> rows_;
};

/// What the call gives; what it remembers goes to `memory`.
Value Expected(const LookupCall& call, MemoryModel& memory);

}  // namespace qcalc::lookup
