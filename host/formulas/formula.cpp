#include "host/formulas/formula.h"

#include <utility>

#include "host/formulas/area_scan.h"
#include "host/formulas/formula_node.h"
#include "host/formulas/formula_parser.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"

namespace qcalc {

const FormulaNode& Formula::Root() const { return *tree_->root; }

std::string Formula::Text() const {
  if (shift_ == CellShift{}) return tree_->text;
  std::string text;
  ScanAreas(
      tree_->text, [&](std::string_view between) { text += between; },
      [&](const AreaText& area) { text += AreaToText(area, shift_); });
  return text;
}

Parsed<Formula> ParseFormula(std::string_view text, FormulaDialect dialect) {
  using Kind = FormulaNode::Kind;
  try {
    FormulaTree tree{std::string(text), FormulaParser(text, dialect).ParseWhole(), {}, {}};
    VisitNodes(*tree.root, [&](const FormulaNode& node) {
      if (node.kind == Kind::kReference || node.kind == Kind::kTable || node.kind == Kind::kName ||
          node.kind == Kind::kRange)
        tree.reads.push_back(&node);
      if (node.kind == Kind::kCall) tree.calls.push_back(&node);
    });
    return Formula(std::make_shared<const FormulaTree>(std::move(tree)));
  } catch (SyntaxError& error) {
    return std::move(error);
  }
}

Formula RefusedFormula(std::string_view text, std::string_view reason) {
  auto root = std::make_unique<FormulaNode>();
  root->kind = FormulaNode::Kind::kRefused;
  root->constant = Value::Text(FromUtf8(reason).value_or(XString()));
  return Formula(std::make_shared<const FormulaTree>(FormulaTree{std::string(text), std::move(root), {}, {}}));
}

std::vector<ReferenceText> ReferencesIn(const Formula& formula) {
  std::vector<ReferenceText> references;
  for (const FormulaNode* node : formula.Tree().reads)
    if (node->kind == FormulaNode::Kind::kReference) {
      references.push_back(node->reference);
      static_cast<AreaText&>(references.back()) = node->reference.Moved(formula.Shift());
    }
  return references;
}

std::vector<XString> NamesIn(const Formula& formula) {
  std::vector<XString> names;
  for (const FormulaNode* node : formula.Tree().reads)
    if (node->kind == FormulaNode::Kind::kName) names.push_back(FoldCase(node->name));
  return names;
}

}  // namespace qcalc
