// The parser of formulas: recursive descent over Excel's precedence.
#pragma once

#include <memory>
#include <string>

#include "host/formulas/formula_node.h"
#include "host/text/text_cursor.h"

namespace qcalc {

/// Counts nesting for as long as it lives; throws SyntaxError where it goes too deep.
class DepthGuard {
 public:
  DepthGuard(int& depth, const TextCursor& cursor) : depth_(depth) {
    if (depth_ >= kMaxFormulaDepth)
      cursor.Fail("expected at most " + std::to_string(kMaxFormulaDepth) + " levels of nesting, found more");
    ++depth_;
  }
  ~DepthGuard() { --depth_; }
  DepthGuard(const DepthGuard&) = delete;
  DepthGuard& operator=(const DepthGuard&) = delete;

 private:
  int& depth_;
};

/// Reads formulas at a cursor; every fault is thrown as SyntaxError.
class FormulaParser {
 public:
  FormulaParser(std::string_view text, FormulaDialect dialect)
      : cursor_(text), isBook_(dialect == FormulaDialect::kBook) {}

  /// A whole formula, its equals sign optional.
  std::unique_ptr<FormulaNode> ParseWhole();

 private:
  using NodePtr = std::unique_ptr<FormulaNode>;

  NodePtr ParseExpression() { return ParseBinary(0); }
  NodePtr ParseBinary(std::size_t level);
  NodePtr ParsePercent();
  NodePtr ParseUnary();
  NodePtr ParseIntersection();
  NodePtr ParseRange();
  NodePtr ParseOperand();
  NodePtr ParsePrimary();
  NodePtr ParseError();
  NodePtr ParseNumber();
  NodePtr ParseParentheses();
  NodePtr ParseWord();
  NodePtr ParseCall(std::size_t start);
  void ParseArguments(FormulaNode& call);
  NodePtr ParseArgument();
  NodePtr ParseQualified();
  SheetPrefix ParsePrefix();
  bool IsIntersectionAhead(const FormulaNode& left);

  NodePtr NewNode(FormulaNode::Kind kind) const;
  NodePtr NewConstant(std::size_t start, Value value) const;
  void CountPostfixOperator();
  XString DecodeName(std::size_t start) const;

  TextCursor cursor_;
  const bool isBook_;
  int depth_ = 0;
  int operators_ = 0;
  int postfixOperators_ = 0;
};

}  // namespace qcalc
