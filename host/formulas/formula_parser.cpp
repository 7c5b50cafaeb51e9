#include "host/formulas/formula_parser.h"

#include <optional>
#include <span>
#include <string>
#include <utility>

#include "host/formulas/reference_text.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"
#include "host/values/constant_parser.h"
#include "host/values/literal.h"

namespace qcalc {

namespace {

// Chains of operators grow the tree to the left without nesting in the text. Evaluation walks chains of binary
// operators without recursion; of the others there may be as many as levels of nesting.
constexpr int kMaxOperators = 10'000;
constexpr int kMaxPostfixOperators = kMaxFormulaDepth;

struct OperatorSign {
  std::string_view sign;
  FormulaOperator op;
};

constexpr OperatorSign kComparisons[] = {
    {"<>", FormulaOperator::kNotEqual}, {"<=", FormulaOperator::kLessOrEqual}, {">=", FormulaOperator::kGreaterOrEqual},
    {"=", FormulaOperator::kEqual},     {"<", FormulaOperator::kLess},         {">", FormulaOperator::kGreater}};
constexpr OperatorSign kConcatenation[] = {{"&", FormulaOperator::kConcatenate}};
constexpr OperatorSign kSums[] = {{"+", FormulaOperator::kAdd}, {"-", FormulaOperator::kSubtract}};
constexpr OperatorSign kProducts[] = {{"*", FormulaOperator::kMultiply}, {"/", FormulaOperator::kDivide}};
constexpr OperatorSign kPowers[] = {{"^", FormulaOperator::kPower}};

// Weakest first; all of them group from the left. Percent and the signs bind more strongly.
constexpr std::span<const OperatorSign> kLevels[] = {kComparisons, kConcatenation, kSums, kProducts, kPowers};

std::optional<FormulaOperator> TakeOperator(TextCursor& cursor, std::span<const OperatorSign> signs) {
  for (const OperatorSign& candidate : signs)
    if (cursor.Rest().starts_with(candidate.sign)) {
      cursor.Advance(candidate.sign.size());
      return candidate.op;
    }
  return std::nullopt;
}

bool IsQualified(const FormulaNode& node) { return !node.reference.sheet.empty() || !node.reference.book.empty(); }

bool MayBeReference(const FormulaNode& node) {
  if (node.kind == FormulaNode::Kind::kConstant) return node.constant.IsError();
  return node.kind != FormulaNode::Kind::kUnary && node.kind != FormulaNode::Kind::kBinary;
}

}  // namespace

std::unique_ptr<FormulaNode> FormulaParser::ParseWhole() {
  cursor_.SkipBlanks();
  cursor_.Accept('=');
  NodePtr root = ParseExpression();
  if (!cursor_.AtEnd()) cursor_.FailExpecting("an operator or the end of the formula");
  return root;
}

FormulaParser::NodePtr FormulaParser::NewNode(FormulaNode::Kind kind) const {
  auto node = std::make_unique<FormulaNode>();
  node->kind = kind;
  node->column = static_cast<int>(cursor_.Position()) + 1;
  return node;
}

FormulaParser::NodePtr FormulaParser::NewConstant(std::size_t start, Value value) const {
  NodePtr node = NewNode(FormulaNode::Kind::kConstant);
  node->column = static_cast<int>(start) + 1;
  node->constant = std::move(value);
  return node;
}

XString FormulaParser::DecodeName(std::size_t start) const {
  auto name = FromUtf8(cursor_.Slice(start));
  if (!name) cursor_.FailAt(start, "expected UTF-8 in this name");
  return *std::move(name);
}

FormulaParser::NodePtr FormulaParser::ParseBinary(std::size_t level) {
  if (level == std::size(kLevels)) return ParsePercent();
  NodePtr left = ParseBinary(level + 1);
  for (;;) {
    const std::size_t start = cursor_.Position();
    const auto op = TakeOperator(cursor_, kLevels[level]);
    if (!op) return left;
    if (++operators_ > kMaxOperators)
      cursor_.FailAt(start, "expected at most " + std::to_string(kMaxOperators) + " operators, found more");
    NodePtr node = NewNode(FormulaNode::Kind::kBinary);
    node->op = *op;
    node->column = static_cast<int>(start) + 1;
    node->children.push_back(std::move(left));
    node->children.push_back(ParseBinary(level + 1));
    left = std::move(node);
  }
}

void FormulaParser::CountPostfixOperator() {
  if (++postfixOperators_ > kMaxPostfixOperators)
    cursor_.Fail("expected at most " + std::to_string(kMaxPostfixOperators) + " operators '%' and ':', found more");
}

FormulaParser::NodePtr FormulaParser::ParsePercent() {
  NodePtr operand = ParseUnary();
  cursor_.SkipBlanks();
  while (cursor_.Peek() == '%') {
    CountPostfixOperator();
    NodePtr node = NewNode(FormulaNode::Kind::kUnary);
    cursor_.Advance();
    cursor_.SkipBlanks();
    node->op = FormulaOperator::kPercent;
    node->children.push_back(std::move(operand));
    operand = std::move(node);
  }
  return operand;
}

FormulaParser::NodePtr FormulaParser::ParseUnary() {
  cursor_.SkipBlanks();
  if (cursor_.Peek() != '-' && cursor_.Peek() != '+') return ParseIntersection();
  const DepthGuard guard(depth_, cursor_);
  NodePtr node = NewNode(FormulaNode::Kind::kUnary);
  node->op = cursor_.Peek() == '-' ? FormulaOperator::kNegate : FormulaOperator::kPlus;
  cursor_.Advance();
  node->children.push_back(ParseUnary());
  return node;
}

// Whether what stands behind the blanks is a second operand of the operator that they then are.
bool FormulaParser::IsIntersectionAhead(const FormulaNode& left) {
  const std::size_t here = cursor_.Position();
  if (!MayBeReference(left) || here == 0 || cursor_.AtEnd()) return false;
  cursor_.MoveTo(here - 1);
  const bool isBehindBlank = std::string_view(" \t\n\r").find(cursor_.Peek()) != std::string_view::npos;
  cursor_.MoveTo(here);
  // A blank between a function's name and its arguments is a slip of the pen.
  if (!isBehindBlank || (left.kind == FormulaNode::Kind::kName && cursor_.Peek() == '(')) return false;
  if (IsDigit(cursor_.Peek())) {
    const bool isRows = TakeArea(cursor_).has_value();
    cursor_.MoveTo(here);
    return isRows;
  }
  return IsNameByte(cursor_.Peek()) || std::string_view("$'(!#[").find(cursor_.Peek()) != std::string_view::npos;
}

FormulaParser::NodePtr FormulaParser::ParseIntersection() {
  if (cursor_.Peek() == '@') {
    const DepthGuard guard(depth_, cursor_);
    NodePtr node = NewNode(FormulaNode::Kind::kSingle);
    cursor_.Advance();
    cursor_.SkipBlanks();
    node->children.push_back(ParseIntersection());
    return node;
  }
  NodePtr left = ParseRange();
  while (IsIntersectionAhead(*left)) {
    CountPostfixOperator();
    const std::size_t start = cursor_.Position();
    NodePtr node = NewNode(FormulaNode::Kind::kIntersection);
    node->children.push_back(std::move(left));
    node->children.push_back(ParseRange());
    if (!MayBeReference(*node->children[1])) {
      cursor_.MoveTo(start);
      cursor_.FailExpecting("an operator or the end of the formula");
    }
    left = std::move(node);
  }
  return left;
}

FormulaParser::NodePtr FormulaParser::ParseRange() {
  const std::size_t start = cursor_.Position();
  NodePtr first = ParseOperand();
  cursor_.SkipBlanks();
  while (cursor_.Peek() == ':') {
    CountPostfixOperator();
    NodePtr node = NewNode(FormulaNode::Kind::kRange);
    cursor_.Advance();
    cursor_.SkipBlanks();
    node->children.push_back(std::move(first));
    node->children.push_back(ParseOperand());
    // `Sheet1:Sheet3!A1` names the cell of several sheets, which no other operand of a range can be.
    const FormulaNode &left = *node->children[0], &right = *node->children[1];
    if (left.kind != FormulaNode::Kind::kCall && left.children.empty() && !IsQualified(left) && IsQualified(right))
      cursor_.FailAt(start, "expected cells of one sheet, found a span of sheets");
    cursor_.SkipBlanks();
    first = std::move(node);
  }
  return first;
}

FormulaParser::NodePtr FormulaParser::ParseOperand() {
  NodePtr operand = ParsePrimary();
  while (cursor_.Peek() == '#' && MayBeReference(*operand)) {
    CountPostfixOperator();
    NodePtr node = NewNode(FormulaNode::Kind::kSpill);
    cursor_.Advance();
    node->children.push_back(std::move(operand));
    operand = std::move(node);
  }
  return operand;
}

}  // namespace qcalc
