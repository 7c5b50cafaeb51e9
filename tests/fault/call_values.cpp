#include "call_values.h"

#include <fstream>
#include <stdexcept>

#include "host/calculation/evaluator.h"
#include "host/formulas/formula.h"
#include "host/text/utf8.h"
#include "host/values/literal.h"

namespace qcalc::fault {
namespace {

constexpr std::int32_t kManyRows = 5000;
// Fits a cell; longer than the 255 units that Excel's own functions take.
constexpr std::size_t kLongText = 300;
constexpr const char* kTable = R"({"Name","Qty","Day";"a",1,TRUE;"b",2.5,empty;"c",-3,#N/A})";

Value ManyCells() {
  ArrayBuilder builder(kManyRows, 3);
  for (std::int32_t row = 0; row < kManyRows; ++row) {
    const XString text = XTEXT("row") + FromUtf8(std::to_string(row % 97)).value();
    builder.Set(row, 0, CellView::Number(kManyRows - row));
    builder.Set(row, 1, CellView::Text(text));
    builder.Set(row, 2, row % 7 == 0 ? CellView::Error(xlerrNA) : CellView::Boolean(row % 2 == 0));
  }
  return Value::OfArray(builder.Finish());
}

/// Whether an argument of that letter receives references.
bool TakesReferences(const AddinFunction& function, std::size_t argument) {
  return function.operands[argument] == OperandKind::kReference;
}

}  // namespace

CallValues::CallValues(Session& session) : session_(session) {
  FillSheets();
  Book& book = session.ItsWorkbooks().BookNamed(XTEXT("Book1"));
  const Reference caller{book.SheetNamed(XTEXT("Calc")).Id(), {Area{}}};
  context_ = {&session.ItsWorkbooks(), &session.CurrentSheet(), &session.Names(), &session.ItsAddin(), caller};
  MakeKinds();
}

void CallValues::FillSheets() {
  Book& book = session_.ItsWorkbooks().BookNamed(XTEXT("Book1"));
  const Value table = *ParseLiteral(kTable);
  const Area area{0, 3, 0, 2};
  session_.CurrentSheet().Set(area, table);
  session_.CurrentSheet().Set({5, 7, 4, 4}, *ParseLiteral(R"({1;"a";empty})"));
  book.SheetNamed(XTEXT("Data")).Set({1, 4, 1, 3}, table);
  table_ = {session_.CurrentSheet().Id(), {area}};
}

void CallValues::MakeKinds() {
  const Value scalars = *ParseLiteral(
      R"({0,-1,0.5,2,32768,2147483648,1e300,-1e-300,"","a","*","?~*a","12.5",">=1","Qty","#N/A",TRUE,FALSE,#NULL!,)"
      R"(#DIV/0!,#VALUE!,#REF!,#NAME?,#NUM!,#N/A,#GETTING_DATA,empty})");
  for (const CellView& cell : scalars.AsArray()->Cells()) {
    Value value = Value::OfCell(cell);
    values_.push_back({PrintLiteral(value), std::move(value)});
  }
  for (const char* text :
       {"{5}", "{empty}", "{1,2,3}", R"({"c";"a";"b"})", R"({1,"a",TRUE;#DIV/0!,empty,"";-2,"12","*"})"})
    values_.push_back({text, *ParseLiteral(text)});
  values_.push_back({"missing", Value::Missing()});
  values_.push_back({"a text of 300 units", Value::Text(XString(kLongText, XTEXT('k')))});
  values_.push_back({"a text of 32767 units", Value::Text(XString(kXlMaxText, XTEXT('x'))), true});
  values_.push_back({"a text with a zero and half a surrogate pair", Value::Text({XTEXT('a'), 0, 0xD83D})});
  values_.push_back({"#SPILL!", Value::Error(kErrorSpill)});
  values_.push_back({"an array of 5000 x 3", ManyCells(), true});

  references_ = values_;
  const IDSHEET here = table_.sheet;
  const IDSHEET data = context_.workbooks->FindSheet(XTEXT("Book1"), XTEXT("Data"), nullptr)->Id();
  const auto refer = [&](const char* name, IDSHEET sheet, std::vector<Area> areas) {
    references_.push_back({name, Value::OfReference({sheet, std::move(areas)})});
  };
  refer("cell B2", here, {{1, 1, 1, 1}});
  refer("an empty cell", here, {{90, 90, 90, 90}});
  refer("area A1:C4", here, {{0, 3, 0, 2}});
  refer("area E6:E8", here, {{5, 7, 4, 4}});
  refer("column A", here, {{0, kXlMaxRows - 1, 0, 0}});
  refer("row 1", here, {{0, 0, 0, kXlMaxColumns - 1}});
  refer("the last cell", here, {{kXlMaxRows - 1, kXlMaxRows - 1, kXlMaxColumns - 1, kXlMaxColumns - 1}});
  refer("a union", here, {{0, 1, 0, 0}, {2, 3, 1, 2}});
  refer("Data!B2:D5", data, {{1, 4, 1, 3}});
  refer("a union on Data", data, {{1, 1, 1, 3}, {3, 4, 1, 3}});
}

void CallValues::ReadExamples(const std::string& path) {
  constexpr std::string_view kCommand = "eval ";
  std::ifstream file(path);
  if (!file) throw std::runtime_error(path + ": the file cannot be read");
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with(kCommand)) continue;
    const Parsed<Formula> formula = ParseFormula(line.substr(kCommand.size()));
    if (!formula) throw std::runtime_error(path + ": " + line + ": " + formula.Error().ToString());
    const std::optional<PreparedCall> call = PrepareOutermostCall(*formula, context_);
    if (!call || call->refused) continue;
    std::vector<NamedValue> asWritten, inCells;
    for (std::size_t i = 0; i < call->operands.size(); ++i) {
      const Value& operand = call->operands[i];
      asWritten.push_back({"of the example", operand});
      const bool isLaidOut = operand.IsArray() && TakesReferences(*call->function, i);
      inCells.push_back(isLaidOut ? NamedValue{"the example's in cells", InCells(operand)} : asWritten.back());
    }
    if (const auto& narrow = static_cast<const RegisteredFunction*>(call->function)->narrow) {
      examples_.emplace(std::pair(narrow->name, PlainCall::kExample), asWritten);
      examples_.emplace(std::pair(narrow->name, PlainCall::kCells), inCells);
    }
    examples_.emplace(std::pair(call->function->name, PlainCall::kExample), std::move(asWritten));
    examples_.emplace(std::pair(call->function->name, PlainCall::kCells), std::move(inCells));
  }
  if (examples_.empty()) throw std::runtime_error(path + ": no example calls a function of the add-in");
}

