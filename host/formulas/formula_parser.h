// The parser of formulas: recursive descent over Excel's precedence.
#pragma once

#include <memory>

#include "host/formulas/formula_node.h"
#include "host/text/text_cursor.h"

namespace qcalc {

/// Reads formulas at a cursor; every fault is thrown as SyntaxError.
class FormulaParser {
 public:
  explicit FormulaParser(std::string_view text) : cursor_(text) {}

  /// A whole formula, its equals sign optional.
  std::unique_ptr<FormulaNode> ParseWhole();

 private:
  using NodePtr = std::unique_ptr<FormulaNode>;

  NodePtr ParseExpression() { return ParseBinary(0); }
  NodePtr ParseBinary(std::size_t level);
  NodePtr ParsePercent();
  NodePtr ParseUnary();
  NodePtr ParseRange();
  NodePtr ParsePrimary();
  NodePtr ParseParentheses();
  NodePtr ParseWord();
  NodePtr ParseCall(NodePtr node);
  NodePtr ParseArgument();
  NodePtr ParseQualified();

  NodePtr NewNode(FormulaNode::Kind kind) const;
  NodePtr NewConstant(std::size_t start, Value value) const;
  void CountPostfixOperator();
  XString DecodeName(std::size_t start) const;

  TextCursor cursor_;
  int depth_ = 0;
  int operators_ = 0;
  int postfixOperators_ = 0;
};

}  // namespace qcalc
