// The lookup functions: values or row positions; of the first match, of the n-th, or of all.
//
// Serves AVLOOKUP2, AVLOOKUPS2, AVLOOKUPNTH, AMATCH2, AMATCHES2, AMATCHNTH, Case.AVLOOKUP2, Case.AVLOOKUPS2,
// Case.AVLOOKUPNTH, Case.AMATCH2, Case.AMATCHES2, Case.AMATCHNTH.
#include "frame/convert/argument.h"
#include "implementations/lookup.h"
#include "lookup/array_search.h"
#include "lookup/lookup_arguments.h"
#include "lookup/lookup_keys.h"
#include "lookup/lookup_result.h"
#include "lookup/reference_search.h"

namespace quillmere::lookup {
namespace {

/// The optional arguments that say how a match is looked for.
struct MatchArguments {
  const CXlArgument& sorted;
  const CXlArgument& exactMatch;
  bool caseSensitive;
};

CXlOper LookUp(const LookupArguments& arguments, const MatchArguments& match) {
  const MatchRules rules = ReadMatchRules(match.sorted.Value(), match.exactMatch.Value(), match.caseSensitive);
  const LookupPlan plan = ReadLookup(arguments);
  const LookupKeys keys(plan.keys, match.caseSensitive);
  if (!plan.data.IsReference()) return BuildLookupResult(plan, SearchArray(plan, keys, rules), rules.notFound);
  if (IsPlainVlookup(plan, keys, rules)) return CallVlookup(plan, keys, rules);
  return BuildLookupResult(plan, SearchReference(plan, keys, rules), rules.notFound);
}

}  // namespace

void Functions::AvLookup(CXlOper& result, bool caseSensitive, const CXlArgument& lookupValues,
                         const CXlArgument& lookupTable, const CXlArgument& answerColumns, const CXlArgument& sorted,
                         const CXlArgument& exactMatch, const CXlArgument& lookupColumns,
                         const CXlArgument& memTypeName) {
  result = LookUp({lookupValues, lookupTable, &answerColumns, lookupColumns, &memTypeName},
                  {sorted, exactMatch, caseSensitive});
}

void Functions::AvLookups(CXlOper& result, bool caseSensitive, const CXlArgument& lookupValues,
                          const CXlArgument& lookupTable, const CXlArgument& answerColumns, const CXlArgument& sorted,
                          const CXlArgument& exactMatch, const CXlArgument& lookupColumns) {
  result = LookUp({lookupValues, lookupTable, &answerColumns, lookupColumns, nullptr, wanted_match::kAll},
                  {sorted, exactMatch, caseSensitive});
}

void Functions::AvLookupNth(CXlOper& result, bool caseSensitive, const CXlArgument& lookupValues,
                            const CXlArgument& lookupTable, const CXlArgument& answerColumns, const CXlArgument& sorted,
                            const CXlArgument& exactMatch, const CXlArgument& lookupColumns,
                            const CXlScalarArgument<ElementKind::kInteger>& position) {
  result = LookUp({lookupValues, lookupTable, &answerColumns, lookupColumns, nullptr, position.Read()},
                  {sorted, exactMatch, caseSensitive});
}

void Functions::AMatch(CXlOper& result, bool caseSensitive, const CXlArgument& lookupValues,
                       const CXlArgument& lookupTable, const CXlArgument& sorted, const CXlArgument& exactMatch,
                       const CXlArgument& lookupColumns, const CXlArgument& memTypeName) {
  result =
      LookUp({lookupValues, lookupTable, nullptr, lookupColumns, &memTypeName}, {sorted, exactMatch, caseSensitive});
}

void Functions::AMatches(CXlOper& result, bool caseSensitive, const CXlArgument& lookupValues,
                         const CXlArgument& lookupTable, const CXlArgument& sorted, const CXlArgument& exactMatch,
                         const CXlArgument& lookupColumns) {
  result = LookUp({lookupValues, lookupTable, nullptr, lookupColumns, nullptr, wanted_match::kAll},
                  {sorted, exactMatch, caseSensitive});
}

void Functions::AMatchNth(CXlOper& result, bool caseSensitive, const CXlArgument& lookupValues,
                          const CXlArgument& lookupTable, const CXlArgument& sorted, const CXlArgument& exactMatch,
                          const CXlArgument& lookupColumns, const CXlScalarArgument<ElementKind::kInteger>& position) {
  result = LookUp({lookupValues, lookupTable, nullptr, lookupColumns, nullptr, position.Read()},
                  {sorted, exactMatch, caseSensitive});
}

}  // namespace quillmere::lookup
