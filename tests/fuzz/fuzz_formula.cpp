// Any text as a formula: it is read or refused, and what was read can be walked.
#include <cstdint>
#include <cstdlib>

#include "host/formulas/formula.h"
#include "host/formulas/formula_node.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto formula = qcalc::ParseFormula({reinterpret_cast<const char*>(data), size});
  if (!formula) return formula.Error().message.empty() ? (std::abort(), 0) : 0;
  int nodes = 0;
  qcalc::VisitNodes(formula->Root(), [&](const qcalc::FormulaNode&) { ++nodes; });
  if (nodes == 0) std::abort();
  qcalc::NamesIn(*formula);
  qcalc::ReferencesIn(*formula);
  return 0;
}
