#include "host/formulas/formula.h"

#include <utility>

#include "host/formulas/formula_node.h"
#include "host/formulas/formula_parser.h"
#include "host/text/letter_case.h"

namespace qcalc {

Parsed<Formula> ParseFormula(std::string_view text) {
  try {
    return Formula(FormulaParser(text).ParseWhole(), std::string(text));
  } catch (SyntaxError& error) {
    return std::move(error);
  }
}

std::vector<ReferenceText> ReferencesIn(const Formula& formula) {
  std::vector<ReferenceText> references;
  VisitNodes(formula.Root(), [&](const FormulaNode& node) {
    if (node.kind == FormulaNode::Kind::kReference) references.push_back(node.reference);
  });
  return references;
}

std::vector<XString> NamesIn(const Formula& formula) {
  std::vector<XString> names;
  VisitNodes(formula.Root(), [&](const FormulaNode& node) {
    if (node.kind == FormulaNode::Kind::kName) names.push_back(FoldCase(node.name));
  });
  return names;
}

}  // namespace qcalc
