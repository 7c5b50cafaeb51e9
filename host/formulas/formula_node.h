// The nodes of a parsed formula.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/formulas/formula.h"
#include "host/formulas/reference_text.h"
#include "host/formulas/table_reference.h"
#include "host/values/value.h"

namespace qcalc {

enum class FormulaOperator {
  kNegate,
  kPlus,
  kPercent,
  kPower,
  kMultiply,
  kDivide,
  kAdd,
  kSubtract,
  kConcatenate,
  kEqual,
  kNotEqual,
  kLess,
  kLessOrEqual,
  kGreater,
  kGreaterOrEqual,
};

/// Whose function a call means: books say so before the name.
enum class FunctionOwner {
  kAny,    ///< Excel's where it has one of that name that the host offers, else the add-in's
  kAddin,  ///< `_xll.`
  kExcel,  ///< `_xlfn.`, `_xlws.`
};

/// One node; never changed once parsed.
struct FormulaNode {
  enum class Kind {
    kConstant,      ///< `constant`, a missing argument too
    kReference,     ///< `reference`
    kTable,         ///< `table`
    kName,          ///< `name`, as written; of `reference` book and sheet, where they stand before it
    kCall,          ///< `name`, without what says whose it is, with `children` as arguments
    kUnary,         ///< `op` on one child
    kBinary,        ///< `op` on two children; chains lean to the left
    kUnion,         ///< two or more children that are references
    kRange,         ///< two children that are references: the rectangle around both
    kIntersection,  ///< two children that are references: the cells that both have
    kSpill,         ///< one child that is a reference to a cell: the cells that its result fills
    kSingle,        ///< one child: the one value of it that is in line with the calling cell
    kRefused,       ///< a whole formula that has no meaning here: `constant` is a text that says why
  };

  Kind kind = Kind::kConstant;
  FormulaOperator op = FormulaOperator::kPlus;
  FunctionOwner owner = FunctionOwner::kAny;
  int column = 1;  ///< 1-based byte of its first character
  Value constant;
  ReferenceText reference;
  std::unique_ptr<const TableReference> table;
  XString name;
  std::vector<std::unique_ptr<FormulaNode>> children;

  FormulaNode() = default;
  FormulaNode(const FormulaNode&) = delete;
  FormulaNode& operator=(const FormulaNode&) = delete;
  /// Takes the tree down node by node: a long chain of operators must not take the stack with it.
  ~FormulaNode() {
    while (!children.empty()) {
      const std::unique_ptr<FormulaNode> last = std::move(children.back());
      children.pop_back();
      for (auto& grandchild : last->children) children.push_back(std::move(grandchild));
      last->children.clear();
    }
  }
};

/// What formulas that differ only by their place share.
struct FormulaTree {
  std::string text;  ///< UTF-8, of the first of them
  std::unique_ptr<const FormulaNode> root;
  /// The nodes that say which cells are read: references, tables, names, and ranges, whose ends are there too.
  std::vector<const FormulaNode*> reads;
  /// The nodes that call a function.
  std::vector<const FormulaNode*> calls;
};

/// Calls `visitor(const FormulaNode&)` for every node, a parent before its children, children from left to right; does
/// not recurse, so that long chains of operators take no stack.
template <typename Visitor>
void VisitNodes(const FormulaNode& root, Visitor&& visitor) {
  std::vector<const FormulaNode*> open{&root};
  while (!open.empty()) {
    const FormulaNode* node = open.back();
    open.pop_back();
    visitor(*node);
    for (auto child = node->children.rbegin(); child != node->children.rend(); ++child) open.push_back(child->get());
  }
}

}  // namespace qcalc
