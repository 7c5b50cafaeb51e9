// The lookup functions: values or row positions; of the first match, of the n-th, or of all.
#include "frame/convert/convert_scalar.h"
#include "implementations/lookup.h"
#include "lookup/array_search.h"
#include "lookup/lookup_arguments.h"
#include "lookup/lookup_keys.h"
#include "lookup/lookup_result.h"
#include "lookup/reference_search.h"

namespace quillmere {
namespace {

CXlOper LookUp(const LookupArguments& arguments, const CXlOper& sorted, const CXlOper& exactMatch, bool caseSensitive) {
  const MatchRules rules = ReadMatchRules(sorted, exactMatch, caseSensitive);
  const LookupPlan plan = ReadLookup(arguments);
  const LookupKeys keys(plan.keys, caseSensitive);
  if (!plan.data.IsReference()) return BuildLookupResult(plan, SearchArray(plan, keys, rules), rules.notFound);
  if (IsPlainVlookup(plan, keys, rules)) return CallVlookup(plan, keys, rules);
  return BuildLookupResult(plan, SearchReference(plan, keys, rules), rules.notFound);
}

std::int32_t ReadPosition(const CXlOper& position) {
  using Position = CScalarConvertParams<ElementKind::kInteger>;
  return ConvertArgument(position, Position(XTEXT("Position")).Default(wanted_match::kDefault));
}

}  // namespace

void LookupFunctions::AvLookup(CXlOper& result, bool caseSensitive, const CXlOper& lookupValues,
                               const CXlOper& lookupTable, const CXlOper& answerColumns, const CXlOper& sorted,
                               const CXlOper& exactMatch, const CXlOper& lookupColumns, const CXlOper& memTypeName) {
  result = LookUp({lookupValues, lookupTable, &answerColumns, &lookupColumns, &memTypeName}, sorted, exactMatch,
                  caseSensitive);
}

void LookupFunctions::AvLookups(CXlOper& result, bool caseSensitive, const CXlOper& lookupValues,
                                const CXlOper& lookupTable, const CXlOper& answerColumns, const CXlOper& sorted,
                                const CXlOper& exactMatch, const CXlOper& lookupColumns) {
  result = LookUp({lookupValues, lookupTable, &answerColumns, &lookupColumns, nullptr, wanted_match::kAll}, sorted,
                  exactMatch, caseSensitive);
}

void LookupFunctions::AvLookupNth(CXlOper& result, bool caseSensitive, const CXlOper& lookupValues,
                                  const CXlOper& lookupTable, const CXlOper& answerColumns, const CXlOper& sorted,
                                  const CXlOper& exactMatch, const CXlOper& lookupColumns, const CXlOper& position) {
  result = LookUp({lookupValues, lookupTable, &answerColumns, &lookupColumns, nullptr, ReadPosition(position)}, sorted,
                  exactMatch, caseSensitive);
}

void LookupFunctions::AMatch(CXlOper& result, bool caseSensitive, const CXlOper& lookupValues,
                             const CXlOper& lookupTable, const CXlOper& sorted, const CXlOper& exactMatch,
                             const CXlOper& lookupColumns, const CXlOper& memTypeName) {
  result =
      LookUp({lookupValues, lookupTable, nullptr, &lookupColumns, &memTypeName}, sorted, exactMatch, caseSensitive);
}

void LookupFunctions::AMatches(CXlOper& result, bool caseSensitive, const CXlOper& lookupValues,
                               const CXlOper& lookupTable, const CXlOper& sorted, const CXlOper& exactMatch,
                               const CXlOper& lookupColumns) {
  result = LookUp({lookupValues, lookupTable, nullptr, &lookupColumns, nullptr, wanted_match::kAll}, sorted, exactMatch,
                  caseSensitive);
}

void LookupFunctions::AMatchNth(CXlOper& result, bool caseSensitive, const CXlOper& lookupValues,
                                const CXlOper& lookupTable, const CXlOper& sorted, const CXlOper& exactMatch,
                                const CXlOper& lookupColumns, const CXlOper& position) {
  result = LookUp({lookupValues, lookupTable, nullptr, &lookupColumns, nullptr, ReadPosition(position)}, sorted,
                  exactMatch, caseSensitive);
}

}  // namespace quillmere
