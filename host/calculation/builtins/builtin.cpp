#include "host/calculation/builtins/builtin.h"

#include <array>
#include <cmath>

#include "host/text/letter_case.h"
#include "host/values/conversion.h"

namespace qcalc {

namespace {

std::span<const std::span<const Builtin>> Families() {
  static const std::array families = {ReferenceBuiltins(), NumberBuiltins(), TextBuiltins(), LookupBuiltins()};
  return families;
}

}  // namespace

const Builtin* FindBuiltin(XStringView name) {
  static const auto byName = [] {
    CaselessMap<XStringView, const Builtin*> table;
    for (const auto family : Families())
      for (const Builtin& builtin : family) table.emplace(builtin.name, &builtin);
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

Value ToWholeNumber(const CellView& cell, NumberMarks marks, std::int32_t& whole) {
  const Value number = ToNumber(cell, marks);
  if (number.IsError()) return number;
  const double cut = std::trunc(number.AsNumber());
  constexpr double kLimit = 2147483647;
  if (!(std::fabs(cut) <= kLimit)) return Value::Error(xlerrValue);
  whole = static_cast<std::int32_t>(cut);
  return {};
}

}  // namespace qcalc
