#include "host/formulas/formula_parser.h"

#include <optional>
#include <span>
#include <string>
#include <utility>

#include "host/formulas/reference_text.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"
#include "host/values/constant_parser.h"

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

// Counts nesting for as long as it lives.
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
  if (cursor_.Peek() != '-' && cursor_.Peek() != '+') return ParseRange();
  const DepthGuard guard(depth_, cursor_);
  NodePtr node = NewNode(FormulaNode::Kind::kUnary);
  node->op = cursor_.Peek() == '-' ? FormulaOperator::kNegate : FormulaOperator::kPlus;
  cursor_.Advance();
  node->children.push_back(ParseUnary());
  return node;
}

FormulaParser::NodePtr FormulaParser::ParseRange() {
  NodePtr first = ParsePrimary();
  cursor_.SkipBlanks();
  while (cursor_.Peek() == ':') {
    CountPostfixOperator();
    NodePtr node = NewNode(FormulaNode::Kind::kRange);
    cursor_.Advance();
    cursor_.SkipBlanks();
    node->children.push_back(std::move(first));
    node->children.push_back(ParsePrimary());
    cursor_.SkipBlanks();
    first = std::move(node);
  }
  return first;
}

FormulaParser::NodePtr FormulaParser::ParsePrimary() {
  const std::size_t start = cursor_.Position();
  switch (cursor_.Peek()) {
    case '"':
      return NewConstant(start, Value::Text(ReadText(cursor_)));
    case '#':
      return NewConstant(start, Value::Error(ReadError(cursor_)));
    case '{':
      return NewConstant(start, Value::OfArray(ReadArrayConstant(cursor_)));
    case '(':
      return ParseParentheses();
    default:
      break;
  }
  if (cursor_.Peek() == '!' || cursor_.Peek() == '\'' || cursor_.Peek() == '[') return ParseQualified();
  if (IsNumberAhead(cursor_)) {
    NodePtr node = NewNode(FormulaNode::Kind::kReference);
    if (const auto rows = TakeArea(cursor_)) {
      node->reference.area = *rows;
      return node;
    }
    return NewConstant(start, Value::Number(ReadNumber(cursor_)));
  }
  if (cursor_.Peek() != '$' && !IsNameByte(cursor_.Peek()))
    cursor_.FailExpecting("a value, a reference, a function or '('");
  return ParseWord();
}

FormulaParser::NodePtr FormulaParser::ParseParentheses() {
  const DepthGuard guard(depth_, cursor_);
  NodePtr node = NewNode(FormulaNode::Kind::kUnion);
  cursor_.Advance();
  node->children.push_back(ParseExpression());
  while (cursor_.Accept(',')) node->children.push_back(ParseExpression());
  if (!cursor_.Accept(')')) cursor_.FailExpecting("')' or an operator");
  if (node->children.size() > 1) return node;
  NodePtr only = std::move(node->children[0]);
  node->children.clear();
  return only;
}

FormulaParser::NodePtr FormulaParser::ParseQualified() {
  NodePtr node = NewNode(FormulaNode::Kind::kReference);
  auto prefix = TakeSheetPrefix(cursor_);
  if (!prefix) cursor_.FailExpecting("a sheet's name and '!'");
  if (const auto area = TakeArea(cursor_)) {
    node->reference = {std::move(prefix->book), std::move(prefix->sheet), *area};
    return node;
  }
  const std::size_t start = cursor_.Position();
  if (!prefix->sheet.empty() || !IsNameByte(cursor_.Peek())) cursor_.FailExpecting("a reference after '!'");
  while (!cursor_.AtEnd() && IsNameByte(cursor_.Peek())) cursor_.Advance();
  node->kind = FormulaNode::Kind::kName;
  node->name = DecodeName(start);
  return node;
}

FormulaParser::NodePtr FormulaParser::ParseWord() {
  const std::size_t start = cursor_.Position();
  NodePtr node = NewNode(FormulaNode::Kind::kName);
  while (!cursor_.AtEnd() && (IsNameByte(cursor_.Peek()) || cursor_.Peek() == '$')) cursor_.Advance();
  const std::string_view word = cursor_.Slice(start);
  if (cursor_.Peek() == '(' && word.find('$') == std::string_view::npos) {
    node->kind = FormulaNode::Kind::kCall;
    node->name = DecodeName(start);
    return ParseCall(std::move(node));
  }
  if (cursor_.Peek() == '!') {
    cursor_.MoveTo(start);
    return ParseQualified();
  }
  if (EqualsIgnoringCase(word, "true") || EqualsIgnoringCase(word, "false"))
    return NewConstant(start, Value::Boolean(EqualsIgnoringCase(word, "true")));
  if (EqualsIgnoringCase(word, "empty")) return NewConstant(start, Value::Empty());
  const std::size_t end = cursor_.Position();
  cursor_.MoveTo(start);
  if (const auto area = TakeArea(cursor_)) {
    node->kind = FormulaNode::Kind::kReference;
    node->reference.area = *area;
    return node;
  }
  if (word.find('$') != std::string_view::npos) cursor_.FailExpecting("a reference");
  cursor_.MoveTo(end);
  node->name = DecodeName(start);
  return node;
}

FormulaParser::NodePtr FormulaParser::ParseCall(NodePtr node) {
  const DepthGuard guard(depth_, cursor_);
  cursor_.Advance();
  cursor_.SkipBlanks();
  if (cursor_.Accept(')')) return node;
  for (;;) {
    node->children.push_back(ParseArgument());
    if (node->children.size() > kXlMaxArguments)
      cursor_.Fail("expected at most " + std::to_string(kXlMaxArguments) + " arguments, found more");
    if (cursor_.Accept(',')) continue;
    if (!cursor_.Accept(')')) cursor_.FailExpecting("',' or ')' after an argument of " + ToUtf8(node->name));
    return node;
  }
}

FormulaParser::NodePtr FormulaParser::ParseArgument() {
  cursor_.SkipBlanks();
  if (cursor_.Peek() == ',' || cursor_.Peek() == ')') return NewConstant(cursor_.Position(), Value::Missing());
  return ParseExpression();
}

}  // namespace qcalc