/// Puts the array on a sheet, below what stands there.
Value CallValues::InCells(const Value& array) {
  Sheet& sheet = session_.ItsWorkbooks().BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("Examples"));
  const Area area = Area::OfSize(nextRow_, 0, array.AsArray()->Rows(), array.AsArray()->Columns());
  sheet.Set(area, array);
  nextRow_ = area.lastRow + 2;
  return Value::OfReference({sheet.Id(), {area}});
}

std::span<const NamedValue> CallValues::KindsFor(const RegisteredFunction& function, std::size_t argument) const {
  return TakesReferences(function, argument) ? references_ : values_;
}

NamedValue CallValues::PlainOperand(const RegisteredFunction& function, std::size_t argument, PlainCall plain) const {
  if (plain == PlainCall::kMissing) return {"missing", Value::Missing()};
  if (TakesReferences(function, argument)) return {"area A1:C4", Value::OfReference(table_)};
  switch (function.type.arguments[argument].letter) {
    case 'A':
      return {"TRUE", Value::Boolean(true)};
    case 'C':
    case 'D':
      return {"\"Qty\"", Value::Text(XTEXT("Qty"))};
    case 'P':
    case 'Q':
      if (plain != PlainCall::kScalars)
        return {"the table", Dereference(Value::OfReference(table_), *context_.workbooks)};
      return argument % 2 == 0 ? NamedValue{"2", Value::Number(2)} : NamedValue{"\"a\"", Value::Text(XTEXT("a"))};
    default:
      return {"1", Value::Number(1)};
  }
}

std::vector<NamedValue> CallValues::PlainOperands(const RegisteredFunction& function, PlainCall plain) const {
  if (const auto example = examples_.find({function.name, plain}); example != examples_.end()) return example->second;
  std::vector<NamedValue> operands;
  for (std::size_t i = 0; i < function.operands.size(); ++i) operands.push_back(PlainOperand(function, i, plain));
  return operands;
}

std::string DescribeCall(const RegisteredFunction& function, std::span<const NamedValue> operands) {
  // Arguments left out at the end of a long list say nothing.
  while (!operands.empty() && operands.back().value.IsMissing()) operands = operands.first(operands.size() - 1);
  std::string text = ToUtf8(function.name) + "(";
  for (const NamedValue& operand : operands) text += (&operand == operands.data() ? "" : ", ") + operand.name;
  return text + ")";
}

std::vector<Value> ValuesOf(std::span<const NamedValue> operands) {
  std::vector<Value> values;
  values.reserve(operands.size());
  for (const NamedValue& operand : operands) values.push_back(operand.value);
  return values;
}

}  // namespace qcalc::fault
