// The operands of formulas: constants, references, names and calls.
#include <string>
#include <utility>

#include "host/formulas/formula_parser.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"
#include "host/values/constant_parser.h"
#include "host/values/literal.h"

namespace qcalc {

namespace {

// What stands before the name of a function in a file and says whose it is; it is cut off. Newer functions of Excel's
// are written so, for versions that do not know them, and the functions of add-ins.
FunctionOwner TakeOwner(std::string_view& name) {
  constexpr std::pair<std::string_view, FunctionOwner> kMarks[] = {
      {"_xlfn.", FunctionOwner::kExcel}, {"_xlws.", FunctionOwner::kExcel}, {"_xll.", FunctionOwner::kAddin}};
  FunctionOwner owner = FunctionOwner::kAny;
  for (const auto& [mark, itsOwner] : kMarks)
    if (EqualsIgnoringCase(name.substr(0, mark.size()), mark)) {
      name.remove_prefix(mark.size());
      owner = itsOwner;
    }
  return owner;
}

// Files keep words that begin so for what users do not write themselves: parameters of LAMBDA, for one.
bool IsReserved(std::string_view word) { return EqualsIgnoringCase(word.substr(0, 3), "_xl"); }

// Functions that bind names to values.
bool BindsNames(std::string_view name) { return EqualsIgnoringCase(name, "let") || EqualsIgnoringCase(name, "lambda"); }

}  // namespace

FormulaParser::NodePtr FormulaParser::ParsePrimary() {
  const std::size_t start = cursor_.Position();
  switch (cursor_.Peek()) {
    case '"':
      return NewConstant(start, Value::Text(ReadText(cursor_)));
    case '#':
      return ParseError();
    case '{':
      return NewConstant(start, Value::OfArray(ReadArrayConstant(cursor_)));
    case '(':
      return ParseParentheses();
    default:
      break;
  }
  if (cursor_.Peek() == '!' || cursor_.Peek() == '\'' || cursor_.Peek() == '[') return ParseQualified();
  if (IsNumberAhead(cursor_)) return ParseNumber();
  if (cursor_.Peek() != '$' && !IsNameByte(cursor_.Peek()))
    cursor_.FailExpecting("a value, a reference, a function or '('");
  return ParseWord();
}

FormulaParser::NodePtr FormulaParser::ParseError() {
  const std::size_t start = cursor_.Position();
  const std::int32_t code = ReadError(cursor_);
  // Cells of a sheet that was deleted are written `#REF!A1`, or `#REF!#REF!` when they are gone too.
  if (code == xlerrRef && !TakeArea(cursor_)) {
    if (const auto again = MatchErrorName(cursor_.Rest()); again && again->code == xlerrRef)
      cursor_.Advance(again->length);
    while (IsNameByte(cursor_.Peek())) cursor_.Advance();
  }
  return NewConstant(start, Value::Error(code));
}

FormulaParser::NodePtr FormulaParser::ParseNumber() {
  const std::size_t start = cursor_.Position();
  NodePtr node = NewNode(FormulaNode::Kind::kReference);
  if (const auto rows = TakeArea(cursor_)) {
    static_cast<AreaText&>(node->reference) = *rows;
    return node;
  }
  return NewConstant(start, Value::Number(ReadNumber(cursor_)));
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

// In a file the book itself is [0], and others are numbered or stand with their folder.
SheetPrefix FormulaParser::ParsePrefix() {
  const std::size_t start = cursor_.Position();
  if (isBook_ && cursor_.Rest().starts_with("[0]!")) cursor_.Advance(3);
  auto prefix = TakeSheetPrefix(cursor_);
  if (!prefix) cursor_.FailExpecting("a sheet's name and '!'");
  if (prefix->sheet.find(XTEXT(':')) != XString::npos)
    cursor_.FailAt(start, "expected cells of one sheet, found a span of sheets");
  if (!isBook_) return *std::move(prefix);
  if (prefix->book == XTEXT("0")) prefix->book.clear();
  if (!prefix->book.empty() || prefix->sheet.find(XTEXT('[')) != XString::npos)
    cursor_.FailAt(start, "expected a sheet of the book itself, found another book");
  return *std::move(prefix);
}

FormulaParser::NodePtr FormulaParser::ParseQualified() {
  NodePtr node = NewNode(FormulaNode::Kind::kReference);
  SheetPrefix prefix = ParsePrefix();
  const std::size_t start = cursor_.Position();
  if (const auto error = MatchErrorName(cursor_.Rest()); error && error->code == xlerrRef) return ParseError();
  node->reference.book = std::move(prefix.book);
  node->reference.sheet = std::move(prefix.sheet);
  if (const auto area = TakeArea(cursor_)) {
    static_cast<AreaText&>(node->reference) = *area;
    return node;
  }
  if (!IsNameByte(cursor_.Peek()) || IsDigit(cursor_.Peek())) cursor_.FailExpecting("a reference after '!'");
  while (IsNameByte(cursor_.Peek())) cursor_.Advance();
  if (cursor_.Peek() == '(') cursor_.FailExpecting("a reference after '!'");
  node->kind = FormulaNode::Kind::kName;
  node->name = DecodeName(start);
  return node;
}

FormulaParser::NodePtr FormulaParser::ParseWord() {
  const std::size_t start = cursor_.Position();
  NodePtr node = NewNode(FormulaNode::Kind::kName);
  while (IsNameByte(cursor_.Peek()) || cursor_.Peek() == '$') cursor_.Advance();
  const std::string_view word = cursor_.Slice(start);
  if (cursor_.Peek() == '(' && word.find('$') == std::string_view::npos) return ParseCall(start);
  if (cursor_.Peek() == '!') {
    cursor_.MoveTo(start);
    return ParseQualified();
  }
  if (cursor_.Peek() == '[' && word.find('$') == std::string_view::npos) {
    node->kind = FormulaNode::Kind::kTable;
    node->table = std::make_unique<const TableReference>(TakeTableReference(cursor_, DecodeName(start)));
    return node;
  }
  if (EqualsIgnoringCase(word, "true") || EqualsIgnoringCase(word, "false"))
    return NewConstant(start, Value::Boolean(EqualsIgnoringCase(word, "true")));
  if (!isBook_ && EqualsIgnoringCase(word, "empty")) return NewConstant(start, Value::Empty());
  const std::size_t end = cursor_.Position();
  cursor_.MoveTo(start);
  if (const auto area = TakeArea(cursor_)) {
    node->kind = FormulaNode::Kind::kReference;
    static_cast<AreaText&>(node->reference) = *area;
    return node;
  }
  if (word.find('$') != std::string_view::npos) cursor_.FailExpecting("a reference");
  if (isBook_ && IsReserved(word)) cursor_.FailExpecting("a name");
  cursor_.MoveTo(end);
  node->name = DecodeName(start);
  return node;
}

// The cursor is behind the function's name.
FormulaParser::NodePtr FormulaParser::ParseCall(std::size_t start) {
  const DepthGuard guard(depth_, cursor_);
  NodePtr node = NewNode(FormulaNode::Kind::kCall);
  node->column = static_cast<int>(start) + 1;
  std::string_view name = cursor_.Slice(start);
  node->owner = TakeOwner(name);
  if (isBook_ && (IsReserved(name) || BindsNames(name)))
    cursor_.FailAt(start, "expected a function of values, found '" + std::string(cursor_.Slice(start)) + "'");
  node->name = DecodeName(cursor_.Position() - name.size());
  cursor_.Advance();
  cursor_.SkipBlanks();
  if (!cursor_.Accept(')')) ParseArguments(*node);
  if (node->children.empty() && (EqualsIgnoringCase(name, "true") || EqualsIgnoringCase(name, "false")))
    return NewConstant(start, Value::Boolean(EqualsIgnoringCase(name, "true")));
  if (node->owner == FunctionOwner::kExcel && node->children.size() == 1) {
    // What the signs "@" and "#" are, for versions that do not know them.
    if (EqualsIgnoringCase(name, "single")) node->kind = FormulaNode::Kind::kSingle;
    if (EqualsIgnoringCase(name, "anchorarray")) node->kind = FormulaNode::Kind::kSpill;
  }
  return node;
}

void FormulaParser::ParseArguments(FormulaNode& call) {
  for (;;) {
    call.children.push_back(ParseArgument());
    if (call.children.size() > kXlMaxArguments)
      cursor_.Fail("expected at most " + std::to_string(kXlMaxArguments) + " arguments, found more");
    if (cursor_.Accept(',')) continue;
    if (!cursor_.Accept(')')) cursor_.FailExpecting("',' or ')' after an argument of " + ToUtf8(call.name));
    return;
  }
}

FormulaParser::NodePtr FormulaParser::ParseArgument() {
  cursor_.SkipBlanks();
  if (cursor_.Peek() == ',' || cursor_.Peek() == ')') return NewConstant(cursor_.Position(), Value::Missing());
  return ParseExpression();
}

}  // namespace qcalc
