// The distinct functions: how many distinct items a range holds.
//
// Serves COUNTDISTINCTS, COUNTDUPES.
#include <numeric>

#include "implementations/sort.h"
#include "sort/distinct_arguments.h"

namespace quillmere::sort {
namespace {

using IntegerArgument = CXlScalarArgument<ElementKind::kInteger>;
using BooleanArgument = CXlScalarArgument<ElementKind::kBoolean>;

}  // namespace

void Functions::CountDistincts(CXlOper& result, bool countsRepeats, const CXlArgument& inputData,
                               const IntegerArgument& ignore, const BooleanArgument& byRows,
                               const BooleanArgument& caseSense) {
  DistinctInput input(inputData);
  const IgnoredItems ignored = ReadIgnored(ignore);
  const bool areRows = byRows.Read();
  const TextCase textCase = ReadTextCase(caseSense);
  const DistinctItems found = FindDistinctItems(input.ReadItems(areRows), textCase, ignored, nullptr);
  const auto distinct = static_cast<std::int64_t>(found.counts.size());
  const std::int64_t all = std::accumulate(found.counts.begin(), found.counts.end(), std::int64_t{0});
  result.SetNumber(static_cast<double>(countsRepeats ? all - distinct : distinct));
}

}  // namespace quillmere::sort
