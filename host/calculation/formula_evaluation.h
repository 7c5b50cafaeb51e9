// One evaluation of a formula, node by node.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/calculation/builtins/builtin.h"
#include "host/calculation/evaluator.h"
#include "host/formulas/formula_node.h"

namespace qcalc {

/// Functions of which only the branch that is taken is calculated.
enum class BranchingFunction { kNone, kIf, kIfError, kIfNa, kChoose };

/// The one of that name, in any case.
BranchingFunction FindBranchingFunction(XStringView name);

/// Evaluates nodes in one context; nesting in formulas and in names that they use is the only recursion.
class FormulaEvaluation {
 public:
  /// All outlive it; `unknown` may be null.
  FormulaEvaluation(const Formula& formula, const EvaluationContext& context, UnknownNames* unknown = nullptr)
      : context_(context),
        unknown_(unknown),
        shift_(formula.Shift()),
        isSingle_(context.form == FormulaForm::kSingle) {}

  /// The formula's result: of the form kSingle one value, or a reference to one cell.
  Value Result(const FormulaNode& root);

  /// The add-in's function that the node calls; null when it calls none.
  const AddinFunction* FindAddinFunction(const FormulaNode& node) const;
  /// The call, its operands evaluated.
  PreparedCall Prepare(const FormulaNode& node, const AddinFunction& function);

 private:
  Value Evaluate(const FormulaNode& node);
  Value EvaluateByKind(const FormulaNode& node);
  Value EvaluateReference(const ReferenceText& text) const;
  Value EvaluateTable(const TableReference& reference) const;
  Value EvaluateName(const FormulaNode& node);
  Value EvaluateFormulaOfName(const Formula& formula);
  Value EvaluateChain(const FormulaNode& node);
  Value EvaluateCombined(const FormulaNode& node);
  Value EvaluateIntersection(const FormulaNode& node);
  Value EvaluateSpill(const FormulaNode& node);

  Value EvaluateCall(const FormulaNode& node);
  Value CallBuiltinNode(const FormulaNode& node, const Builtin& builtin);
  Value EvaluateBranch(const FormulaNode& call, std::size_t index);
  Value EvaluateIf(const FormulaNode& node);
  Value EvaluateIfError(const FormulaNode& node, bool onlyNa);
  Value EvaluateChoose(const FormulaNode& node);

  /// The node's value, what a reference holds instead of it: of several cells, where one value is wanted, the one in
  /// line with the calling cell.
  Value EvaluateHeld(const FormulaNode& node);
  Value Hold(Value value) const;
  Value ReadArea(const Sheet& sheet, Area area) const;
  Value ReadWhole(const Sheet& sheet, const Area& area) const;
  /// What is in line with the calling cell: a reference to one cell, or #VALUE!.
  Value CutReference(const Reference& reference) const;
  std::optional<Area> CellInLine(const Area& area) const;
  std::optional<CellPosition> CallingCell() const;
  const Sheet* FindSheet(const ReferenceText& text) const;
  void Note(UnknownNames::Kind kind, XStringView name) const;

  const EvaluationContext& context_;
  UnknownNames* unknown_;
  CellShift shift_;
  bool isSingle_;  ///< whether one value is wanted where a range has several
  int depth_ = 0;
  int namesEvaluated_ = 0;
  std::vector<const Formula*> openNames_;
};

/// Sets a variable for as long as it lives.
template <typename T>
class Temporarily {
 public:
  Temporarily(T& variable, T value) : variable_(variable), before_(std::exchange(variable, value)) {}
  ~Temporarily() { variable_ = before_; }
  Temporarily(const Temporarily&) = delete;
  Temporarily& operator=(const Temporarily&) = delete;

 private:
  T& variable_;
  T before_;
};

}  // namespace qcalc
