#include "host/calculation/builtins/builtin.h"

#include <array>
#include <cmath>

#include "host/text/letter_case.h"

namespace qcalc {

namespace {

std::span<const std::span<const Builtin>> Families() {
  static const std::array families = {AggregateBuiltins(),   ArrayBuiltins(),     ConditionBuiltins(), DateBuiltins(),
                                      InformationBuiltins(), LogicBuiltins(),     LookupBuiltins(),    NumberBuiltins(),
                                      PlaceBuiltins(),       ReferenceBuiltins(), SearchBuiltins(),    SortBuiltins(),
                                      TextBuiltins(),        TextPartBuiltins()};
  return families;
}

}  // namespace

const Builtin* FindBuiltin(XStringView name) {
  // Never destroyed: a thread may calculate while the program ends.
  static const auto& byName = *[] {
    auto* table = new CaselessMap<XStringView, const Builtin*>;
    for (const auto family : Families())
      for (const Builtin& builtin : family) table->emplace(builtin.name, &builtin);
    return table;
  }();
  const auto found = byName.find(name);
  return found == byName.end() ? nullptr : found->second;
}

std::vector<XStringView> BuiltinNames() {
  std::vector<XStringView> names{XTEXT("CHOOSE"), XTEXT("IF"), XTEXT("IFERROR"), XTEXT("IFNA")};
  for (const auto family : Families())
    for (const Builtin& builtin : family) names.push_back(builtin.name);
  return names;
}

Value ScalarOperand(const BuiltinCall& call, std::size_t index) {
  return index < call.operands.size() ? Dereference(call.operands[index], *call.context.workbooks) : Value::Missing();
}

std::vector<Value> ScalarOperands(const BuiltinCall& call) {
  std::vector<Value> values;
  for (const Value& operand : call.operands) values.push_back(Dereference(operand, *call.context.workbooks));
  return values;
}

std::vector<Value> ScalarOperands(const BuiltinCall& call, std::size_t required,
                                  std::initializer_list<double> defaults) {
  std::vector<Value> values = ScalarOperands(call);
  for (std::size_t i = values.size(); i < required + defaults.size(); ++i)
    values.push_back(Value::Number(defaults.begin()[i - required]));
  return values;
}

Value ReadRange(const Value& operand, const Workbooks& workbooks, Range& range) {
  if (operand.IsError()) return operand;
  if (!operand.IsReference() || operand.AsReference().areas.size() > 1) return Value::Error(xlerrValue);
  range = {workbooks.FindSheet(operand.AsReference().sheet), operand.AsReference().areas[0]};
  return range.sheet ? Value() : Value::Error(xlerrRef);
}

Value FirstCell(const Value& operand, const Workbooks& workbooks) {
  if (!operand.IsReference()) return operand;
  const Sheet* sheet = workbooks.FindSheet(operand.AsReference().sheet);
  if (!sheet) return Value::Error(xlerrRef);
  const Area& area = operand.AsReference().areas[0];
  return Value::OfCell(sheet->Get(area.firstRow, area.firstColumn));
}

Value ToWholeNumber(const CellView& cell, NumberMarks marks, std::int32_t& whole) {
  const Value number = ToNumber(cell, marks);
  if (number.IsError()) return number;
  const double cut = std::trunc(number.AsNumber());
  constexpr double kLimit = 2147483647;
  if (!(std::fabs(cut) <= kLimit)) return Value::Error(xlerrValue);
  whole = static_cast<std::int32_t>(cut);
  return {};
}

Value TextResult(XString text) {
  if (text.size() > static_cast<std::size_t>(kXlMaxText)) return Value::Error(xlerrValue);
  return Value::Text(std::move(text));
}

}  // namespace qcalc
