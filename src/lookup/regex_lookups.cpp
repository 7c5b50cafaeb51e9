// The lookups by regular expressions: values or row positions; of the first match, of the n-th, or of all.
//
// Serves Rgx.AVLOOKUP2, Rgx.AVLOOKUPS2, Rgx.AVLOOKUPNTH, Rgx.AMATCH2, Rgx.AMATCHES2, Rgx.AMATCHNTH,
// Rgx.Case.AVLOOKUP2, Rgx.Case.AVLOOKUPS2, Rgx.Case.AVLOOKUPNTH, Rgx.Case.AMATCH2, Rgx.Case.AMATCHES2,
// Rgx.Case.AMATCHNTH.
#include "frame/convert/argument.h"
#include "frame/errors/attempt.h"
#include "implementations/lookup.h"
#include "lookup/array_search.h"
#include "lookup/lookup_arguments.h"
#include "lookup/lookup_keys.h"
#include "lookup/lookup_result.h"
#include "lookup/reference_search.h"
#include "text/regex/regex_budget.h"

namespace quillmere::lookup {
namespace {

/// What a key without a match returns: Not_Found as it is, the first of several cells; #VALUE! where it is an error.
/// Null: the function has no such argument.
XLOPER12 ReadNotFound(const CXlArgument* notFound) {
  if (!notFound || !notFound->IsGiven()) return ErrorCell(xlerrNA);
  const XLOPER12& cell = *notFound->Value().Cells().first;
  return CellType(cell) == xltypeErr ? ErrorCell(xlerrValue) : cell;
}

CXlOper Find(const LookupArguments& arguments, const CXlArgument* notFound, bool caseSensitive) {
  const LookupPlan plan = ReadLookup(arguments);
  const MatchRules rules{.notFound = ReadNotFound(notFound), .caseSensitive = caseSensitive};
  text::RegexBudget budget;
  const LookupKeys keys(plan.keys, caseSensitive, &budget);
  const FoundRows found = plan.data.IsReference() ? SearchReference(plan, keys, rules) : SearchArray(plan, keys, rules);
  return BuildLookupResult(plan, found, rules.notFound);
}

/// #VALUE! where an expression does not compile or would take too long.
void LookUp(CXlOper& result, const LookupArguments& arguments, const CXlArgument* notFound, bool caseSensitive) {
  result.SetError(xlerrValue);
  RunsWithout<CXlBadRegexException>(
      [&] { RunsWithout<CXlRegexLimitException>([&] { result = Find(arguments, notFound, caseSensitive); }); });
}

}  // namespace

void Functions::RgxAvLookup(CXlOper& result, bool caseSensitive, const CXlArgument& regExp,
                            const CXlArgument& lookupTable, const CXlArgument& answerColumns,
                            const CXlArgument& notFound, const CXlArgument& lookupColumns,
                            const CXlArgument& memTypeName) {
  LookUp(result, {regExp, lookupTable, &answerColumns, lookupColumns, &memTypeName}, &notFound, caseSensitive);
}

void Functions::RgxAvLookups(CXlOper& result, bool caseSensitive, const CXlArgument& regExp,
                             const CXlArgument& lookupTable, const CXlArgument& answerColumns,
                             const CXlArgument& lookupColumns) {
  LookUp(result, {regExp, lookupTable, &answerColumns, lookupColumns, nullptr, wanted_match::kAll}, nullptr,
         caseSensitive);
}

void Functions::RgxAvLookupNth(CXlOper& result, bool caseSensitive, const CXlArgument& regExp,
                               const CXlArgument& lookupTable, const CXlArgument& answerColumns,
                               const CXlArgument& notFound, const CXlArgument& lookupColumns,
                               const CXlScalarArgument<ElementKind::kInteger>& position) {
  LookUp(result, {regExp, lookupTable, &answerColumns, lookupColumns, nullptr, position.Read()}, &notFound,
         caseSensitive);
}

void Functions::RgxAMatch(CXlOper& result, bool caseSensitive, const CXlArgument& regExp,
                          const CXlArgument& lookupTable, const CXlArgument& notFound, const CXlArgument& lookupColumns,
                          const CXlArgument& memTypeName) {
  LookUp(result, {regExp, lookupTable, nullptr, lookupColumns, &memTypeName}, &notFound, caseSensitive);
}

void Functions::RgxAMatches(CXlOper& result, bool caseSensitive, const CXlArgument& regExp,
                            const CXlArgument& lookupTable, const CXlArgument& lookupColumns) {
  LookUp(result, {regExp, lookupTable, nullptr, lookupColumns, nullptr, wanted_match::kAll}, nullptr, caseSensitive);
}

void Functions::RgxAMatchNth(CXlOper& result, bool caseSensitive, const CXlArgument& regExp,
                             const CXlArgument& lookupTable, const CXlArgument& notFound,
                             const CXlArgument& lookupColumns,
                             const CXlScalarArgument<ElementKind::kInteger>& position) {
  LookUp(result, {regExp, lookupTable, nullptr, lookupColumns, nullptr, position.Read()}, &notFound, caseSensitive);
}

}  // namespace quillmere::lookup
